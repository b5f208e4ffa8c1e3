// SPDX-License-Identifier: Apache-2.0
// Tests of ranges under edits and of lists of ranges, the latter also against a set of bits.
#include "PBRangeUtil.h"

#include <bitset>

#include "NSValue-PelvorAdditions.h"
#include "PBPlanarRange.h"
#include "Prelude.h"

namespace pelvor {

void PrintTo(const NSRange& range, std::ostream* out) {
    *out << "(" << range.location << "," << range.length << ")";
}

namespace {

using Ranges = std::vector<NSRange>;
constexpr NSUInteger kLate = 0xFFFFFFF0;
constexpr NSRange kLast{kLate, 15};
constexpr NSRange kNone = PBNotFoundRange;

NSArray* listOf(const Ranges& ranges) {
    NSMutableArray* list = NSMutableArray::array();
    for (NSRange range : ranges) list->addObject(NSValue::valueWithRange(range));
    return list;
}

Ranges rangesOf(NSArray* list) {
    Ranges ranges;
    for (id value : list) ranges.push_back(cast<NSValue>(value)->rangeValue());
    return ranges;
}

TEST(PBRangeUtil, FindsTheFirstRangeThatSharesAPosition) {
    const struct {
        NSRange range;
        Ranges list;
        NSUInteger expected;
    } cases[] = {
        {{10, 0}, {{5, 5}}, NSNotFound},        {{10, 0}, {{5, 6}}, 0},        {{10, 0}, {{10, 0}}, 0},
        {{5, 2}, {{0, 5}, {7, 3}}, NSNotFound}, {{5, 3}, {{0, 5}, {7, 3}}, 1}, {kLast, {{kLate + 14, 1}}, 0},
    };
    for (const auto& c : cases) EXPECT_EQ(PBIndexOfRangeInRanges(c.range, listOf(c.list)), c.expected);
}

struct Edit {
    NSRange range, edited, expected;
    NSInteger delta = 0;
};

TEST(PBRangeUtil, AdjustsForEdits) {
    const Edit insertions[] = {{{10, 5}, {10, 3}, {13, 5}}, {{10, 5}, {15, 3}, {10, 5}},
                               {{10, 5}, {12, 3}, {10, 8}}, {{0, 15}, {0, kLate}, kLast},
                               {kNone, {0, 3}, kNone},      {{9, 0}, {9, 3}, {12, 0}}};
    for (Edit c : insertions) EXPECT_EQ(PBAdjustedRangeForInsertedRange(c.range, c.edited), c.expected);
    const Edit removals[] = {
        {{10, 5}, {8, 10}, {8, 0}},   {{10, 5}, {8, 7}, {8, 0}},   {{10, 5}, {2, 3}, {7, 5}},
        {{10, 10}, {5, 10}, {0, 5}},  {{10, 5}, {12, 2}, {10, 3}}, {{10, 5}, {10, 2}, {10, 3}},
        {{10, 5}, {15, 2}, {10, 5}},  {{4, 5}, {3, 5}, {~0u, 1}},  {{10, 5}, {12, 9}, {10, 2}},
        {kLast, {0, kLate}, {0, 15}}, {kNone, {0, 3}, kNone}};
    for (Edit c : removals) EXPECT_EQ(PBAdjustedRangeForRemovedRange(c.range, c.edited), c.expected);
    const Edit changes[] = {
        {{0, 5}, {5, 3}, {0, 5}, 3},   {{0, 9}, {5, 3}, {0, 10}, 1},
        {{5, 4}, {5, 3}, {5, 7}, 3},   {{20, 5}, {5, 3}, {18, 5}, -2},
        {{7, 2}, {5, 3}, {8, 2}, 1},   {{0, 6}, {5, 4}, {0, 9}, 1},
        {{6, 10}, {5, 1}, {5, 7}, -4}, {{7, 1}, {5, 6}, {5, 6}, 2},
        {kNone, {0, 9}, kNone, 9},     {{0, 15}, {0, 0x80000000}, {0, 0x8000000E}, 0x7FFFFFFF}};
    for (Edit c : changes)
        EXPECT_EQ(PBAdjustedUnionRangeForModifiedRange(c.range, c.edited, c.delta), c.expected);
}

TEST(PBRangeUtil, UnitesAndSubtracts) {
    EXPECT_EQ(PBContiguousUnionRange({5, 5}, {0, 5}), (NSRange{0, 10}));
    EXPECT_EQ(PBContiguousUnionRange({0, 5}, {6, 1}), kNone);
    EXPECT_EQ(PBContiguousUnionRange({kLate, 8}, {kLate + 8, 7}), kLast);
    const struct {
        NSRange range, from;
        Ranges expected;
    } cases[] = {{{0, 10}, {3, 2}, {{0, 3}, {5, 5}}}, {{0, 0}, {0, 5}, {}},      {{5, 0}, {0, 5}, {}},
                 {{6, 0}, {0, 5}, {{6, 0}}},          {{3, 2}, {0, 9}, {}},      {{3, 0}, {3, 0}, {}},
                 {{0, 5}, {5, 5}, {{0, 5}}},          {{0, 5}, {2, 9}, {{0, 2}}}};
    NSRange pieces[2];
    for (const auto& c : cases)
        EXPECT_EQ(Ranges(pieces, pieces + PBSubtractionRanges(c.range, c.from, pieces)), c.expected);
    EXPECT_EQ(PBSubtractionRanges(kLast, {kLate + 4, 2}, pieces), 2);
    EXPECT_EQ(pieces[1], (NSRange{kLate + 6, 9}));
}

TEST(PBRangeUtil, NormalizesLists) {
    const struct {
        Ranges list;
        bool removesEmpty;
        Ranges expected;
    } cases[] = {
        {{{5, 5}, {0, 5}, {20, 0}}, true, {{0, 10}}},
        {{{5, 5}, {0, 5}, {20, 0}}, false, {{0, 10}, {20, 0}}},
        {{{0, 5}, {2, 0}, {5, 0}}, false, {{0, 5}}},
        {{{3, 0}, {3, 2}, {0, 0}}, true, {{0, 0}, {3, 2}}},
        {{{0, 1}, {5, 0}}, true, {{0, 1}}},
        {{{kLate + 10, 5}, {kLate, 10}, {0, 1}}, true, {{0, 1}, kLast}},
        {{{0, 1}, {kLate, 8}, {kLate + 9, 6}}, true, {{0, 1}, {kLate, 8}, {kLate + 9, 6}}},
    };
    for (const auto& c : cases) {
        NSArray* list = listOf(c.list);
        NSArray* normalized = PBNormalizeRanges(list, c.removesEmpty);
        EXPECT_EQ(rangesOf(normalized), c.expected);
        EXPECT_NE(normalized, list);
    }
    NSArray* one = listOf({{3, 0}});
    EXPECT_EQ(PBNormalizeRanges(one, true), one);
    EXPECT_THROW(PBNormalizeRanges(NSArray::of({u"a"_ns, u"b"_ns}), true), NSException);
}

TEST(PBRangeUtil, CombinesASelectionWithARange) {
    const struct {
        NSRange range;
        Ranges list;
        PBSelectionMode mode;
        Ranges expected;
        NSUInteger active;
    } cases[] = {
        {{2, 1}, {{0, 3}}, PBSelectionMode_Subtract, {{0, 2}}, 0},
        {{5, 3}, {{5, 3}}, PBSelectionMode_Subtract, {{5, 0}}, 0},
        {{9, 1}, {{0, 3}, {9, 1}}, PBSelectionMode_Subtract, {{0, 3}}, 0},
        {{2, 9}, {{0, 3}, {5, 3}}, PBSelectionMode_Subtract, {{0, 2}, {5, 3}}, 0},
        {{6, 1}, {{0, 3}, {5, 3}}, PBSelectionMode_Subtract, {{0, 3}, {5, 1}, {7, 1}}, 1},
        {{3, 2}, {{0, 3}, {9, 1}}, PBSelectionMode_Add, {{0, 5}, {9, 1}}, 0},
        {{7, 1}, {{0, 3}, {9, 1}}, PBSelectionMode_Add, {{0, 3}, {7, 1}, {9, 1}}, 1},
        {{7, 0}, {{0, 3}, {9, 1}}, PBSelectionMode_Add, {{0, 3}, {9, 1}}, 0},
        {{7, 1}, {{0, 3}}, PBSelectionMode_Overwrite, {{7, 1}}, 0},
    };
    for (const auto& c : cases) {
        NSUInteger active = 77;
        NSArray* list = listOf(c.list);
        EXPECT_EQ(rangesOf(PBCombineRangeWithNormalizedRanges(c.range, list, c.mode, &active)), c.expected);
        EXPECT_EQ(active, c.active);
        EXPECT_EQ(rangesOf(list), c.list);
        EXPECT_TRUE(PBCombineRangeWithNormalizedRanges(c.range, list, c.mode, nullptr));
        EXPECT_EQ(PBCombineRangeWithNormalizedRanges(c.range, list, PBSelectionMode(9), nullptr), nullptr);
    }
}

// What the ranges cover, as bits; the list in order, its entries apart from each other.
TEST(PBRangeUtil, NormalizedListsCoverWhatTheRangesCover) {
    std::mt19937 random(7);
    for (int round = 0; round < 60; ++round) {
        AutoreleasePool pool;
        NSUInteger scale = round % 2 ? 1 : 40;
        Ranges ranges(round < 50 ? 2 + round % 20 : 3000);
        std::bitset<40000> expected, bits;
        auto cover = [](auto& set, NSRange range) {
            for (NSUInteger i = range.location; i < PBMaxRange(range); ++i) set.set(i);
        };
        for (NSRange& range : ranges) {
            range = NSMakeRange(random() % (200 * scale), 1 + random() % 6);
            cover(expected, range);
        }
        NSUInteger least = 0;
        for (NSRange range : rangesOf(PBNormalizeRanges(listOf(ranges), true))) {
            ASSERT_GE(range.location, least);
            least = PBMaxRange(range) + 1;
            cover(bits, range);
        }
        ASSERT_EQ(bits, expected) << round;
    }
}

TEST(NSValuePelvorAdditions, OrderBoxedRangesAndBoxPlanarOnes) {
    NSValue* five = NSValue::valueWithRange({5, 1});
    EXPECT_EQ(compareRange(five, NSValue::valueWithRange({5, 9})), NSOrderedSame);
    EXPECT_EQ(compareRange(five, NSValue::valueWithRange({6, 0})), NSOrderedAscending);
    EXPECT_EQ(compareRange(five, NSValue::valueWithRange({4, 0})), NSOrderedDescending);
    PBPlanarRange planar{{1, 2}, {3, 4}};
    NSValue* boxed = NSValue_PlanarRangeAdditions::valueWithPlanarRange(planar);
    EXPECT_STREQ(boxed->objCType(), "{_PBPlanarRange={_NSRange=II}{_NSRange=II}}");
    EXPECT_EQ(planarRangeValue(boxed), planar);
    EXPECT_THROW(planarRangeValue(five), NSException);
}

}  // namespace
}  // namespace pelvor
