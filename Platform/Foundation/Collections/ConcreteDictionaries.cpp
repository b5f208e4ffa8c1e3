// SPDX-License-Identifier: Apache-2.0
#include <vector>

#include "Foundation/Collections/ConcreteDictionaries.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSArray.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSTableDictionary, foundationLibrary) {}
PELVOR_DEFINE_CLASS(NSTableMutableDictionary, foundationLibrary) {}

Retained<Object> NSTableDictionary::copyWithZone(void*) { return Retained<Object>::retaining(this); }

void NSTableMutableDictionary::setObject_forKey(id object, id key) {
    requireArgument(object, "setObject:forKey:", "the object");
    requireArgument(key, "setObject:forKey:", "the key");
    _table.set(object, key, "setObject:forKey:");
}

void fillTable(EntryTable& table, NSDictionary* dictionary, const char* operation) {
    if (!dictionary) return;
    if (dictionary->isa() == NSTableDictionary::classObject())
        return table.copyFrom(static_cast<NSTableDictionary*>(dictionary)->table());
    if (dictionary->isa() == NSTableMutableDictionary::classObject())
        return table.copyFrom(static_cast<NSTableMutableDictionary*>(dictionary)->table());
    table.reserve(dictionary->count());
    for (auto [key, object] : detail::walk(dictionary)) table.set(object, key, operation);
}

void fillTable(EntryTable& table, Object* const* objects, Object* const* keys, NSUInteger count,
               const char* operation) {
    requireObjects(objects, count, operation);
    requireObjects(keys, count, operation, "key");
    table.reserve(count);
    for (NSUInteger i = 0; i < count; ++i) table.set(objects[i], keys[i], operation);
}

void fillTable(EntryTable& table, std::initializer_list<NSDictionaryEntry> entries, const char* operation) {
    std::vector<Object*> objects, keys;
    for (const NSDictionaryEntry& entry : entries) {
        objects.push_back(entry.value);
        keys.push_back(entry.key);
    }
    fillTable(table, objects.data(), keys.data(), static_cast<NSUInteger>(entries.size()), operation);
}

void fillTable(EntryTable& table, NSArray* objects, NSArray* keys, const char* operation) {
    Retained<NSArray> keptObjects = NSArray::initWithArray(objects);
    Retained<NSArray> keptKeys = NSArray::initWithArray(keys);
    if (keptObjects->count() != keptKeys->count())
        raiseBadArgument(operation, std::to_string(keptObjects->count()) + " objects were given for " +
                                        std::to_string(keptKeys->count()) + " keys");
    fillTable(table, keptObjects->contiguousObjects(), keptKeys->contiguousObjects(), keptKeys->count(),
              operation);
}

}  // namespace pelvor
