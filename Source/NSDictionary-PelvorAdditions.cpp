// SPDX-License-Identifier: Apache-2.0
#include "NSDictionary-PelvorAdditions.h"

#include "Foundation/NSArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSSet.h"
#include "Foundation/NSString.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSDictionary>& methods) {
    methods.instance<"boolForKey:", &boolForKey>();
    methods.instance<"intForKey:", &intForKey>();
    methods.instance<"floatForKey:", &floatForKey>();
    methods.instance<"doubleForKey:", &doubleForKey>();
    methods.instance<"containsKeyInSet:", &containsKeyInSet>();
    methods.instance<"containsKeyInDictionary:", &containsKeyInDictionary>();
    methods.instance<"isSubdictionaryOf:", &isSubdictionaryOf>();
    methods.instance<"isEqualToDictionary:ignoringKeys:", &isEqualToDictionary_ignoringKeys>();
    methods.instance<"isEqualToDictionary:forKeys:", &isEqualToDictionary_forKeys>();
    methods.instance<"dictionarySettingObject:forKey:", &dictionarySettingObject_forKey>();
    methods.instance<"dictionaryRemovingObjectForKey:", &dictionaryRemovingObjectForKey>();
    methods.instance<"dictionaryByAddingEntriesFromDictionary:", &dictionaryByAddingEntriesFromDictionary>();
    methods.instance<"createSubdictionaryWithKeys:", &createSubdictionaryWithKeys>();
}

// A key that both dictionaries lack counts as equal.
bool areValuesEqual(NSDictionary* dictionary, NSDictionary* other, id key) {
    id value = dictionary->objectForKey(key), otherValue = other->objectForKey(key);
    return value == otherValue || (value && otherValue && value->isEqual(otherValue));
}

template <class Keys>
bool areAllValuesEqual(NSDictionary* dictionary, NSDictionary* other, Keys* keys) {
    for (id key : keys)
        if (!areValuesEqual(dictionary, other, key)) return false;
    return true;
}

}  // namespace

constinit const Category NSDictionary_PelvorAdditions_category =
    Category::of<NSDictionary, defineAdditions>("PelvorAdditions");

// MARK: Typed values

bool boolForKey(NSDictionary* dictionary, id key) {
    requireArgument(dictionary, "boolForKey:", "the dictionary");
    return send<bool>(dictionary->objectForKey(key), "boolValue"_sel);
}

int intForKey(NSDictionary* dictionary, id key) {
    requireArgument(dictionary, "intForKey:", "the dictionary");
    return send<int>(dictionary->objectForKey(key), "intValue"_sel);
}

float floatForKey(NSDictionary* dictionary, id key) {
    requireArgument(dictionary, "floatForKey:", "the dictionary");
    return send<float>(dictionary->objectForKey(key), "floatValue"_sel);
}

double doubleForKey(NSDictionary* dictionary, id key) {
    requireArgument(dictionary, "doubleForKey:", "the dictionary");
    return send<double>(dictionary->objectForKey(key), "doubleValue"_sel);
}

// MARK: Comparison

bool containsKeyInSet(NSDictionary* dictionary, NSSet* keys) {
    requireArgument(dictionary, "containsKeyInSet:", "the dictionary");
    for (id key : keys)
        if (dictionary->objectForKey(key)) return true;
    return false;
}

bool containsKeyInDictionary(NSDictionary* dictionary, NSDictionary* other) {
    requireArgument(dictionary, "containsKeyInDictionary:", "the dictionary");
    for (NSDictionaryEntry entry : other)
        if (dictionary->objectForKey(entry.key)) return true;
    return false;
}

bool isSubdictionaryOf(NSDictionary* dictionary, NSDictionary* other) {
    requireArgument(dictionary, "isSubdictionaryOf:", "the dictionary");
    if (!other) return dictionary->count() == 0;
    return isEqualToDictionary_ignoringKeys(dictionary, other, nullptr);
}

bool isEqualToDictionary_ignoringKeys(NSDictionary* dictionary, NSDictionary* other, NSSet* ignored) {
    requireArgument(dictionary, "isEqualToDictionary:ignoringKeys:", "the dictionary");
    if (!other) return false;
    if (dictionary == other) return true;
    for (NSDictionaryEntry entry : dictionary) {
        if (ignored && ignored->containsObject(entry.key)) continue;
        if (!areValuesEqual(dictionary, other, entry.key)) return false;
    }
    return true;
}

bool isEqualToDictionary_forKeys(NSDictionary* dictionary, NSDictionary* other, id keys) {
    requireArgument(dictionary, "isEqualToDictionary:forKeys:", "the dictionary");
    if (!other) return false;
    if (dictionary == other || !keys) return true;
    if (auto* set = cast<NSSet>(keys)) return areAllValuesEqual(dictionary, other, set);
    if (auto* array = cast<NSArray>(keys)) return areAllValuesEqual(dictionary, other, array);
    return areAllValuesEqual(dictionary, other, send<NSEnumerator*>(keys, "objectEnumerator"_sel));
}

// MARK: Changed copies

NSDictionary* dictionarySettingObject_forKey(NSDictionary* dictionary, id object, id key) {
    requireArgument(dictionary, "dictionarySettingObject:forKey:", "the dictionary");
    requireArgument(object, "dictionarySettingObject:forKey:", "the object");
    requireArgument(key, "dictionarySettingObject:forKey:", "the key");
    Retained<NSMutableDictionary> changed = dictionary->mutableCopy();
    changed->setObject_forKey(object, key);
    return changed->copy().autorelease();
}

NSDictionary* dictionaryRemovingObjectForKey(NSDictionary* dictionary, id key) {
    requireArgument(dictionary, "dictionaryRemovingObjectForKey:", "the dictionary");
    if (!dictionary->objectForKey(key)) return dictionary;
    Retained<NSMutableDictionary> changed = dictionary->mutableCopy();
    changed->removeObjectForKey(key);
    return changed->copy().autorelease();
}

NSDictionary* dictionaryByAddingEntriesFromDictionary(NSDictionary* dictionary, NSDictionary* other) {
    requireArgument(dictionary, "dictionaryByAddingEntriesFromDictionary:", "the dictionary");
    if (!other || other == dictionary || other->count() == 0) return dictionary;
    Retained<NSMutableDictionary> all = dictionary->mutableCopy();
    all->addEntriesFromDictionary(other);
    return std::move(all).autorelease();
}

Retained<NSDictionary> createSubdictionaryWithKeys(NSDictionary* dictionary, NSSet* keys) {
    requireArgument(dictionary, "createSubdictionaryWithKeys:", "the dictionary");
    NSUInteger count = keys ? keys->count() : 0;
    if (count == 0) return NSDictionary::init();
    if (count == 1) {
        id key = keys->anyObject();
        id value = dictionary->objectForKey(key);
        return value ? NSDictionary::initWithEntries({{key, value}}) : NSDictionary::init();
    }
    auto part = NSMutableDictionary::initWithCapacity(count);
    for (id key : keys)
        if (id value = dictionary->objectForKey(key)) part->setObject_forKey(value, key);
    return part;
}

}  // namespace pelvor
