// SPDX-License-Identifier: Apache-2.0
// Tests of ranges under edits and of lists of ranges, the latter also against a set of bits.
#include "PBRangeUtil.h"

#include <bitset>

#include "NSArray-PelvorRangeArray.h"
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
constexpr NSRange kLast{kLate, 15}, kNone = PBNotFoundRange;

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
    const std::tuple<NSRange, Ranges, NSUInteger> cases[] = {
        {{10, 0}, {{5, 5}}, NSNotFound},        {{10, 0}, {{5, 6}}, 0},        {{10, 0}, {{10, 0}}, 0},
        {{5, 2}, {{0, 5}, {7, 3}}, NSNotFound}, {{5, 3}, {{0, 5}, {7, 3}}, 1}, {kLast, {{kLate + 14, 1}}, 0}};
    for (const auto& [range, list, expected] : cases)
        EXPECT_EQ(PBIndexOfRangeInRanges(range, listOf(list)), expected);
}

TEST(PBRangeUtil, AdjustsForEdits) {
    using Edit = std::tuple<NSRange, NSRange, NSRange>;
    const Edit insertions[] = {{{10, 5}, {10, 3}, {13, 5}},
                               {{10, 5}, {15, 3}, {10, 5}},
                               {{10, 5}, {12, 3}, {10, 8}},
                               {{0, 15}, {0, kLate}, kLast},
                               {kNone, {0, 3}, kNone}};
    for (auto [range, inserted, expected] : insertions)
        EXPECT_EQ(PBAdjustedRangeForInsertedRange(range, inserted), expected);
    const Edit removals[] = {
        {{10, 5}, {8, 10}, {8, 0}},   {{10, 5}, {8, 7}, {8, 0}},   {{10, 5}, {2, 3}, {7, 5}},
        {{10, 10}, {5, 10}, {0, 5}},  {{10, 5}, {12, 2}, {10, 3}}, {{10, 5}, {10, 2}, {10, 3}},
        {{10, 5}, {15, 2}, {10, 5}},  {{4, 5}, {3, 5}, {~0u, 1}},  {{10, 5}, {12, 9}, {10, 2}},
        {kLast, {0, kLate}, {0, 15}}, {kNone, {0, 3}, kNone}};
    for (auto [range, removed, expected] : removals)
        EXPECT_EQ(PBAdjustedRangeForRemovedRange(range, removed), expected);
    const std::tuple<NSRange, NSRange, NSInteger, NSRange> changes[] = {
        {{0, 5}, {5, 3}, 3, {0, 5}},   {{0, 9}, {5, 3}, 1, {0, 10}},
        {{5, 4}, {5, 3}, 3, {5, 7}},   {{20, 5}, {5, 3}, -2, {18, 5}},
        {{7, 2}, {5, 3}, 1, {8, 2}},   {{0, 6}, {5, 4}, 1, {0, 9}},
        {{6, 10}, {5, 1}, -4, {5, 7}}, {{7, 1}, {5, 6}, 2, {5, 6}},
        {kNone, {0, 9}, 9, kNone},     {{0, 15}, {0, 0x80000000}, 0x7FFFFFFF, {0, 0x8000000E}}};
    for (auto [range, modified, delta, expected] : changes)
        EXPECT_EQ(PBAdjustedUnionRangeForModifiedRange(range, modified, delta), expected);
}

TEST(PBRangeUtil, UnitesAndSubtracts) {
    EXPECT_EQ(PBContiguousUnionRange({5, 5}, {0, 5}), (NSRange{0, 10}));
    EXPECT_EQ(PBContiguousUnionRange({0, 5}, {6, 1}), kNone);
    EXPECT_EQ(PBContiguousUnionRange({kLate, 8}, {kLate + 8, 7}), kLast);
    const std::tuple<NSRange, NSRange, Ranges> cases[] = {
        {{0, 10}, {3, 2}, {{0, 3}, {5, 5}}}, {{0, 0}, {0, 5}, {}},      {{5, 0}, {0, 5}, {}},
        {{6, 0}, {0, 5}, {{6, 0}}},          {{3, 2}, {0, 9}, {}},      {{3, 0}, {3, 0}, {}},
        {{0, 5}, {5, 5}, {{0, 5}}},          {{0, 5}, {2, 9}, {{0, 2}}}};
    NSRange pieces[2];
    for (const auto& [range, from, expected] : cases)
        EXPECT_EQ(Ranges(pieces, pieces + PBSubtractionRanges(range, from, pieces)), expected);
    EXPECT_EQ(PBSubtractionRanges(kLast, {kLate + 4, 2}, pieces), 2);
    EXPECT_EQ(pieces[1], (NSRange{kLate + 6, 9}));
}

