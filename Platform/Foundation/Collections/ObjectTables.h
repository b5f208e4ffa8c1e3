// SPDX-License-Identifier: Apache-2.0
// The contents of sets and dictionaries: tables that own their objects; for Foundation's own sources.
#pragma once

#include "Foundation/Collections/OrderedTable.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSSet.h"

namespace pelvor {

/// The members of a set, retained. An operation changes the table first, and releases the objects that it
/// takes out last.
class MemberTable {
  public:
    MemberTable() = default;
    MemberTable(const MemberTable&) = delete;
    MemberTable& operator=(const MemberTable&) = delete;
    ~MemberTable() {
        while (count() > 0) removeAll();  // what a release does may add
    }

    NSUInteger count() const { return _table.count(); }
    const std::uint32_t* mutationCounter() const { return _table.mutationCounter(); }
    id member(id object);
    id stepFrom(NSUInteger& position);
    void add(id object);
    void addAll(Object* const* objects, NSUInteger count);
    void remove(id object);
    void removeAll();
    void reserve(NSUInteger capacity);
    /// The receiver is empty.
    void copyFrom(const MemberTable& other);

  private:
    struct Nothing {};
    OrderedTable<Nothing> _table;
};

/// The entries of a dictionary: keys, which are copied, and objects, which are retained. An operation changes
/// the table first, and releases the keys and objects that it takes out last.
class EntryTable {
  public:
    EntryTable() = default;
    EntryTable(const EntryTable&) = delete;
    EntryTable& operator=(const EntryTable&) = delete;
    ~EntryTable() {
        while (count() > 0) removeAll();  // what a release does may add
    }

    NSUInteger count() const { return _table.count(); }
    const std::uint32_t* mutationCounter() const { return _table.mutationCounter(); }
    id objectForKey(id key);
    NSDictionaryEntry stepFrom(NSUInteger& position);
    /// Raises NSInvalidArgumentException for a key that cannot be copied, in the name of the operation.
    void set(id object, id key, const char* operation);
    void remove(id key);
    void removeAll();
    void reserve(NSUInteger capacity);
    /// The receiver is empty.
    void copyFrom(const EntryTable& other);

  private:
    void replaceObject(NSUInteger position, id object);

    OrderedTable<id> _table;
};

/// What an object adds to the hash of a collection that holds the object; 0 for a collection, so that hashing
/// ends for a collection that holds itself.
std::uintptr_t hashOfElement(id object);

/// Spreads a hash over all bits, so that a sum of such hashes depends on each element.
inline std::uintptr_t spreadHash(std::uintptr_t hash) {
    hash = (hash ^ (hash >> 32)) * 0x9E3779B97F4A7C15u;
    hash = (hash ^ (hash >> 29)) * 0xBF58476D1CE4E5B9u;
    return hash ^ (hash >> 32);
}

/// What an entry adds to the hash of its dictionary, beside 1 for its place.
inline std::uintptr_t hashOfEntry(id key, id object) {
    return spreadHash(spreadHash(hashOfElement(key)) + hashOfElement(object));
}

/// The greatest capacity for which room is made at once; a larger collection grows as it is filled.
inline constexpr NSUInteger kLargestReserve = 1 << 20;

}  // namespace pelvor
