// SPDX-License-Identifier: Apache-2.0
#include "NSIndexSet-PelvorAdditions.h"

#include <algorithm>
#include <vector>

#include "Foundation/NSArray.h"
#include "Foundation/NSMutableIndexSet.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSString.h"
#include "PBRangeUtil.h"
#include "Private/PBRangeList.h"
#include "Runtime/NSException.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSIndexSet>& methods) {
    methods.classLevel<"indexSetWithRangeArray:", &NSIndexSet_PelvorAdditions::indexSetWithRangeArray>();
    methods.classLevel<"indexSetWithNumberArray:", &NSIndexSet_PelvorAdditions::indexSetWithNumberArray>();
    methods.instance<"indexRangeStartingAtOrAfterIndex:", &indexRangeStartingAtOrAfterIndex>();
}

NSIndexSet* indexSetOf(std::vector<NSRange> ranges) {
    if (ranges.empty()) return NSIndexSet::indexSet();
    if (ranges.size() == 1) return NSIndexSet::indexSetWithIndexesInRange(ranges.front());
    // Ranges in ascending order are each added at the end of the set, which moves nothing.
    auto isBefore = [](NSRange a, NSRange b) { return a.location < b.location; };
    if (!std::is_sorted(ranges.begin(), ranges.end(), isBefore))
        std::sort(ranges.begin(), ranges.end(), isBefore);
    auto set = NSMutableIndexSet::init();
    for (NSRange range : ranges) set->addIndexesInRange(range);
    return set->copy().autorelease();
}

}  // namespace

constinit const Category NSIndexSet_PelvorAdditions_category =
    Category::of<NSIndexSet, defineAdditions>("PelvorAdditions");

NSIndexSet* NSIndexSet_PelvorAdditions::indexSetWithRangeArray(NSArray* ranges) {
    return indexSetOf(rangesOf(ranges, "indexSetWithRangeArray:"));
}

NSIndexSet* NSIndexSet_PelvorAdditions::indexSetWithNumberArray(NSArray* numbers) {
    std::vector<NSRange> ranges;
    if (numbers) ranges.reserve(numbers->count());
    for (id element : numbers) {
        auto* number = cast<NSNumber>(element);
        if (!number)
            raiseException(NSInvalidArgumentException,
                           u"indexSetWithNumberArray: the array holds %@, which is no number"_ns, element);
        ranges.push_back({number->unsignedIntValue(), 1});
    }
    return indexSetOf(std::move(ranges));
}

NSRange indexRangeStartingAtOrAfterIndex(NSIndexSet* set, NSUInteger index) {
    requireArgument(set, "indexRangeStartingAtOrAfterIndex:", "the set");
    auto runs = set->runs();
    auto run =
        std::partition_point(runs.begin(), runs.end(), [index](NSRange r) { return NSMaxRange(r) <= index; });
    if (run == runs.end()) return PBNotFoundRange;
    NSUInteger first = std::max(index, run->location);
    return {first, NSMaxRange(*run) - first};
}

}  // namespace pelvor
