// SPDX-License-Identifier: Apache-2.0
#include "PBRangeUtil.h"

#include <algorithm>
#include <array>
#include <bit>
#include <span>
#include <vector>

#include "Private/PBRangeList.h"

namespace pelvor {
namespace {

bool isAbsent(NSRange range) { return range.location == NSNotFound; }

bool overlap(NSRange a, NSRange b) { return NSIntersectionRange(a, b).length > 0; }

}  // namespace

int PBCompareRanges(id obj1, id obj2, void*) {
    NSUInteger first = rangeInBox(obj1).location, second = rangeInBox(obj2).location;
    return first < second ? NSOrderedAscending : first > second ? NSOrderedDescending : NSOrderedSame;
}

NSUInteger PBIndexOfRangeInRanges(NSRange findRng, NSArray* rngs) {
    return indexOfRange(rngs, [findRng](NSRange range) {
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

// Of two ranges that share no position.
bool isCovered(NSRange range, NSRange by) {
    if (range.length) return range.location >= by.location && PBMaxRange(range) <= PBMaxRange(by);
    if (by.length == 0) return range.location == by.location;
    return by.location <= range.location && range.location <= PBMaxRange(by);
}

}  // namespace

int PBSubtractionRanges(NSRange rng, NSRange subRng, NSRange* resPtr) {
    NSRange shared = NSIntersectionRange(rng, subRng);
    if (shared.length == 0) {
        if (isCovered(rng, subRng)) return 0;
        resPtr[0] = rng;
        return 1;
    }
    int count = 0;
    if (rng.location < shared.location) resPtr[count++] = {rng.location, shared.location - rng.location};
    if (PBMaxRange(shared) < PBMaxRange(rng))
        resPtr[count++] = {PBMaxRange(shared), PBMaxRange(rng) - PBMaxRange(shared)};
    return count;
}

// MARK: Lists

namespace {

using Ranges = std::vector<NSRange>;

// An object, so that sorting need not call it.
constexpr auto isBefore = [](NSRange a, NSRange b) { return a.location < b.location; };

// By passes over the digits of the locations; a comparing sort is slower on long lists.
void sortByDigits(Ranges& ranges) {
    constexpr unsigned kBits = 11, kDigits = 1u << kBits;
    Ranges other(ranges.size());
    for (unsigned shift = 0; shift < 32; shift += kBits) {
        auto digit = [shift](NSRange range) { return range.location >> shift & (kDigits - 1); };
        std::array<std::size_t, kDigits + 1> starts{};
        for (NSRange range : ranges) ++starts[digit(range) + 1];
        if (starts[digit(ranges.front()) + 1] == ranges.size()) continue;
        for (unsigned i = 0; i < kDigits; ++i) starts[i + 1] += starts[i];
        for (NSRange range : ranges) other[starts[digit(range)]++] = range;
        ranges.swap(other);
    }
}

enum class Empties : bool { keep, remove };

// Takes `next` into `current` if it belongs there; answers false where it is an entry of its own.
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

// Merges ranges that come in order; writes the results over those that have been read.
class Merger {
  public:
    Merger(NSRange* place, Empties empties) : _place(place), _empties(empties) {}

    void begin(NSRange first) { _current = first; }
    void take(NSRange next) {
        if (merge(_current, next, _empties)) return;
        *_place++ = _current;
        _current = next;
    }
    NSRange* end() {
        *_place++ = _current;
        return _place;
    }

  private:
    NSRange* _place;
    NSRange _current;
    Empties _empties;
};

NSRange* mergeInOrder(std::span<NSRange> ranges, Empties empties) {
    Merger merger(ranges.data(), empties);
    merger.begin(ranges.front());
    for (NSRange range : ranges.subspan(1)) merger.take(range);
    return merger.end();
}

// Of two lists in order, one behind the other. Of ranges at one location the first list's come first.
NSRange* mergeTwo(std::span<NSRange> ranges, std::size_t count, Empties empties) {
    Ranges copy(ranges.begin(), ranges.begin() + count);
    const NSRange *one = copy.data(), *oneEnd = one + count;
    const NSRange *other = ranges.data() + count, *otherEnd = ranges.data() + ranges.size();
    Merger merger(ranges.data(), empties);
    merger.begin(isBefore(*other, *one) ? *other++ : *one++);
    while (one != oneEnd && other != otherEnd) {
        // Which is next cannot be foreseen: no branch asks for it.
        std::size_t isOther = isBefore(*other, *one);
        auto first = std::bit_cast<std::uint64_t>(*one), second = std::bit_cast<std::uint64_t>(*other);
        merger.take(std::bit_cast<NSRange>(first ^ ((first ^ second) & -std::uint64_t{isOther})));
        other += isOther;
        one += 1 - isOther;
    }
    while (one != oneEnd) merger.take(*one++);
    while (other != otherEnd) merger.take(*other++);
    return merger.end();
}

// Answers the end of what is left.
NSRange* sortAndMerge(Ranges& ranges, Empties empties) {
    // Often a list in order, or one with another behind it, or with a few ranges.
    auto second = std::is_sorted_until(ranges.begin(), ranges.end(), isBefore);
    bool areTwo = std::is_sorted(second, ranges.end(), isBefore);
    auto count = second - ranges.begin(), others = ranges.end() - second;
    if (areTwo && others > count / 8) return mergeTwo(ranges, static_cast<std::size_t>(count), empties);
    constexpr std::size_t kLong = 2048;
    if (areTwo)
        std::inplace_merge(ranges.begin(), second, ranges.end(), isBefore);
    else if (ranges.size() < kLong)
        std::stable_sort(ranges.begin(), ranges.end(), isBefore);
    else
        sortByDigits(ranges);
    return mergeInOrder(ranges, empties);
}

NSArray* normalizedList(Ranges ranges, Empties empties) {
    NSRange* end = sortAndMerge(ranges, empties);
    ranges.resize(static_cast<std::size_t>(end - ranges.data()));
    if (ranges.size() < ranges.capacity() / 2) ranges.shrink_to_fit();
    return PBRangeList::listOf(std::move(ranges));
}

}  // namespace

NSArray* PBNormalizeRanges(NSArray* ranges, bool isRemZeros) {
    if (!ranges || ranges->count() < 2) return ranges;
    return normalizedList(rangesOf(ranges), isRemZeros ? Empties::remove : Empties::keep);
}

NSArray* PBAddRangeToNormalizedRanges(NSRange addRng, NSArray* rngs) {
    Ranges all = rangesOf(rngs);
    all.push_back(addRng);
    return normalizedList(std::move(all), Empties::remove);
}

namespace {

// The list without what the range takes from its first touched entry.
NSArray* subtracted(NSRange range, NSArray* ranges, NSUInteger& active) {
    NSUInteger index = PBIndexOfRangeInRanges(range, ranges);
    if (index == NSNotFound) return ranges;
    Ranges left = rangesOf(ranges);
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
