// SPDX-License-Identifier: Apache-2.0
// Operations on ranges, lists of ranges and index sets, beside sets of bits.
#include <algorithm>
#include <bitset>
#include <cstdint>
#include <vector>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSValue.h"
#include "NSArray-PelvorRangeArray.h"
#include "NSIndexSet-PelvorAdditions.h"
#include "Require.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

constexpr std::size_t kPlaces = 1024;
using Bits = std::bitset<kPlaces>;
using Ranges = std::vector<NSRange>;

// Ranges lie from `base` on: at 0, or so that the last place is the last of all.
struct Model {
    NSUInteger base;

    Bits bitsOf(NSRange range) const {
        require(range.length <= kPlaces && range.location - base + range.length <= kPlaces, "out of place");
        Bits bits;
        for (NSUInteger i = 0; i < range.length; ++i) bits.set(range.location - base + i);
        return bits;
    }
    Bits bitsOf(const Ranges& ranges) const {
        Bits bits;
        for (NSRange range : ranges) bits |= bitsOf(range);
        return bits;
    }

    void checkNormal(const Ranges& ranges, const Bits& expected) const {
        require(bitsOf(ranges) == expected, "a normal list covers something else");
        for (std::size_t i = 1; i < ranges.size(); ++i)
            require(PBMaxRange(ranges[i - 1]) < ranges[i].location, "a normal list is not in order");
    }

    void checkInsertion(NSRange range, NSRange inserted) const {
        if (base) return;
        Bits bits = bitsOf(range), expected, below = bitsOf(NSRange{0, inserted.location});
        expected = (bits & below) | (bits & ~below) << inserted.length;
        bool isInside = range.location < inserted.location && inserted.location < PBMaxRange(range);
        if (isInside) expected |= bitsOf(inserted);
        NSRange adjusted = PBAdjustedRangeForInsertedRange(range, inserted);
        require(bitsOf(adjusted) == expected, "after an insertion");
    }

    void checkRemoval(NSRange range, NSRange removed) const {
        // A removal over the range's start moves it too far, as it should.
        if (removed.location < range.location && range.location < PBMaxRange(removed) &&
            PBMaxRange(removed) < PBMaxRange(range))
            return;
        Bits bits = bitsOf(range), below = bitsOf(NSRange{base, removed.location - base});
        Bits expected = (bits & below) | (((bits & ~below) >> removed.length) & ~below);
        require(bitsOf(PBAdjustedRangeForRemovedRange(range, removed)) == expected, "after a removal");
    }

    void checkPair(NSRange a, NSRange b) const {
        NSRange pieces[2];
        int count = PBSubtractionRanges(a, b, pieces);
        require(bitsOf(Ranges(pieces, pieces + count)) == (bitsOf(a) & ~bitsOf(b)), "subtraction");
        NSRange both = PBContiguousUnionRange(a, b);
        bool meet = a.location <= PBMaxRange(b) && b.location <= PBMaxRange(a);
        require(meet ? bitsOf(both) == (bitsOf(a) | bitsOf(b)) : both == PBNotFoundRange, "union");
        checkInsertion(a, b);
        checkRemoval(a, b);
    }
};

NSMutableArray* listOf(const Ranges& ranges) {
    NSMutableArray* list = NSMutableArray::array();
    for (NSRange range : ranges) addRange(list, range);
    return list;
}

Ranges rangesOf(NSArray* list) {
    Ranges ranges;
    for (id value : list) ranges.push_back(cast<NSValue>(value)->rangeValue());
    return ranges;
}

NSUInteger indexOf(NSRange wanted, const Ranges& ranges) {
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        NSRange r = ranges[i];
        bool holdsPoint = r.location <= wanted.location && wanted.location < PBMaxRange(r);
        bool meets = wanted.location < PBMaxRange(r) && r.location < PBMaxRange(wanted) && r.length;
        if (r == wanted || (wanted.length ? meets : holdsPoint)) return static_cast<NSUInteger>(i);
    }
    return NSNotFound;
}

