// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSMutableIndexSet.h"

#include "Foundation/FoundationLibrary.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSMutableIndexSet, foundationLibrary) {
    methods.instance<"addIndex:", &NSMutableIndexSet::addIndex>();
    methods.instance<"addIndexesInRange:", &NSMutableIndexSet::addIndexesInRange>();
    methods.instance<"addIndexes:", &NSMutableIndexSet::addIndexes>();
    methods.instance<"removeIndex:", &NSMutableIndexSet::removeIndex>();
    methods.instance<"removeIndexesInRange:", &NSMutableIndexSet::removeIndexesInRange>();
    methods.instance<"removeIndexes:", &NSMutableIndexSet::removeIndexes>();
    methods.instance<"removeAllIndexes", &NSMutableIndexSet::removeAllIndexes>();
}

void NSMutableIndexSet::addIndex(NSUInteger index) {
    requireIndex(index, NSNotFound, "addIndex:");
    add({index, 1});
}

void NSMutableIndexSet::addIndexesInRange(NSRange range) {
    requireRange(range, NSNotFound, "addIndexesInRange:");
    add(range);
}

void NSMutableIndexSet::addIndexes(NSIndexSet* other) {
    if (!other || other == this) return;
    for (NSRange run : other->runs()) add(run);
}

void NSMutableIndexSet::removeIndexes(NSIndexSet* other) {
    if (other == this) return removeAllIndexes();
    if (!other) return;
    for (NSRange run : other->runs()) remove(run);
}

}  // namespace pelvor
