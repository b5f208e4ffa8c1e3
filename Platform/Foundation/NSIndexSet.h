// SPDX-License-Identifier: Apache-2.0
// NSIndexSet: a set of indexes, kept as runs.
#pragma once

#include <span>
#include <vector>

#include "Foundation/NSRange.h"
#include "Foundation/ObjectPrinting.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSMutableIndexSet;

/// An immutable set of indexes from 0 to NSNotFound - 1, in ascending order.
///
///     NSIndexSet* rows = NSIndexSet::indexSetWithIndexesInRange({2, 4});
///     for (NSUInteger row = rows->firstIndex(); row != NSNotFound; row = rows->indexGreaterThanIndex(row))
///         select(row);                                                       // 2, 3, 4, 5
///
/// A set takes memory for each run of consecutive indexes, not for each index. Making a set or adding to one
/// raises NSRangeException for greater indexes. Immutable sets may be used on any thread.
class PELVOR_EXPORT NSIndexSet : public NSObject {
    PELVOR_CLASS(NSIndexSet, NSObject);
    PELVOR_CREATORS(indexSet, indexSetWithIndex, indexSetWithIndexesInRange, init, initWithIndex,
                    initWithIndexesInRange, initWithIndexSet);

  public:
    // Creation. Operations whose names begin with "init" return owned sets, the others borrowed ones.

    static NSIndexSet* indexSet(Class* cls = classObject());
    static NSIndexSet* indexSetWithIndex(NSUInteger index, Class* cls = classObject());
    static NSIndexSet* indexSetWithIndexesInRange(NSRange range, Class* cls = classObject());
    static Retained<NSIndexSet> init(Class* cls = classObject());
    static Retained<NSIndexSet> initWithIndex(NSUInteger index, Class* cls = classObject());
    static Retained<NSIndexSet> initWithIndexesInRange(NSRange range, Class* cls = classObject());
    /// A set of the members of the other set; empty for null.
    static Retained<NSIndexSet> initWithIndexSet(NSIndexSet* other, Class* cls = classObject());

    // C++ only
    /// The members as ranges in ascending order. No range is empty, and no two ranges touch. Valid until the
    /// set changes.
    std::span<const NSRange> runs() PELVOR_LIFETIMEBOUND { return _runs; }

    NSUInteger count();
    // The next six operations return NSNotFound if there is no such member.
    NSUInteger firstIndex();
    NSUInteger lastIndex();
    NSUInteger indexGreaterThanIndex(NSUInteger index);
    NSUInteger indexGreaterThanOrEqualToIndex(NSUInteger index);
    NSUInteger indexLessThanIndex(NSUInteger index);
    NSUInteger indexLessThanOrEqualToIndex(NSUInteger index);

    bool containsIndex(NSUInteger index);
    /// Whether all indexes of the range are members; false for an empty range.
    bool containsIndexesInRange(NSRange range);
    bool containsIndexes(NSIndexSet* other);
    bool intersectsIndexesInRange(NSRange range);
    bool isEqualToIndexSet(NSIndexSet* other);

    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    /// "<NSIndexSet: 0x…>(2-5 7)".
    NSString* description() override;
    Retained<Object> copyWithZone(void* zone) override;
    Retained<Object> mutableCopyWithZone(void* zone) override;
    Retained<NSIndexSet> copy();
    Retained<NSMutableIndexSet> mutableCopy();

  protected:
    NSIndexSet() = default;
    ~NSIndexSet() = default;

    /// Adds a range that ends at or before NSNotFound.
    void add(NSRange range);
    void remove(NSRange range);

    std::vector<NSRange> _runs;

  private:
    std::size_t firstRunEndingAfter(NSUInteger index);
};

}  // namespace pelvor
