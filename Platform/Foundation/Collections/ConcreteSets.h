// SPDX-License-Identifier: Apache-2.0
// The sets that creators return; for Foundation's own sources.
#pragma once

#include "Foundation/Collections/ObjectTables.h"
#include "Foundation/NSMutableSet.h"

namespace pelvor {

class NSTableSet final : public NSSet {
    PELVOR_CLASS(NSTableSet, NSSet);

  public:
    NSUInteger count() override { return _table.count(); }
    id member(id object) override { return _table.member(object); }
    id stepFrom(NSUInteger& position) override { return _table.stepFrom(position); }
    Retained<Object> copyWithZone(void* zone) override;
    /// To be filled before anybody else sees the set.
    MemberTable& table() { return _table; }

  protected:
    NSTableSet() = default;
    ~NSTableSet() = default;

  private:
    MemberTable _table;
};

class NSTableMutableSet final : public NSMutableSet {
    PELVOR_CLASS(NSTableMutableSet, NSMutableSet);

  public:
    NSUInteger count() override { return _table.count(); }
    id member(id object) override { return _table.member(object); }
    id stepFrom(NSUInteger& position) override { return _table.stepFrom(position); }
    const std::uint32_t* mutationCounter() override { return _table.mutationCounter(); }
    void addObject(id object) override;
    void removeObject(id object) override { _table.remove(object); }
    void removeAllObjects() override { _table.removeAll(); }
    MemberTable& table() { return _table; }

  protected:
    NSTableMutableSet() = default;
    ~NSTableMutableSet() = default;

  private:
    MemberTable _table;
};

/// Fills an empty table with the members of a set of any class; null is an empty set.
void fillTable(MemberTable& table, NSSet* set);

}  // namespace pelvor
