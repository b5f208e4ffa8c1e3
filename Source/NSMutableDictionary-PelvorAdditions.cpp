// SPDX-License-Identifier: Apache-2.0
#include "NSMutableDictionary-PelvorAdditions.h"

#include "Foundation/NSNumber.h"
#include "Foundation/NSSet.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSMutableDictionary>& methods) {
    methods.instance<"setBool:forKey:", &setBool_forKey>();
    methods.instance<"setInt:forKey:", &setInt_forKey>();
    methods.instance<"setFloat:forKey:", &setFloat_forKey>();
    methods.instance<"setDouble:forKey:", &setDouble_forKey>();
    methods.instance<"addObjectsFromDictionary:forKeys:", &addObjectsFromDictionary_forKeys>();
}

}  // namespace

constinit const Category NSMutableDictionary_PelvorAdditions_category =
    Category::of<NSMutableDictionary, defineAdditions>("PelvorAdditions");

void setBool_forKey(NSMutableDictionary* dictionary, bool value, id key) {
    requireArgument(dictionary, "setBool:forKey:", "the dictionary");
    requireArgument(key, "setBool:forKey:", "the key");
    dictionary->setObject_forKey(NSNumber::numberWithBool(value), key);
}

void setInt_forKey(NSMutableDictionary* dictionary, int value, id key) {
    requireArgument(dictionary, "setInt:forKey:", "the dictionary");
    requireArgument(key, "setInt:forKey:", "the key");
    dictionary->setObject_forKey(NSNumber::numberWithInt(value), key);
}

void setFloat_forKey(NSMutableDictionary* dictionary, float value, id key) {
    requireArgument(dictionary, "setFloat:forKey:", "the dictionary");
    requireArgument(key, "setFloat:forKey:", "the key");
    dictionary->setObject_forKey(NSNumber::numberWithFloat(value), key);
}

void setDouble_forKey(NSMutableDictionary* dictionary, double value, id key) {
    requireArgument(dictionary, "setDouble:forKey:", "the dictionary");
    requireArgument(key, "setDouble:forKey:", "the key");
    dictionary->setObject_forKey(NSNumber::numberWithDouble(value), key);
}

void addObjectsFromDictionary_forKeys(NSMutableDictionary* dictionary, NSDictionary* other, NSSet* keys) {
    requireArgument(dictionary, "addObjectsFromDictionary:forKeys:", "the dictionary");
    if (!other || !keys || other == dictionary) return;
    // The loop walks over the smaller collection.
    if (other->count() >= keys->count()) {
        for (id key : keys)
            if (id value = other->objectForKey(key)) dictionary->setObject_forKey(value, key);
    } else {
        for (auto [key, value] : other)
            if (keys->containsObject(key)) dictionary->setObject_forKey(value, key);
    }
}

}  // namespace pelvor
