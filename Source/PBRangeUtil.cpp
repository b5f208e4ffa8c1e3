// SPDX-License-Identifier: Apache-2.0
#include "PBRangeUtil.h"

#include <algorithm>
#include <vector>

#include "Private/PBRangeList.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

bool isAbsent(NSRange range) { return range.location == NSNotFound; }

bool overlap(NSRange a, NSRange b) { return NSIntersectionRange(a, b).length > 0; }

}  // namespace

int PBCompareRanges(id obj1, id obj2, void*) {
    constexpr const char* kOperation = "PBCompareRanges:";
    NSUInteger first = rangeInBox(obj1, kOperation).location, second = rangeInBox(obj2, kOperation).location;
    return first < second ? NSOrderedAscending : first > second ? NSOrderedDescending : NSOrderedSame;
}

NSUInteger PBIndexOfRangeInRanges(NSRange findRng, NSArray* rngs) {
    return indexOfRange(rngs, "PBIndexOfRangeInRanges:", [findRng](NSRange range) {
        if (range == findRng) return true;
        return findRng.length ? overlap(findRng, range)
                              : range.location <= findRng.location && findRng.location < PBMaxRange(range);
    });
}

// MARK: Adjusting

NSRange PBAdjustedRangeForRemovedRange(NSRange adjRng, NSRange remRng) {
    if (isAbsent(adjRng)) return adjRng;
    NSUInteger left = adjRng.length - NSIntersectionRange(adjRng, remRng).length;
    if (remRng.location > adjRng.location)
        return remRng.location >= PBMaxRange(adjRng) ? adjRng : NSRange{adjRng.location, left};
    if (PBMaxRange(adjRng) <= PBMaxRange(remRng)) return {remRng.location, 0};
    if (remRng.location == adjRng.location) return {adjRng.location, left};
    return {adjRng.location - remRng.length, left};
}

NSRange PBAdjustedUnionRangeForModifiedRange(NSRange adjRng, NSRange modRng, NSInteger delta) {
    if (isAbsent(adjRng)) return adjRng;
    auto change = static_cast<NSUInteger>(delta);
    NSRange old{modRng.location, modRng.length - change};
    if (adjRng.location <= modRng.location) {
        if (PBMaxRange(adjRng) <= modRng.location) return adjRng;
        if (PBMaxRange(adjRng) >= PBMaxRange(old)) return {adjRng.location, adjRng.length + change};
    } else if (adjRng.location >= PBMaxRange(old)) {
        return {adjRng.location + change, adjRng.length};
    }
    NSRange both = NSUnionRange(adjRng, old);
    return {both.location, both.length + change};
}

// MARK: Two ranges

NSRange PBContiguousUnionRange(NSRange rng1, NSRange rng2) {
    if (rng2.location < rng1.location) std::swap(rng1, rng2);
    return PBMaxRange(rng1) >= rng2.location ? NSUnionRange(rng1, rng2) : PBNotFoundRange;
}

namespace {

// For two ranges that share no position.
bool isCovered(NSRange range, NSRange by) {
    if (range.length) return range.location >= by.location && PBMaxRange(range) <= PBMaxRange(by);
    if (by.length == 0) return range.location == by.location;
    return by.location <= range.location && range.location <= PBMaxRange(by);
}

}  // namespace

int PBSubtractionRanges(NSRange rng, NSRange subRng, NSRange* resPtr) {
    NSRange shared = NSIntersectionRange(rng, subRng);
    NSUInteger count = 0;
    auto add = [&](NSUInteger start, NSUInteger end) {
        requireArgument(resPtr, "PBSubtractionRanges:", "the pointer to the results");
        resPtr[count++] = {start, end - start};
    };
    if (shared.length == 0) {
        if (!isCovered(rng, subRng)) add(rng.location, PBMaxRange(rng));
        return static_cast<int>(count);
    }
    if (rng.location < shared.location) add(rng.location, shared.location);
    if (PBMaxRange(shared) < PBMaxRange(rng)) add(PBMaxRange(shared), PBMaxRange(rng));
    return static_cast<int>(count);
}

