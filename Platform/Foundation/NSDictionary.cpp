// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSDictionary.h"

#include <vector>

#include "Foundation/Collections/CollectionDescription.h"
#include "Foundation/Collections/CollectionEnumerators.h"
#include "Foundation/Collections/ConcreteDictionaries.h"
#include "Foundation/Collections/ObjectSorting.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSString.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSDictionary, foundationLibrary) {
    methods.creator<"dictionary", &NSDictionary::dictionary>();
    methods.creator<"dictionaryWithObject:forKey:", &NSDictionary::dictionaryWithObject_forKey>();
    methods.creator<"dictionaryWithObjects:forKeys:", &NSDictionary::dictionaryWithObjects_forKeys>();
    methods.creator<"dictionaryWithObjects:forKeys:count:",
                    &NSDictionary::dictionaryWithObjects_forKeys_count>();
    methods.creator<"dictionaryWithDictionary:", &NSDictionary::dictionaryWithDictionary>();
    methods.creator<"init", &NSDictionary::init>();
    methods.creatorAs<"new", &NSDictionary::init>();
    methods.creator<"initWithObjects:forKeys:", &NSDictionary::initWithObjects_forKeys>();
    methods.creator<"initWithObjects:forKeys:count:", &NSDictionary::initWithObjects_forKeys_count>();
    methods.creator<"initWithDictionary:", &NSDictionary::initWithDictionary>();
    methods.instance<"count", &NSDictionary::count>();
    methods.instance<"objectForKey:", &NSDictionary::objectForKey>();
    methods.instance<"valueForKey:", &NSDictionary::valueForKey>();
    methods.instance<"allKeys", &NSDictionary::allKeys>();
    methods.instance<"allValues", &NSDictionary::allValues>();
    methods.instance<"allKeysForObject:", &NSDictionary::allKeysForObject>();
    methods.instance<"objectsForKeys:notFoundMarker:", &NSDictionary::objectsForKeys_notFoundMarker>();
    methods.instance<"keyEnumerator", &NSDictionary::keyEnumerator>();
    methods.instance<"objectEnumerator", &NSDictionary::objectEnumerator>();
    methods.instance<"keysSortedByValueUsingSelector:", &NSDictionary::keysSortedByValueUsingSelector>();
    methods.instance<"isEqualToDictionary:", &NSDictionary::isEqualToDictionary>();
}

// MARK: Creation

NSDictionary* NSDictionary::dictionary() { return init().autorelease(); }

NSDictionary* NSDictionary::dictionaryWithObject_forKey(id object, id key) {
    requireArgument(object, "dictionaryWithObject:forKey:", "the object");
    requireArgument(key, "dictionaryWithObject:forKey:", "the key");
    return filledDictionary<NSTableDictionary>(&object, &key, NSUInteger{1}, "dictionaryWithObject:forKey:")
        .autorelease();
}

NSDictionary* NSDictionary::dictionaryWithObjects_forKeys(NSArray* objects, NSArray* keys) {
    return filledDictionary<NSTableDictionary>(objects, keys, "dictionaryWithObjects:forKeys:").autorelease();
}

NSDictionary* NSDictionary::dictionaryWithObjects_forKeys_count(Object* const* objects, Object* const* keys,
                                                                NSUInteger count) {
    return filledDictionary<NSTableDictionary>(objects, keys, count, "dictionaryWithObjects:forKeys:count:")
        .autorelease();
}

NSDictionary* NSDictionary::dictionaryWithDictionary(NSDictionary* dictionary) {
    return initWithDictionary(dictionary).autorelease();
}

NSDictionary* NSDictionary::of(std::initializer_list<NSDictionaryEntry> entries) {
    return filledDictionary<NSTableDictionary>(entries, "NSDictionary::of").autorelease();
}

Retained<NSDictionary> NSDictionary::init() { return make<NSTableDictionary>(); }

Retained<NSDictionary> NSDictionary::initWithObjects_forKeys(NSArray* objects, NSArray* keys) {
    return filledDictionary<NSTableDictionary>(objects, keys, "initWithObjects:forKeys:");
}

Retained<NSDictionary> NSDictionary::initWithObjects_forKeys_count(Object* const* objects,
                                                                   Object* const* keys, NSUInteger count) {
    return filledDictionary<NSTableDictionary>(objects, keys, count, "initWithObjects:forKeys:count:");
}

