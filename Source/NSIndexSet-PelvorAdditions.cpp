// SPDX-License-Identifier: Apache-2.0
#include "NSIndexSet-PelvorAdditions.h"

#include <algorithm>
#include <vector>

#include "Foundation/NSArray.h"
#include "Foundation/NSNumber.h"
#include "PBRangeUtil.h"
#include "Private/PBRangeList.h"
#include "Runtime/Message.h"
#include "Runtime/Registry.h"

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
    // In order each goes to the end of the set, instead of moving what follows.
    auto isBefore = [](NSRange a, NSRange b) { return a.location < b.location; };
    if (!std::is_sorted(ranges.begin(), ranges.end(), isBefore))
        std::sort(ranges.begin(), ranges.end(), isBefore);
    auto set = NSMutableIndexSet::init();
    for (NSRange range : ranges) set->addIndexesInRange(range);
    return set->copy().autorelease();
}

// The set of all elements, each read as a range.
template <class RangeOf>
NSIndexSet* indexSetOf(NSArray* elements, RangeOf rangeOf) {
    std::vector<NSRange> ranges;
    if (elements) ranges.reserve(elements->count());
    for (id element : elements) ranges.push_back(rangeOf(element));
    return indexSetOf(std::move(ranges));
}

}  // namespace

constinit const Category NSIndexSet_PelvorAdditions_category =
    Category::of<NSIndexSet, defineAdditions>("PelvorAdditions");

NSIndexSet* NSIndexSet_PelvorAdditions::indexSetWithRangeArray(NSArray* ranges) {
    if (const std::vector<NSRange>* plain = PBRangeList::plainRangesOf(ranges)) return indexSetOf(*plain);
    return indexSetOf(ranges, [](id element) {
        return cast<NSValue>(element) ? rangeInBox(element) : send<NSRange>(element, "rangeValue"_sel);
    });
}

NSIndexSet* NSIndexSet_PelvorAdditions::indexSetWithNumberArray(NSArray* numbers) {
    return indexSetOf(numbers, [](id element) {
        auto* number = cast<NSNumber>(element);
        return NSRange{number ? number->unsignedIntValue() : send<unsigned>(element, "unsignedIntValue"_sel),
                       1};
    });
}

NSRange indexRangeStartingAtOrAfterIndex(NSIndexSet* set, NSUInteger index) {
    auto runs = set->runs();
    auto run =
        std::partition_point(runs.begin(), runs.end(), [index](NSRange r) { return NSMaxRange(r) <= index; });
    if (run == runs.end()) return PBNotFoundRange;
    NSUInteger first = std::max(index, run->location);
    return {first, NSMaxRange(*run) - first};
}

}  // namespace pelvor