// MARK: Lists

namespace {

using Ranges = std::vector<NSRange>;

enum class Empties : bool { keep, remove };

// Merges `next`, which does not sort before `current`, into `current` if the two overlap or touch; drops
// `next` if it is empty and is to be removed. Returns false if `next` is an entry of its own.
bool merge(NSRange& current, NSRange next, Empties empties) {
    if (next.length == 0 && (empties == Empties::remove || next.location - current.location < current.length))
        return true;
    if (current.length == 0 && current.location - next.location < next.length)
        current = next;
    else if (overlap(next, current))
        current = NSUnionRange(current, next);
    else if (PBMaxRange(current) == next.location)
        current.length += next.length;
    else
        return false;
    return true;
}

NSArray* normalizedList(Ranges ranges, Empties empties) {
    auto isBefore = [](NSRange a, NSRange b) { return a.location < b.location; };
    auto unsorted = std::is_sorted_until(ranges.begin(), ranges.end(), isBefore);
    if (ranges.end() - unsorted == 1)  // a range was added to a list in order
        std::rotate(std::upper_bound(ranges.begin(), unsorted, *unsorted, isBefore), unsorted, ranges.end());
    else if (unsorted != ranges.end())
        std::sort(ranges.begin(), ranges.end(), isBefore);
    auto last = ranges.begin();  // the results stand over ranges that have been read
    for (auto next = last + 1; next != ranges.end(); ++next)
        if (!merge(*last, *next, empties)) *++last = *next;
    ranges.erase(last + 1, ranges.end());
    return PBRangeList::listOf(std::move(ranges));
}

}  // namespace

NSArray* PBNormalizeRanges(NSArray* ranges, bool isRemZeros) {
    if (!ranges || ranges->count() < 2) return ranges;
    return normalizedList(rangesOf(ranges, "PBNormalizeRanges:"),
                          isRemZeros ? Empties::remove : Empties::keep);
}

NSArray* PBAddRangeToNormalizedRanges(NSRange addRng, NSArray* rngs) {
    Ranges all = rangesOf(rngs, "PBAddRangeToNormalizedRanges:");
    all.push_back(addRng);
    return normalizedList(std::move(all), Empties::remove);
}

namespace {

// The list after the range was taken away from the first entry that it touches.
NSArray* subtracted(NSRange range, NSArray* ranges, NSUInteger& active) {
    NSUInteger index = PBIndexOfRangeInRanges(range, ranges);
    if (index == NSNotFound) return ranges;
    Ranges left = rangesOf(ranges, "PBCombineRangeWithNormalizedRanges:");
    NSRange pieces[2];
    int count = PBSubtractionRanges(left[index], range, pieces);
    auto place = left.erase(left.begin() + index);
    left.insert(place, pieces, pieces + count);
    if (left.empty()) left.push_back({range.location, 0});
    active = index < left.size() ? index : 0;
    return PBRangeList::listOf(std::move(left));
}

NSArray* added(NSRange range, NSArray* ranges, NSUInteger& active) {
    NSArray* all = PBAddRangeToNormalizedRanges(range, ranges);
    NSUInteger index = PBIndexOfRangeInRanges(range, all);
    active = index == NSNotFound ? 0 : index;
    return all;
}

}  // namespace

NSArray* PBCombineRangeWithNormalizedRanges(NSRange rng, NSArray* rngs, PBSelectionMode mode,
                                            NSUInteger* activeIdxPtr) {
    NSUInteger active = 0;
    NSArray* result = nullptr;
    if (mode == PBSelectionMode_Overwrite)
        result = PBRangeList::listOf({rng});
    else if (mode == PBSelectionMode_Add)
        result = added(rng, rngs, active);
    else if (mode == PBSelectionMode_Subtract)
        result = subtracted(rng, rngs, active);
    if (activeIdxPtr) *activeIdxPtr = active;
    return result;
}

}  // namespace pelvor