TEST(PBRangeUtil, NormalizesLists) {
    const std::tuple<Ranges, bool, Ranges> cases[] = {
        {{{5, 5}, {0, 5}, {20, 0}}, true, {{0, 10}}},
        {{{5, 5}, {0, 5}, {20, 0}}, false, {{0, 10}, {20, 0}}},
        {{{0, 5}, {2, 0}, {5, 0}}, false, {{0, 5}}},
        {{{3, 0}, {3, 2}, {0, 0}}, true, {{0, 0}, {3, 2}}},
        {{{0, 1}, {5, 0}}, true, {{0, 1}}},
        {{{kLate + 10, 5}, {kLate, 10}, {0, 1}}, true, {{0, 1}, kLast}},
        {{{0, 1}, {kLate, 8}, {kLate + 9, 6}}, true, {{0, 1}, {kLate, 8}, {kLate + 9, 6}}}};
    for (const auto& [ranges, removesEmpty, expected] : cases) {
        NSArray* list = listOf(ranges);
        NSArray* normalized = PBNormalizeRanges(list, removesEmpty);
        EXPECT_EQ(rangesOf(normalized), expected);
        EXPECT_NE(normalized, list);
    }
    NSArray* one = listOf({{3, 0}});
    EXPECT_EQ(PBNormalizeRanges(one, true), one);
    EXPECT_THROW(PBNormalizeRanges(NSArray::of({u"a"_ns, u"b"_ns}), true), NSException);
}

TEST(PBRangeUtil, CombinesASelectionWithARange) {
    constexpr auto subtract = PBSelectionMode_Subtract, add = PBSelectionMode_Add;
    const std::tuple<NSRange, Ranges, PBSelectionMode, Ranges, NSUInteger> cases[] = {
        {{2, 1}, {{0, 3}}, subtract, {{0, 2}}, 0},
        {{5, 3}, {{5, 3}}, subtract, {{5, 0}}, 0},
        {{9, 1}, {{0, 3}, {9, 1}}, subtract, {{0, 3}}, 0},
        {{2, 9}, {{0, 3}, {5, 3}}, subtract, {{0, 2}, {5, 3}}, 0},
        {{6, 1}, {{0, 3}, {5, 3}}, subtract, {{0, 3}, {5, 1}, {7, 1}}, 1},
        {{3, 2}, {{0, 3}, {9, 1}}, add, {{0, 5}, {9, 1}}, 0},
        {{7, 1}, {{0, 3}, {9, 1}}, add, {{0, 3}, {7, 1}, {9, 1}}, 1},
        {{7, 0}, {{0, 3}, {9, 1}}, add, {{0, 3}, {9, 1}}, 0},
        {{7, 1}, {{0, 3}}, PBSelectionMode_Overwrite, {{7, 1}}, 0}};
    for (const auto& [range, ranges, mode, expected, expectedActive] : cases) {
        NSUInteger active = 77;
        NSArray* list = listOf(ranges);
        EXPECT_EQ(rangesOf(PBCombineRangeWithNormalizedRanges(range, list, mode, &active)), expected);
        EXPECT_EQ(active, expectedActive);
        EXPECT_EQ(rangesOf(list), ranges);
        EXPECT_TRUE(PBCombineRangeWithNormalizedRanges(range, list, mode, nullptr));
        EXPECT_FALSE(PBCombineRangeWithNormalizedRanges(range, list, PBSelectionMode(9), nullptr));
    }
}

TEST(PBRangeUtil, NormalizedListsAreTheRunsOfWhatTheRangesCover) {
    std::mt19937 random(7);
    for (int round = 0; round < 60; ++round) {
        AutoreleasePool pool;
        Ranges ranges(round < 50 ? 2 + round % 20 : 3000), runs;
        std::bitset<8010> bits;
        for (NSRange& range : ranges) {
            range = NSMakeRange(random() % (round % 2 ? 200 : 8000), 1 + random() % 6);
            for (NSUInteger i = range.location; i < PBMaxRange(range); ++i) bits.set(i);
        }
        for (NSUInteger i = 0; i < bits.size(); ++i)
            if (bits[i] && i && bits[i - 1])
                ++runs.back().length;
            else if (bits[i])
                runs.push_back({i, 1});
        ASSERT_EQ(rangesOf(PBNormalizeRanges(listOf(ranges), true)), runs) << round;
    }
}

