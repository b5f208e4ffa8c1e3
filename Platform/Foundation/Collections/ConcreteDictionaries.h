// SPDX-License-Identifier: Apache-2.0
// The dictionaries that creators return; for Foundation's own sources.
#pragma once

#include "Foundation/Collections/ObjectTables.h"
#include "Foundation/NSMutableDictionary.h"

namespace pelvor {

class NSTableDictionary final : public NSDictionary {
    PELVOR_CLASS(NSTableDictionary, NSDictionary);

  public:
    NSUInteger count() override { return _table.count(); }
    id objectForKey(id key) override { return _table.objectForKey(key); }
    NSDictionaryEntry stepFrom(NSUInteger& position) override { return _table.stepFrom(position); }
    Retained<Object> copyWithZone(void* zone) override;
    /// To be filled before anybody else sees the dictionary.
    EntryTable& table() { return _table; }

  protected:
    NSTableDictionary() = default;
    ~NSTableDictionary() = default;

  private:
    EntryTable _table;
};

class NSTableMutableDictionary final : public NSMutableDictionary {
    PELVOR_CLASS(NSTableMutableDictionary, NSMutableDictionary);

  public:
    NSUInteger count() override { return _table.count(); }
    id objectForKey(id key) override { return _table.objectForKey(key); }
    NSDictionaryEntry stepFrom(NSUInteger& position) override { return _table.stepFrom(position); }
    const std::uint32_t* mutationCounter() override { return _table.mutationCounter(); }
    void setObject_forKey(id object, id key) override;
    void removeObjectForKey(id key) override { _table.remove(key); }
    void removeAllObjects() override { _table.removeAll(); }
    EntryTable& table() { return _table; }

  protected:
    NSTableMutableDictionary() = default;
    ~NSTableMutableDictionary() = default;

  private:
    EntryTable _table;
};

// Each fills an empty table, after all objects and keys were checked in the name of the operation.

void fillTable(EntryTable& table, NSDictionary* dictionary, const char* operation);
void fillTable(EntryTable& table, Object* const* objects, Object* const* keys, NSUInteger count,
               const char* operation);
void fillTable(EntryTable& table, std::initializer_list<NSDictionaryEntry> entries, const char* operation);
/// Raises NSInvalidArgumentException for arrays of different lengths.
void fillTable(EntryTable& table, NSArray* objects, NSArray* keys, const char* operation);

/// An owned dictionary of that class from what a `fillTable` takes.
template <class Dictionary, class... Content>
Retained<Dictionary> filledDictionary(const Content&... content) {
    auto dictionary = make<Dictionary>();
    fillTable(dictionary->table(), content...);
    return dictionary;
}

}  // namespace pelvor
