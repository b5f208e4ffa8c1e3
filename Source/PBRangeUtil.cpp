// SPDX-License-Identifier: Apache-2.0
#include "PBRangeUtil.h"

#include <algorithm>
#include <array>
#include <vector>

#include "BoxedRangesPrivate.h"
#include "Foundation/NSMutableArray.h"

namespace pelvor {
namespace {

bool isAbsent(NSRange range) { return range.location == NSNotFound; }

bool overlap(NSRange a, NSRange b) { return NSIntersectionRange(a, b).length > 0; }

}  // namespace

int PBCompareRanges(id obj1, id obj2, void*) {
    BoxedRangeReader rangeOf;
    NSUInteger first = rangeOf(obj1).location, second = rangeOf(obj2).location;
    return first < second ? NSOrderedAscending : first > second ? NSOrderedDescending : NSOrderedSame;
}

NSUInteger PBIndexOfRangeInRanges(NSRange findRng, NSArray* rngs) {
    BoxedRangeReader rangeOf;
    NSUInteger index = 0;
    for (id entry : rngs) {
        NSRange range = rangeOf(entry);
        if (range == findRng) return index;
        if (findRng.length ? overlap(findRng, range)
                           : range.location <= findRng.location && findRng.location < PBMaxRange(range))
            return index;
        ++index;
    }
    return NSNotFound;
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

// A range with the object that boxes it; none once the range is another.
struct Entry {
    NSRange range;
    Object* box;
};

// Locations in passes over their digits, each with the place of its entry; a comparing sort is slower on long
// lists.
void sortByDigits(std::vector<std::uint64_t>& keys) {
    constexpr unsigned kBits = 11, kDigits = 1u << kBits;
    std::vector<std::uint64_t> other(keys.size());
    for (unsigned shift = 32; shift < 64; shift += kBits) {
        auto digit = [shift](std::uint64_t key) { return key >> shift & (kDigits - 1); };
        std::array<std::size_t, kDigits + 1> starts{};
        for (std::uint64_t key : keys) ++starts[digit(key) + 1];
        if (starts[digit(keys.front()) + 1] == keys.size()) continue;
        for (unsigned i = 0; i < kDigits; ++i) starts[i + 1] += starts[i];
        for (std::uint64_t key : keys) other[starts[digit(key)]++] = key;
        keys.swap(other);
    }
}

// The entries in order of their locations, those with the same as they were; with their places in the key's
// lower half where they stay unsorted.
struct Sorted {
    std::vector<Entry> entries;
    std::vector<std::uint64_t> keys;

    const Entry& operator[](std::size_t i) const { return entries[keys.empty() ? i : keys[i] & 0xFFFFFFFF]; }
};

void sortByLocation(Sorted& list) {
    std::vector<Entry>& entries = list.entries;
    auto isBefore = [](const Entry& a, const Entry& b) { return a.range.location < b.range.location; };
    // Often a list in order, or one with another behind it.
    auto second = std::is_sorted_until(entries.begin(), entries.end(), isBefore);
    if (std::is_sorted(second, entries.end(), isBefore))
        return std::inplace_merge(entries.begin(), second, entries.end(), isBefore);
    constexpr std::size_t kLong = 2048;
    if (entries.size() < kLong) return std::stable_sort(entries.begin(), entries.end(), isBefore);
    list.keys.reserve(entries.size());
    for (const Entry& entry : entries)
        list.keys.push_back(std::uint64_t{entry.range.location} << 32 | list.keys.size());
    sortByDigits(list.keys);
}

enum class Empties : bool { keep, remove };

// Takes `next` into `current` if it belongs there; answers false where it is an entry of its own.
bool merge(Entry& current, const Entry& next, Empties empties) {
    NSRange& range = current.range;
    const NSRange& r = next.range;
    if (r.length == 0 && (empties == Empties::remove || r.location - range.location < range.length))
        return true;
    if (range.length == 0 && range.location - r.location < r.length) {
        current = next;
        return true;
    }
    bool touches = PBMaxRange(range) == r.location;
    if (!overlap(r, range) && !touches) return false;
    NSRange merged =
        overlap(r, range) ? NSUnionRange(range, r) : NSRange{range.location, PBMaxRange(r) - range.location};
    if (merged != range) current = {merged, nullptr};
    return true;
}

// An entry that nothing was merged into keeps its box.
void append(NSMutableArray* list, const Entry& entry) {
    if (entry.box) return list->addObject(entry.box);
    list->addObject(NSValue::initWithBytes_objCType(&entry.range, typeEncoding<NSRange>.text).get());
}

NSMutableArray* mergedList(const Sorted& list, Empties empties) {
    constexpr std::size_t kAhead = 12;
    std::size_t count = list.entries.size();
    auto merged = NSMutableArray::initWithCapacity(static_cast<NSUInteger>(count));
    Entry current = list[0];
    for (std::size_t i = 1; i < count; ++i) {
        // The entries and their boxes may lie anywhere in memory, and most boxes will be retained.
        if (i + 2 * kAhead < count) {
            __builtin_prefetch(&list[i + 2 * kAhead]);
            __builtin_prefetch(list[i + kAhead].box, 1);
        }
        const Entry& next = list[i];
        if (merge(current, next, empties)) continue;
        append(merged, current);
        current = next;
    }
    append(merged, current);
    return std::move(merged).autorelease();
}

// Whether the entries are in order, none empty, and none touching the next.
bool isNormalized(NSArray* ranges) {
    BoxedRangeReader rangeOf;
    std::uint64_t least = 0;
    for (id box : ranges) {
        NSRange range = rangeOf(box);
        if (range.location < least || PBMaxRange(range) <= range.location) return false;
        least = std::uint64_t{PBMaxRange(range)} + 1;
    }
    return true;
}

NSMutableArray* mutableListOf(NSArray* ranges) { return NSMutableArray::arrayWithArray(ranges); }

}  // namespace

NSArray* PBNormalizeRanges(NSArray* ranges, bool isRemZeros) {
    if (!ranges || ranges->count() < 2) return ranges;
    if (isNormalized(ranges)) return mutableListOf(ranges);
    BoxedRangeReader rangeOf;
    Sorted list;
    list.entries.reserve(ranges->count());
    for (id box : ranges) list.entries.push_back({rangeOf(box), box});
    sortByLocation(list);
    return mergedList(list, isRemZeros ? Empties::remove : Empties::keep);
}

NSArray* PBAddRangeToNormalizedRanges(NSRange addRng, NSArray* rngs) {
    NSMutableArray* all = mutableListOf(rngs);
    all->addObject(NSValue::valueWithRange(addRng));
    return PBNormalizeRanges(all, true);
}

namespace {

// The list without what the range takes from its first touched entry.
NSArray* subtracted(NSRange range, NSArray* ranges, NSUInteger& active) {
    NSUInteger index = PBIndexOfRangeInRanges(range, ranges);
    if (index == NSNotFound) return ranges;
    NSMutableArray* left = mutableListOf(ranges);
    NSRange pieces[2];
    int count = PBSubtractionRanges(BoxedRangeReader()(left->objectAtIndex(index)), range, pieces);
    left->removeObjectAtIndex(index);
    for (int i = 0; i < count; ++i)
        left->insertObject_atIndex(NSValue::valueWithRange(pieces[i]), index + static_cast<NSUInteger>(i));
    if (left->count() == 0) left->addObject(NSValue::valueWithRange({range.location, 0}));
    active = index < left->count() ? index : 0;
    return left;
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
        result = NSMutableArray::arrayWithObject(NSValue::valueWithRange(rng));
    else if (mode == PBSelectionMode_Add)
        result = added(rng, rngs, active);
    else if (mode == PBSelectionMode_Subtract)
        result = subtracted(rng, rngs, active);
    if (activeIdxPtr) *activeIdxPtr = active;
    return result;
}

}  // namespace pelvor