// One of the things that may be done with a list; what a bad index raises is told.
std::string change(NSMutableArray* list, unsigned kind, NSUInteger index, NSRange range, NSArray* others) {
    return reasonOf([&] {
        if (kind == 0) addRange(list, range);
        if (kind == 1) insertSortedRange(list, range);
        if (kind == 2) insertRange_atIndex(list, range, index);
        if (kind == 3) replaceRangeAtIndex_withRange(list, index, range);
        if (kind == 4) removeRangeAtIndex(list, index);
        if (kind == 5) list->replaceObjectsInRange_withObjectsFromArray({index, range.length}, others);
        if (kind == 6) list->setArray(list->arrayByAddingObjectsFromArray(others));
        if (kind == 7) list->setArray(list->mutableCopy().get());
        if (kind == 8) list->removeObject(list->lastObject());
    });
}

TEST(PBRangeUtil, ListsThatAreAnsweredDoAsOtherArrays) {
    std::mt19937 random(9);
    for (int round = 0; round < 400; ++round) {
        AutoreleasePool pool;
        Ranges ranges = {{0, 3}, {5, 1}, {9, 2}};
        auto answered = [&] { return cast<NSMutableArray>(PBNormalizeRanges(listOf(ranges), true)); };
        NSMutableArray *list = answered(), *other = cast<NSMutableArray>(listOf(ranges));
        for (unsigned step = random() % 5; step-- > 0;) {
            unsigned kind = random() % 9, index = random() % 5, isOwn = random() % 4 == 0;
            NSRange range{NSUInteger(random() % 12), NSUInteger(random() % 3)};
            std::string outcome = change(list, kind, index, range, isOwn ? list : answered());
            ASSERT_EQ(outcome, change(other, kind, index, range, isOwn ? other : listOf(ranges))) << kind;
            bool isRead = random() % 4 == 0;
            ASSERT_TRUE(!isRead || list->isEqual(other)) << kind;
        }
        EXPECT_EQ(rangesOf(PBNormalizeRanges(list, false)), rangesOf(PBNormalizeRanges(other, false)));
        EXPECT_EQ(unionRange(list), unionRange(other));
        EXPECT_EQ(list->indexOfObjectIdenticalTo(list->lastObject()),
                  other->indexOfObjectIdenticalTo(other->lastObject()));
        EXPECT_TRUE(list->isEqual(other) && list->copy()->isEqual(other));
        list->addObject(u"a"_ns);
        EXPECT_THROW(for (id box : list) list->addObject(box), NSException);
        EXPECT_THROW(PBNormalizeRanges(list, true), NSException);
    }
}

TEST(PBRangeUtil, ListsThatAreAnsweredAreReadOnManyThreads) {
    for (int round = 0; round < 20; ++round) {
        NSArray* list = PBNormalizeRanges(listOf({{0, 3}, {5, 1}}), true);
        std::array<id, 4> found;
        onThreads(4, [&](int i) { found[static_cast<std::size_t>(i)] = list->objectAtIndex(1); });
        EXPECT_THAT(found, ::testing::Each(list->objectAtIndex(1)));
    }
}

TEST(NSValuePelvorAdditions, OrderBoxedRangesAndBoxPlanarOnes) {
    NSValue* five = NSValue::valueWithRange({5, 1});
    const std::pair<NSRange, int> orders[] = {{{5, 9}, 0}, {{6, 0}, -1}, {{4, 0}, 1}};
    for (auto [other, order] : orders) EXPECT_EQ(compareRange(five, NSValue::valueWithRange(other)), order);
    PBPlanarRange planar{{1, 2}, {3, 4}};
    NSValue* boxed = NSValue_PlanarRangeAdditions::valueWithPlanarRange(planar);
    EXPECT_STREQ(boxed->objCType(), "{_PBPlanarRange={_NSRange=II}{_NSRange=II}}");
    EXPECT_EQ(planarRangeValue(boxed), planar);
    EXPECT_THROW(planarRangeValue(five), NSException);
}

}  // namespace
}  // namespace pelvor
