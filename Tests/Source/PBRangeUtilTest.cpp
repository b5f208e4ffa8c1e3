// SPDX-License-Identifier: Apache-2.0
// Tests of ranges under edits and of lists of ranges. The fuzz target RangeList compares lists with sets of
// bits.
#include "PBRangeUtil.h"

#include "NSArray-PelvorRangeArray.h"
#include "NSValue-PelvorAdditions.h"
#include "PBPlanarRange.h"
#include "Prelude.h"

namespace {

using Ranges = std::vector<NSRange>;

// The ranges that a text has, "(0,5) (0xFFFFFFF0,1)", and the text of ranges.
Ranges rangesIn(const std::string& text) {
    Ranges ranges;
    for (std::size_t at = text.find('('); at != std::string::npos; at = text.find('(', at + 1)) {
        char* comma = nullptr;
        auto location = static_cast<NSUInteger>(std::strtoul(text.c_str() + at + 1, &comma, 0));
        ranges.push_back({location, static_cast<NSUInteger>(std::strtoul(comma + 1, nullptr, 0))});
    }
    return ranges;
}
std::string textOf(const Ranges& ranges) {
    std::string text;
    for (NSRange range : ranges)
        text += (text.empty() ? "(" : " (") + std::to_string(range.location) + "," +
                std::to_string(range.length) + ")";
    return text;
}
std::string textOf(NSArray* list) {
    Ranges ranges;
    for (id value : list) ranges.push_back(cast<NSValue>(value)->rangeValue());
    return textOf(ranges);
}
NSArray* listOf(const Ranges& ranges) {
    NSMutableArray* list = NSMutableArray::array();
    for (NSRange range : ranges) list->addObject(NSValue::valueWithRange(range));
    return list;
}
NSArray* listIn(const std::string& text) { return listOf(rangesIn(text)); }

// In the rows the first range is the one that is adjusted or cut.

template <class Adjust>
void expectAdjusted(std::initializer_list<std::string_view> rows, Adjust adjust) {
    expectAll(rows, [adjust](const std::string& row) {
        Ranges ranges = rangesIn(row);
        return textOf(Ranges{adjust(ranges[0], ranges[1], std::atoi(row.c_str() + row.rfind(' ')))});
    });
}

TEST(PBRangeUtil, AdjustsForEdits) {
    expectAdjusted({"(10,5) (10,3) -> (13,5)", "(0,15) (0,0xFFFFFFF0) -> (4294967280,15)",
                    "(0x7FFFFFFF,0) (0,3) -> (2147483647,0)"},
                   [](NSRange range, NSRange inserted, int) {
                       return PBAdjustedRangeForInsertedRange(range, inserted);
                   });
    expectAdjusted(
        {"(10,5) (8,10) -> (8,0)", "(10,10) (5,10) -> (0,5)", "(4,5) (3,5) -> (4294967295,1)",
         "(0xFFFFFFF0,15) (0,0xFFFFFFF0) -> (0,15)", "(0x7FFFFFFF,0) (0,3) -> (2147483647,0)"},
        [](NSRange range, NSRange removed, int) { return PBAdjustedRangeForRemovedRange(range, removed); });
    expectAdjusted({"(0,5) (5,3) by 3 -> (0,5)", "(0,9) (5,3) by 1 -> (0,10)", "(5,4) (5,3) by 3 -> (5,7)",
                    "(20,5) (5,3) by -2 -> (18,5)", "(7,2) (5,3) by 1 -> (8,2)", "(0,6) (5,4) by 1 -> (0,9)",
                    "(6,10) (5,1) by -4 -> (5,7)", "(7,1) (5,6) by 2 -> (5,6)",
                    "(0x7FFFFFFF,0) (0,9) by 9 -> (2147483647,0)",
                    "(0,15) (0,0x80000000) by 2147483647 -> (0,2147483662)"},
                   &PBAdjustedUnionRangeForModifiedRange);
}

TEST(PBRangeUtil, LeavesAnEmptyRangeThatIsOutsideWhatIsSubtracted) {
    expectAll({"(0,0) (0,5) -> ", "(5,0) (0,5) -> ", "(6,0) (0,5) -> (6,0)", "(3,0) (3,0) -> "},
              [](const std::string& row) {
                  NSRange pieces[2];
                  Ranges ranges = rangesIn(row);
                  return textOf(Ranges(pieces, pieces + PBSubtractionRanges(ranges[0], ranges[1], pieces)));
              });
}

TEST(PBRangeUtil, NormalizesLists) {
    expectAll({"keep (5,5) (0,5) (20,0) -> (0,10) (20,0)", "keep (0,5) (2,0) (5,0) -> (0,5)",
               "remove (3,0) (3,2) (0,0) -> (0,0) (3,2)", "remove (0,1) (5,0) -> (0,1)"},
              [](const std::string& row) {
                  NSArray* list = listIn(row);
                  NSArray* normalized = PBNormalizeRanges(list, row[0] == 'r');
                  EXPECT_NE(normalized, list) << row;
                  return textOf(normalized);
              });
    NSArray* one = listOf({{3, 0}});
    EXPECT_EQ(PBNormalizeRanges(one, true), one);
    EXPECT_EQ(textOf(PBAddRangeToNormalizedRanges({3, 1}, nullptr)), "(3,1)");
}

TEST(PBRangeUtil, CombinesASelectionWithARange) {
    expectAll(
        {"(5,3) from (5,3) -> (5,0) active 0", "(9,1) from (0,3) (9,1) -> (0,3) active 0",
         "(6,1) from (0,3) (5,3) -> (0,3) (5,1) (7,1) active 1",
         "(3,2) and (0,3) (9,1) -> (0,5) (9,1) active 0",
         "(7,1) and (0,3) (9,1) -> (0,3) (7,1) (9,1) active 1",
         "(7,0) and (0,3) (9,1) -> (0,3) (9,1) active 0", "(7,1) over (0,3) -> (7,1) active 0"},
        [](const std::string& row) {
            NSUInteger active = 77;
            NSRange range = rangesIn(row)[0];
            NSArray* list = listIn(row.substr(row.find(' ')));
            std::string before = textOf(list);
            auto mode = row.find("from") != std::string::npos  ? PBSelectionMode_Subtract
                        : row.find("and") != std::string::npos ? PBSelectionMode_Add
                                                               : PBSelectionMode_Overwrite;
            NSArray* combined = PBCombineRangeWithNormalizedRanges(range, list, mode, &active);
            EXPECT_TRUE(PBCombineRangeWithNormalizedRanges(range, list, mode, nullptr)->isEqual(combined));
            EXPECT_EQ(textOf(list), before) << row;
            return textOf(combined) + " active " + std::to_string(active);
        });
    EXPECT_FALSE(PBCombineRangeWithNormalizedRanges({0, 1}, listIn("(0,3)"), PBSelectionMode(9), nullptr));
}

TEST(PBRangeUtil, ListsThatAreReturnedAreArraysOfBoxes) {
    const Ranges ranges = {{0, 3}, {5, 1}, {9, 2}};
    NSArray *list = PBNormalizeRanges(listOf(ranges), true), *other = listOf(ranges);
    Retained<NSArray> same = list->copy();
    EXPECT_EQ(rangeAtIndex(list, 1), ranges[1]);
    EXPECT_EQ(unionRange(list), unionRange(other));
    EXPECT_EQ(insertionIndexForRange(list, {5, 0}), 1u);
    EXPECT_EQ(RAISED(rangeAtIndex(list, 3)), RAISED(rangeAtIndex(other, 3)));
    std::array<id, 4> found;
    onThreads(4, [&](int i) { found[static_cast<std::size_t>(i)] = list->objectAtIndex(1); });
    EXPECT_THAT(found, Each(list->objectAtIndex(1)));
    EXPECT_TRUE(list->isEqual(other) && other->isEqual(list) && same->isEqual(other));
    auto changed = list->mutableCopy();
    addRange(changed, {20, 1});
    EXPECT_EQ(shown(list->count(), changed->count()), "3 4");
    EXPECT_EQ(textOf(PBNormalizeRanges(list->arrayByAddingObjectsFromArray(list), true)), textOf(ranges));
}

TEST(NSValuePelvorAdditions, OrderBoxedRangesAndBoxPlanarOnes) {
    NSValue* five = NSValue::valueWithRange({5, 1});
    expectAll({"(5,9) -> 0", "(6,0) -> -1", "(4,0) -> 1"}, [five](const std::string& row) {
        return static_cast<int>(compareRange(five, NSValue::valueWithRange(rangesIn(row)[0])));
    });
    PBPlanarRange planar{{1, 2}, {3, 4}};
    NSValue* boxed = NSValue_PlanarRangeAdditions::valueWithPlanarRange(planar);
    EXPECT_STREQ(boxed->objCType(), "{_PBPlanarRange={_NSRange=II}{_NSRange=II}}");
    EXPECT_EQ(planarRangeValue(boxed), planar);
}

}  // namespace
