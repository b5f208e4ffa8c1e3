// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Collections/ConcreteDictionaries.h"
#include "Foundation/Collections/CollectionFailures.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSArray.h"
#include "Runtime/NSException.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSTableDictionary, foundationLibrary) {}
PELVOR_DEFINE_CLASS(NSTableMutableDictionary, foundationLibrary) {}

Retained<Object> NSTableDictionary::copyWithZone(void*) { return Retained<Object>::retaining(this); }

void NSTableMutableDictionary::setObject_forKey(id object, id key) {
    requireObject(object, "setObject:forKey:");
    requireObject(key, "setObject:forKey:");
    _table.set(object, key);
}

void fillTable(EntryTable& table, NSDictionary* dictionary) {
    if (!dictionary) return;
    if (dictionary->isa() == NSTableDictionary::classObject())
        return table.copyFrom(static_cast<NSTableDictionary*>(dictionary)->table());
    if (dictionary->isa() == NSTableMutableDictionary::classObject())
        return table.copyFrom(static_cast<NSTableMutableDictionary*>(dictionary)->table());
    table.reserve(dictionary->count());
    for (auto [key, object] : detail::walk(dictionary)) table.set(object, key);
}

void fillTable(EntryTable& table, Object* const* objects, Object* const* keys, NSUInteger count) {
    requireObjects(objects, count, "initWithObjects:forKeys:count:");
    requireObjects(keys, count, "initWithObjects:forKeys:count:");
    table.reserve(count);
    for (NSUInteger i = 0; i < count; ++i) table.set(objects[i], keys[i]);
}

void fillTable(EntryTable& table, std::initializer_list<NSDictionaryEntry> entries) {
    for (const NSDictionaryEntry& entry : entries) {
        requireObject(entry.key, "initWithEntries");
        requireObject(entry.value, "initWithEntries");
    }
    table.reserve(static_cast<NSUInteger>(entries.size()));
    for (const NSDictionaryEntry& entry : entries) table.set(entry.value, entry.key);
}

void fillTable(EntryTable& table, NSArray* objects, NSArray* keys) {
    Retained<NSArray> keptObjects = NSArray::initWithArray(objects);
    Retained<NSArray> keptKeys = NSArray::initWithArray(keys);
    if (keptObjects->count() != keptKeys->count())
        throw NSException(NSInvalidArgumentException,
                          "initWithObjects:forKeys: got " + std::to_string(keptObjects->count()) +
                              " objects for " + std::to_string(keptKeys->count()) + " keys");
    fillTable(table, keptObjects->contiguousObjects(), keptKeys->contiguousObjects(), keptKeys->count());
}

}  // namespace pelvor
