// SPDX-License-Identifier: Apache-2.0
#include "PBRangeUtil.h"

#include <algorithm>
#include <array>
#include <vector>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSString.h"
#include "Foundation/NSValue.h"
#include "Runtime/NSException.h"

namespace pelvor {
namespace {

NSRange rangeOf(id object) {
    auto* value = cast<NSValue>(object);
    if (!value) raiseException(NSInvalidArgumentException, u"%@ is no boxed range"_ns, object);
    return value->rangeValue();
}

bool isAbsent(NSRange range) { return range.location == NSNotFound; }

bool overlap(NSRange a, NSRange b) { return NSIntersectionRange(a, b).length > 0; }

}  // namespace

int PBCompareRanges(id obj1, id obj2, void*) {
    NSUInteger first = rangeOf(obj1).location, second = rangeOf(obj2).location;
    return first < second ? NSOrderedAscending : first > second ? NSOrderedDescending : NSOrderedSame;
}

NSUInteger PBIndexOfRangeInRanges(NSRange findRng, NSArray* rngs) {
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

NSRange PBAdjustedRangeForInsertedRange(NSRange adjRng, NSRange inRng) {
    if (isAbsent(adjRng)) return adjRng;
    if (adjRng.location >= inRng.location) return {adjRng.location + inRng.length, adjRng.length};
    if (PBMaxRange(adjRng) > inRng.location) return {adjRng.location, adjRng.length + inRng.length};
    return adjRng;
}

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

// Stable, in passes over the digits of the location; a comparing sort is slower on long lists.
void sortByDigits(std::vector<Entry>& entries) {
    constexpr std::uint32_t kBits = 11, kDigits = 1u << kBits;
    std::vector<Entry> other(entries.size());
    for (std::uint32_t shift = 0; shift < 32; shift += kBits) {
        auto digit = [shift](const Entry& e) { return e.range.location >> shift & (kDigits - 1); };
        std::array<std::size_t, kDigits + 1> starts{};
        for (const Entry& entry : entries) ++starts[digit(entry) + 1];
        if (starts[digit(entries.front()) + 1] == entries.size()) continue;
        for (std::uint32_t i = 0; i < kDigits; ++i) starts[i + 1] += starts[i];
        for (const Entry& entry : entries) other[starts[digit(entry)]++] = entry;
        entries.swap(other);
    }
}

void sortByLocation(std::vector<Entry>& entries) {
    auto isBefore = [](const Entry& a, const Entry& b) { return a.range.location < b.range.location; };
    if (std::is_sorted(entries.begin(), entries.end(), isBefore)) return;
    constexpr std::size_t kLong = 2048;
    if (entries.size() < kLong)
        std::stable_sort(entries.begin(), entries.end(), isBefore);
    else
        sortByDigits(entries);
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

// The merged entries at the front; answers how many.
std::size_t mergeSorted(std::vector<Entry>& entries, Empties empties) {
    std::size_t last = 0;
    for (std::size_t i = 1; i < entries.size(); ++i)
        if (!merge(entries[last], entries[i], empties)) entries[++last] = entries[i];
    return last + 1;
}

// Entries that nothing was merged into keep their box.
NSMutableArray* listOf(const std::vector<Entry>& entries, std::size_t count) {
    std::vector<Retained<Object>> made;
    std::vector<Object*> boxes;
    boxes.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        if (entries[i].box) {
            boxes.push_back(entries[i].box);
            continue;
        }
        made.push_back(NSValue::initWithBytes_objCType(&entries[i].range, typeEncoding<NSRange>.text));
        boxes.push_back(made.back().get());
    }
    return NSMutableArray::arrayWithObjects_count(boxes.data(), static_cast<NSUInteger>(count));
}

NSMutableArray* mutableListOf(NSArray* ranges) { return NSMutableArray::arrayWithArray(ranges); }

}  // namespace

NSArray* PBNormalizeRanges(NSArray* ranges, bool isRemZeros) {
    if (!ranges || ranges->count() < 2) return ranges;
    std::vector<Entry> entries;
    entries.reserve(ranges->count());
    for (id box : ranges) entries.push_back({rangeOf(box), box});
    sortByLocation(entries);
    return listOf(entries, mergeSorted(entries, isRemZeros ? Empties::remove : Empties::keep));
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
    int count = PBSubtractionRanges(rangeOf(left->objectAtIndex(index)), range, pieces);
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
