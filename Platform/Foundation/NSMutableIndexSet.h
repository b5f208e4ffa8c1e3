// SPDX-License-Identifier: Apache-2.0
// NSMutableIndexSet: a set of indexes that can be changed.
#pragma once

#include "Foundation/NSIndexSet.h"

namespace pelvor {

/// A set of indexes that can be changed:
///
///     auto selected = NSMutableIndexSet::init();
///     selected->addIndexesInRange({2, 4});
///     selected->removeIndex(3);  // 2, 4 and 5 remain
///
/// One thread at a time.
class PELVOR_EXPORT NSMutableIndexSet : public NSIndexSet {
    PELVOR_CLASS(NSMutableIndexSet, NSIndexSet);
    PELVOR_INHERITED_CREATORS(indexSet, indexSetWithIndex, indexSetWithIndexesInRange, init, initWithIndex,
                              initWithIndexesInRange, initWithIndexSet);

  public:
    void addIndex(NSUInteger index);
    void addIndexesInRange(NSRange range);
    void addIndexes(NSIndexSet* other);
    // These ignore indexes that are not members.
    void removeIndex(NSUInteger index) { remove({index, 1}); }
    void removeIndexesInRange(NSRange range) { remove(range); }
    void removeIndexes(NSIndexSet* other);
    void removeAllIndexes() { _runs.clear(); }

  protected:
    NSMutableIndexSet() = default;
    ~NSMutableIndexSet() = default;
};

}  // namespace pelvor
