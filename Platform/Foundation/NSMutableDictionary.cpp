// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSMutableDictionary.h"

#include "Foundation/Collections/ConcreteDictionaries.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSString.h"

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
    return dictionaryWithObjects_forKeys_count(&object, &key, 1);
}

NSMutableDictionary* NSMutableDictionary::dictionaryWithObjects_forKeys(NSArray* objects, NSArray* keys) {
    return initWithObjects_forKeys(objects, keys).autorelease();
}

NSMutableDictionary* NSMutableDictionary::dictionaryWithObjects_forKeys_count(Object* const* objects,
                                                                              Object* const* keys,
                                                                              NSUInteger count) {
    return initWithObjects_forKeys_count(objects, keys, count).autorelease();
}

NSMutableDictionary* NSMutableDictionary::dictionaryWithDictionary(NSDictionary* dictionary) {
    return initWithDictionary(dictionary).autorelease();
}

NSMutableDictionary* NSMutableDictionary::of(std::initializer_list<NSDictionaryEntry> entries) {
    return initWithEntries(entries).autorelease();
}

Retained<NSMutableDictionary> NSMutableDictionary::init() { return make<NSTableMutableDictionary>(); }

Retained<NSMutableDictionary> NSMutableDictionary::initWithCapacity(NSUInteger capacity) {
    auto dictionary = make<NSTableMutableDictionary>();
    dictionary->table().reserve(capacity);
    return dictionary;
}

Retained<NSMutableDictionary> NSMutableDictionary::initWithObjects_forKeys(NSArray* objects, NSArray* keys) {
    auto dictionary = make<NSTableMutableDictionary>();
    fillTable(dictionary->table(), objects, keys);
    return dictionary;
}

Retained<NSMutableDictionary> NSMutableDictionary::initWithObjects_forKeys_count(Object* const* objects,
                                                                                 Object* const* keys,
                                                                                 NSUInteger count) {
    auto dictionary = make<NSTableMutableDictionary>();
    fillTable(dictionary->table(), objects, keys, count);
    return dictionary;
}

Retained<NSMutableDictionary> NSMutableDictionary::initWithDictionary(NSDictionary* dictionary) {
    auto copy = make<NSTableMutableDictionary>();
    fillTable(copy->table(), dictionary);
    return copy;
}

Retained<NSMutableDictionary> NSMutableDictionary::initWithEntries(
    std::initializer_list<NSDictionaryEntry> entries) {
    auto dictionary = make<NSTableMutableDictionary>();
    fillTable(dictionary->table(), entries);
    return dictionary;
}

// MARK: Changing

void NSMutableDictionary::setValue_forKey(id value, NSString* key) {
    if (value)
        setObject_forKey(value, key);
    else
        removeObjectForKey(key);
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