void checkSelection(const Model& model, const Ranges& normal, NSRange range) {
    NSArray* list = listOf(normal);
    NSUInteger active = 0, touched = indexOf(range, normal);
    require(PBIndexOfRangeInRanges(range, list) == touched, "found at another index");
    Ranges more = rangesOf(PBCombineRangeWithNormalizedRanges(range, list, PBSelectionMode_Add, &active));
    if (normal.size() && range.length) {
        model.checkNormal(more, model.bitsOf(normal) | model.bitsOf(range));
        require((model.bitsOf(more[active]) & model.bitsOf(range)).any(), "another is active");
    }
    Bits expected = model.bitsOf(normal);
    if (touched != NSNotFound) expected &= ~(model.bitsOf(normal[touched]) & model.bitsOf(range));
    Ranges less =
        rangesOf(PBCombineRangeWithNormalizedRanges(range, list, PBSelectionMode_Subtract, &active));
    require(model.bitsOf(less) == expected, "taken from a selection");
    require(normal.empty() || active < less.size(), "no active range");
}

void checkIndexSet(const Ranges& ranges, const Bits& bits) {
    NSIndexSet* set = NSIndexSet_PelvorAdditions::indexSetWithRangeArray(listOf(ranges));
    require(set->count() == bits.count(), "index set counts differently");
    for (NSUInteger i = 0; i < kPlaces; i += 7) {
        NSUInteger first = i;
        while (first < kPlaces && !bits[first]) ++first;
        NSUInteger end = first;
        while (end < kPlaces && bits[end]) ++end;
        NSRange expected = first == kPlaces ? PBNotFoundRange : NSRange{first, end - first};
        require(indexRangeStartingAtOrAfterIndex(set, i) == expected, "another run of indexes");
    }
}

void run(const std::uint8_t* data, std::size_t size) {
    Model model{data[0] & 1 ? 0u - NSUInteger{kPlaces} : 0};
    unsigned longest = 1 + data[0] / 2 % 32;
    Ranges ranges;
    for (std::size_t i = 1; i + 1 < size; i += 2)
        ranges.push_back({model.base + data[i] * 3u, data[i + 1] % longest});
    if (ranges.size() < 2) return;
    // A first entry that is empty stays; with one at the start that has a length there is none.
    ranges[0] = {model.base, 1};
    for (std::size_t i = 1; i < ranges.size(); ++i) model.checkPair(ranges[i - 1], ranges[i]);
    Bits bits = model.bitsOf(ranges);
    Ranges normal = rangesOf(PBNormalizeRanges(listOf(ranges), true));
    model.checkNormal(normal, bits);
    require(model.bitsOf(rangesOf(PBNormalizeRanges(listOf(ranges), false))) == bits, "empty ranges kept");
    auto normalOf = [](Ranges part) { return PBNormalizeRanges(listOf(part), true); };
    auto middle = ranges.begin() + static_cast<std::ptrdiff_t>(ranges.size() / 2);
    NSArray* one = normalOf({ranges.begin(), middle});
    NSArray* joined = one->arrayByAddingObjectsFromArray(normalOf({middle, ranges.end()}));
    require(rangesOf(PBNormalizeRanges(joined, true)) == normal, "two lists joined");
    checkSelection(model, normal, ranges.back());
    if (!model.base) checkIndexSet(ranges, bits);
    NSMutableArray* sorted = NSMutableArray::array();
    for (NSRange range : ranges) insertSortedRange(sorted, range);
    std::stable_sort(ranges.begin(), ranges.end(), [](NSRange a, NSRange b) {
        return std::pair(a.location, a.length) < std::pair(b.location, b.length);
    });
    require(rangesOf(sorted) == ranges, "sorted insertion");
}

}  // namespace
}  // namespace pelvor

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pelvor::AutoreleasePool pool;
    if (size >= 2) pelvor::run(data, std::min<std::size_t>(size, 200));
    return 0;
}
