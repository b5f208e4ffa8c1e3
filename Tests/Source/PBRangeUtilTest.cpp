// SPDX-License-Identifier: Apache-2.0
// Tests of ranges under edits and of lists of ranges, the latter also against a set of bits.
#include "PBRangeUtil.h"

#include <gtest/gtest.h>

#include <bitset>
#include <random>

#include "Foundation/NSArray.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSString.h"
#include "NSValue-PelvorAdditions.h"
#include "PBPlanarRange.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/NSException.h"

namespace pelvor {

void PrintTo(const NSRange& range, std::ostream* out) {
    *out << "(" << range.location << "," << range.length << ")";
}

namespace {

using Ranges = std::vector<NSRange>;

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
    AutoreleasePool pool;
    const struct {
        NSRange range;
        Ranges list;
        NSUInteger expected;
    } cases[] = {
        {{10, 0}, {{5, 5}}, NSNotFound}, {{10, 0}, {{5, 6}}, 0},
        {{10, 0}, {{10, 0}}, 0},         {{5, 2}, {{0, 5}, {7, 3}}, NSNotFound},
        {{5, 3}, {{0, 5}, {7, 3}}, 1},   {{0xFFFFFFF0, 15}, {{0xFFFFFFFE, 1}}, 0},
    };
    for (const auto& c : cases) EXPECT_EQ(PBIndexOfRangeInRanges(c.range, listOf(c.list)), c.expected);
}

TEST(PBRangeUtil, AdjustsForInsertionsAndRemovals) {
    EXPECT_EQ(PBAdjustedRangeForInsertedRange({10, 5}, {10, 3}), (NSRange{13, 5}));
    EXPECT_EQ(PBAdjustedRangeForInsertedRange({10, 5}, {15, 3}), (NSRange{10, 5}));
    EXPECT_EQ(PBAdjustedRangeForInsertedRange({10, 5}, {12, 3}), (NSRange{10, 8}));
    EXPECT_EQ(PBAdjustedRangeForInsertedRange(PBNotFoundRange, {0, 3}), PBNotFoundRange);
    const struct {
        NSRange range, removed, expected;
    } cases[] = {
        {{10, 5}, {8, 10}, {8, 0}},  {{10, 5}, {2, 3}, {7, 5}},   {{10, 10}, {5, 10}, {0, 5}},
        {{10, 5}, {12, 2}, {10, 3}}, {{10, 5}, {10, 2}, {10, 3}}, {{10, 5}, {15, 2}, {10, 5}},
        {{4, 5}, {3, 5}, {~0u, 1}},  {{10, 5}, {12, 9}, {10, 2}},
    };
    for (const auto& c : cases) EXPECT_EQ(PBAdjustedRangeForRemovedRange(c.range, c.removed), c.expected);
}

TEST(PBRangeUtil, AdjustsForModifications) {
    const struct {
        NSRange range, modified;
        NSInteger delta;
        NSRange expected;
    } cases[] = {
        {{0, 5}, {5, 3}, 3, {0, 5}},
        {{0, 9}, {5, 3}, 1, {0, 10}},
        {{20, 5}, {5, 3}, -2, {18, 5}},
        {{0, 6}, {5, 4}, 1, {0, 9}},
        {{6, 10}, {5, 1}, -4, {5, 7}},
        {{7, 1}, {5, 6}, 2, {5, 6}},
        {{NSNotFound, 2}, {0, 9}, 9, {NSNotFound, 2}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(PBAdjustedUnionRangeForModifiedRange(c.range, c.modified, c.delta), c.expected);
}

TEST(PBRangeUtil, UnitesAndSubtracts) {
    EXPECT_EQ(PBContiguousUnionRange({5, 5}, {0, 5}), (NSRange{0, 10}));
    EXPECT_EQ(PBContiguousUnionRange({0, 5}, {6, 1}), PBNotFoundRange);
    const struct {
        NSRange range, from;
        Ranges expected;
    } cases[] = {
        {{0, 10}, {3, 2}, {{0, 3}, {5, 5}}}, {{0, 0}, {0, 5}, {}},       {{5, 0}, {0, 5}, {}},
        {{6, 0}, {0, 5}, {{6, 0}}},          {{3, 2}, {0, 9}, {}},       {{3, 0}, {3, 0}, {}},
        {{0, 5}, {5, 5}, {{0, 5}}},          {{0, 5}, {2, 9}, {{0, 2}}},
    };
    for (const auto& c : cases) {
        NSRange pieces[2];
        int count = PBSubtractionRanges(c.range, c.from, pieces);
        EXPECT_EQ(Ranges(pieces, pieces + count), c.expected);
    }
}

TEST(PBRangeUtil, NormalizesAndCombines) {
    AutoreleasePool pool;
    NSArray* mixed = listOf({{5, 5}, {0, 5}, {20, 0}});
    EXPECT_EQ(rangesOf(PBNormalizeRanges(mixed, true)), (Ranges{{0, 10}}));
    EXPECT_EQ(rangesOf(PBNormalizeRanges(mixed, false)), (Ranges{{0, 10}, {20, 0}}));
    NSArray* one = listOf({{3, 0}});
    EXPECT_EQ(PBNormalizeRanges(one, true), one);
    EXPECT_THROW(PBNormalizeRanges(NSArray::of({u"a"_ns, u"b"_ns}), true), NSException);
    const struct {
        NSRange range;
        Ranges list;
        PBSelectionMode mode;
        Ranges expected;
        NSUInteger active;
    } cases[] = {
        {{2, 1}, {{0, 3}}, PBSelectionMode_Subtract, {{0, 2}}, 0},
        {{0, 3}, {{0, 3}}, PBSelectionMode_Subtract, {{0, 0}}, 0},
        {{2, 9}, {{0, 3}, {5, 3}}, PBSelectionMode_Subtract, {{0, 2}, {5, 3}}, 0},
        {{6, 1}, {{0, 3}, {5, 3}}, PBSelectionMode_Subtract, {{0, 3}, {5, 1}, {7, 1}}, 1},
        {{3, 2}, {{0, 3}, {9, 1}}, PBSelectionMode_Add, {{0, 5}, {9, 1}}, 0},
        {{7, 1}, {{0, 3}, {9, 1}}, PBSelectionMode_Add, {{0, 3}, {7, 1}, {9, 1}}, 1},
        {{7, 1}, {{0, 3}}, PBSelectionMode_Overwrite, {{7, 1}}, 0},
    };
    for (const auto& c : cases) {
        NSUInteger active = 77;
        EXPECT_EQ(rangesOf(PBCombineRangeWithNormalizedRanges(c.range, listOf(c.list), c.mode, &active)),
                  c.expected);
        EXPECT_EQ(active, c.active);
    }
    EXPECT_EQ(PBCombineRangeWithNormalizedRanges({}, one, PBSelectionMode(9), nullptr), nullptr);
}

TEST(PBRangeUtil, ReachesToTheLastPlace) {
    AutoreleasePool pool;
    constexpr NSUInteger kLate = 0xFFFFFFF0;
    NSRange last{kLate, 15};
    EXPECT_EQ(rangesOf(PBNormalizeRanges(listOf({{kLate + 10, 5}, {kLate, 10}, {0, 1}}), true)),
              (Ranges{{0, 1}, last}));
    EXPECT_EQ(rangesOf(PBNormalizeRanges(listOf({{0, 1}, {kLate, 8}, {kLate + 9, 6}}), true)),
              (Ranges{{0, 1}, {kLate, 8}, {kLate + 9, 6}}));
    EXPECT_EQ(PBContiguousUnionRange({kLate, 8}, {kLate + 8, 7}), last);
    EXPECT_EQ(PBAdjustedRangeForRemovedRange(last, {0, kLate}), (NSRange{0, 15}));
    EXPECT_EQ(PBAdjustedRangeForInsertedRange({0, 15}, {0, kLate}), last);
    EXPECT_EQ(PBAdjustedUnionRangeForModifiedRange({0, 15}, {0, 0x80000000}, 0x7FFFFFFF),
              (NSRange{0, 0x8000000E}));
    NSRange pieces[2];
    EXPECT_EQ(PBSubtractionRanges(last, {kLate + 4, 2}, pieces), 2);
    EXPECT_EQ(pieces[1], (NSRange{kLate + 6, 9}));
}

// What the ranges cover, as bits; the list in order, its entries apart from each other.
TEST(PBRangeUtil, NormalizedListsCoverWhatTheRangesCover) {
    std::mt19937 random(7);
    for (std::size_t round = 0; round < 60; ++round) {
        AutoreleasePool pool;
        std::size_t count = round < 50 ? 2 + round % 20 : 3000;
        NSUInteger scale = round % 2 ? 1 : 40;
        Ranges ranges(count);
        std::bitset<40000> expected, bits;
        for (NSRange& range : ranges) {
            range = {static_cast<NSUInteger>(random() % (200 * scale)),
                     static_cast<NSUInteger>(1 + random() % 6)};
            for (NSUInteger i = range.location; i < PBMaxRange(range); ++i) expected.set(i);
        }
        Ranges normalized = rangesOf(PBNormalizeRanges(listOf(ranges), true));
        for (std::size_t i = 0; i < normalized.size(); ++i) {
            ASSERT_TRUE(i == 0 || PBMaxRange(normalized[i - 1]) < normalized[i].location);
            for (NSUInteger k = normalized[i].location; k < PBMaxRange(normalized[i]); ++k) bits.set(k);
        }
        ASSERT_EQ(bits, expected) << round;
    }
}

TEST(NSValuePelvorAdditions, OrderBoxedRangesAndBoxPlanarOnes) {
    AutoreleasePool pool;
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