Retained<NSDictionary> NSDictionary::initWithDictionary(NSDictionary* dictionary) {
    if (dictionary && dictionary->isa() == NSTableDictionary::classObject())
        return Retained<NSDictionary>::retaining(dictionary);
    return filledDictionary<NSTableDictionary>(dictionary, "initWithDictionary:");
}

Retained<NSDictionary> NSDictionary::initWithEntries(std::initializer_list<NSDictionaryEntry> entries) {
    return filledDictionary<NSTableDictionary>(entries, "initWithEntries");
}

// MARK: Keys and objects

id NSDictionary::valueForKey(NSString* key) { return objectForKey(key); }

namespace {

NSArray* arrayOf(const std::vector<Object*>& objects) {
    return NSArray::arrayWithObjects_count(objects.data(), static_cast<NSUInteger>(objects.size()));
}

}  // namespace

NSArray* NSDictionary::allKeys() {
    std::vector<Object*> keys;
    keys.reserve(count());
    for (auto [key, object] : detail::walk(this)) keys.push_back(key);
    return arrayOf(keys);
}

NSArray* NSDictionary::allValues() {
    std::vector<Object*> objects;
    objects.reserve(count());
    for (auto [key, object] : detail::walk(this)) objects.push_back(object);
    return arrayOf(objects);
}

NSArray* NSDictionary::allKeysForObject(id object) {
    std::vector<Object*> keys;
    for (auto [key, entry] : detail::walk(this))
        if (object && (entry == object || entry->isEqual(object))) keys.push_back(key);
    return arrayOf(keys);
}

NSArray* NSDictionary::objectsForKeys_notFoundMarker(NSArray* keys, id marker) {
    std::vector<Object*> objects;
    for (id key : keys) {
        id object = objectForKey(key);
        if (!object) requireArgument(marker, "objectsForKeys:notFoundMarker:", "the marker");
        objects.push_back(object ? object : marker);
    }
    return arrayOf(objects);
}

NSEnumerator* NSDictionary::keyEnumerator() {
    return NSDictionaryEnumerator::create(this, NSDictionaryEnumerator::Part::key).autorelease();
}

NSEnumerator* NSDictionary::objectEnumerator() {
    return NSDictionaryEnumerator::create(this, NSDictionaryEnumerator::Part::value).autorelease();
}

NSArray* NSDictionary::keysSortedByValueUsingSelector(SEL comparator) {
    Retained<NSDictionary> kept = initWithDictionary(this);
    std::vector<NSDictionaryEntry> entries;
    entries.reserve(kept->count());
    for (NSDictionaryEntry entry : kept) entries.push_back(entry);
    sortStably(entries, [comparator](const NSDictionaryEntry& a, const NSDictionaryEntry& b) {
        return send<int>(a.value, comparator, b.value);
    });
    std::vector<Object*> keys;
    for (const NSDictionaryEntry& entry : entries) keys.push_back(entry.key);
    return arrayOf(keys);
}

// MARK: As an object

bool NSDictionary::isEqualToDictionary(NSDictionary* other) {
    if (this == other) return true;
    if (!other || count() != other->count()) return false;
    for (auto [key, object] : detail::walk(this)) {
        id otherObject = other->objectForKey(key);
        if (object != otherObject && (!otherObject || !object->isEqual(otherObject))) return false;
    }
    return true;
}

bool NSDictionary::isEqual(id other) {
    auto* dictionary = cast<NSDictionary>(other);
    return dictionary && isEqualToDictionary(dictionary);
}

std::uintptr_t NSDictionary::hash() {
    std::uintptr_t sum = count();
    for (auto [key, object] : detail::walk(this)) sum += hashOfEntry(key, object);
    return sum;
}

NSString* NSDictionary::description() { return describeCollection(this); }

Retained<Object> NSDictionary::copyWithZone(void*) { return initWithDictionary(this); }

Retained<Object> NSDictionary::mutableCopyWithZone(void*) {
    return NSMutableDictionary::initWithDictionary(this);
}

Retained<NSMutableDictionary> NSDictionary::mutableCopy() {
    return cast<NSMutableDictionary>(mutableCopyWithZone(nullptr));
}

}  // namespace pelvor
