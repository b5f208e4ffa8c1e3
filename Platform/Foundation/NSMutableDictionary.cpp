// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSMutableDictionary.h"

#include "Foundation/Collections/ConcreteDictionaries.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSString.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSMutableDictionary, foundationLibrary) {
    methods.creator<"dictionary", &NSMutableDictionary::dictionary>();
    methods.creator<"dictionaryWithCapacity:", &NSMutableDictionary::dictionaryWithCapacity>();
    methods.creator<"dictionaryWithObject:forKey:", &NSMutableDictionary::dictionaryWithObject_forKey>();
    methods.creator<"dictionaryWithObjects:forKeys:", &NSMutableDictionary::dictionaryWithObjects_forKeys>();
    methods.creator<"dictionaryWithObjects:forKeys:count:",
                    &NSMutableDictionary::dictionaryWithObjects_forKeys_count>();
    methods.creator<"dictionaryWithDictionary:", &NSMutableDictionary::dictionaryWithDictionary>();
    methods.creator<"init", &NSMutableDictionary::init>();
    methods.creatorAs<"new", &NSMutableDictionary::init>();
    methods.creator<"initWithCapacity:", &NSMutableDictionary::initWithCapacity>();
    methods.creator<"initWithObjects:forKeys:", &NSMutableDictionary::initWithObjects_forKeys>();
    methods.creator<"initWithObjects:forKeys:count:", &NSMutableDictionary::initWithObjects_forKeys_count>();
    methods.creator<"initWithDictionary:", &NSMutableDictionary::initWithDictionary>();
    methods.instance<"setObject:forKey:", &NSMutableDictionary::setObject_forKey>();
    methods.instance<"setValue:forKey:", &NSMutableDictionary::setValue_forKey>();
    methods.instance<"removeObjectForKey:", &NSMutableDictionary::removeObjectForKey>();
    methods.instance<"removeAllObjects", &NSMutableDictionary::removeAllObjects>();
    methods.instance<"removeObjectsForKeys:", &NSMutableDictionary::removeObjectsForKeys>();
    methods.instance<"addEntriesFromDictionary:", &NSMutableDictionary::addEntriesFromDictionary>();
    methods.instance<"setDictionary:", &NSMutableDictionary::setDictionary>();
}

// MARK: Creation

NSMutableDictionary* NSMutableDictionary::dictionary() { return init().autorelease(); }

NSMutableDictionary* NSMutableDictionary::dictionaryWithCapacity(NSUInteger capacity) {
    return initWithCapacity(capacity).autorelease();
}

NSMutableDictionary* NSMutableDictionary::dictionaryWithObject_forKey(id object, id key) {
    requireArgument(object, "dictionaryWithObject:forKey:", "the object");
    requireArgument(key, "dictionaryWithObject:forKey:", "the key");
    return filledDictionary<NSTableMutableDictionary>(&object, &key, NSUInteger{1},
                                                      "dictionaryWithObject:forKey:")
        .autorelease();
}

NSMutableDictionary* NSMutableDictionary::dictionaryWithObjects_forKeys(NSArray* objects, NSArray* keys) {
    return filledDictionary<NSTableMutableDictionary>(objects, keys, "dictionaryWithObjects:forKeys:")
        .autorelease();
}

NSMutableDictionary* NSMutableDictionary::dictionaryWithObjects_forKeys_count(Object* const* objects,
                                                                              Object* const* keys,
                                                                              NSUInteger count) {
    return filledDictionary<NSTableMutableDictionary>(objects, keys, count,
                                                      "dictionaryWithObjects:forKeys:count:")
        .autorelease();
}

NSMutableDictionary* NSMutableDictionary::dictionaryWithDictionary(NSDictionary* dictionary) {
    return initWithDictionary(dictionary).autorelease();
}

NSMutableDictionary* NSMutableDictionary::of(std::initializer_list<NSDictionaryEntry> entries) {
    return filledDictionary<NSTableMutableDictionary>(entries, "NSMutableDictionary::of").autorelease();
}

Retained<NSMutableDictionary> NSMutableDictionary::init() { return make<NSTableMutableDictionary>(); }

Retained<NSMutableDictionary> NSMutableDictionary::initWithCapacity(NSUInteger capacity) {
    auto dictionary = make<NSTableMutableDictionary>();
    dictionary->table().reserve(capacity);
    return dictionary;
}

Retained<NSMutableDictionary> NSMutableDictionary::initWithObjects_forKeys(NSArray* objects, NSArray* keys) {
    return filledDictionary<NSTableMutableDictionary>(objects, keys, "initWithObjects:forKeys:");
}

Retained<NSMutableDictionary> NSMutableDictionary::initWithObjects_forKeys_count(Object* const* objects,
                                                                                 Object* const* keys,
                                                                                 NSUInteger count) {
    return filledDictionary<NSTableMutableDictionary>(objects, keys, count, "initWithObjects:forKeys:count:");
}

Retained<NSMutableDictionary> NSMutableDictionary::initWithDictionary(NSDictionary* dictionary) {
    return filledDictionary<NSTableMutableDictionary>(dictionary, "initWithDictionary:");
}

Retained<NSMutableDictionary> NSMutableDictionary::initWithEntries(
    std::initializer_list<NSDictionaryEntry> entries) {
    return filledDictionary<NSTableMutableDictionary>(entries, "initWithEntries");
}

// MARK: Changing

void NSMutableDictionary::setValue_forKey(id value, NSString* key) {
    if (!value) return removeObjectForKey(key);
    requireArgument(key, "setValue:forKey:", "the key");
    setObject_forKey(value, key);
}

void NSMutableDictionary::removeObjectsForKeys(NSArray* keys) {
    for (id key : keys) removeObjectForKey(key);
}

void NSMutableDictionary::addEntriesFromDictionary(NSDictionary* other) {
    if (other == this) return;
    for (auto [key, object] : other) setObject_forKey(object, key);
}

void NSMutableDictionary::setDictionary(NSDictionary* other) {
    if (other == this) return;
    Retained<NSDictionary> leaving = NSDictionary::initWithDictionary(this);
    removeAllObjects();
    addEntriesFromDictionary(other);
}

}  // namespace pelvor
