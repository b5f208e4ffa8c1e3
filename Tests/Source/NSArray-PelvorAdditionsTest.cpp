// SPDX-License-Identifier: Apache-2.0
// Tests of sorted arrays against a plain vector, of lists of ranges, and of the one-object enumerator.
#include "NSArray-PelvorAdditions.h"

#include <numeric>

#include "BaseLibrary.h"
#include "Foundation/NSValue.h"
#include "NSArray-PelvorRangeArray.h"
#include "NSEnumerator-PelvorAdditions.h"
#include "NSIndexSet-PelvorAdditions.h"
#include "Prelude.h"

namespace pelvor {
namespace {

using Numbers = std::vector<int>;

int compareNumbers(id first, id second, void*) {
    return cast<NSNumber>(first)->compare(cast<NSNumber>(second));
}

NSNumber* number(int value) { return NSNumber::numberWithInt(value); }

NSMutableArray* arrayOf(const Numbers& numbers) {
    NSMutableArray* array = NSMutableArray::array();
    for (int value : numbers) array->addObject(number(value));
    return array;
}

Numbers numbersOf(NSArray* array) {
    Numbers numbers;
    for (id value : array) numbers.push_back(cast<NSNumber>(value)->intValue());
    return numbers;
}

TEST(NSArrayPelvorAdditions, SearchesSortedArrays) {
    NSArray* array = arrayOf({1, 3, 5, 5, 5, 9});
    const struct {
        int value;
        NSUInteger index, next, nearest;
    } cases[] = {
        {5, 2, 77, 2}, {4, NSNotFound, 2, 2}, {10, NSNotFound, 6, NSNotFound}, {0, NSNotFound, 0, 0}};
    for (const auto& c : cases) {
        NSUInteger next = 77;
        EXPECT_EQ(_indexOfObject_withCompareFunction_context_nextIndex(array, number(c.value), compareNumbers,
                                                                       nullptr, &next),
                  c.index);
        EXPECT_EQ(next, c.next);
        EXPECT_EQ(
            nearestIndexOfObject_withCompareFunction_context(array, number(c.value), compareNumbers, nullptr),
            c.nearest);
    }
    EXPECT_EQ(firstObject(array)->isEqual(number(1)), true);
    EXPECT_EQ(firstObject(NSArray::array()), nullptr);
}

TEST(NSArrayPelvorAdditions, TellsWhetherARangeIsSorted) {
    NSArray* array = arrayOf({5, 1, 2, 2, 0});
    auto isSorted = [&](NSRange range) {
        return _isSortedInRange_withCompareFunction_context(array, range, compareNumbers, nullptr);
    };
    EXPECT_TRUE(isSorted({1, 3}));
    EXPECT_FALSE(isSorted({1, 4}));
    EXPECT_TRUE(isSorted({4, 0}));
    EXPECT_THROW(isSorted({5, 0}), NSException);
    EXPECT_THROW(isSorted({2, 0xFFFFFFFF}) || isSorted({4, 2}), NSException);
}

TEST(NSArrayPelvorAdditions, KeepsASortedArrayAsAVectorWould) {
    std::mt19937 random(11);
    AutoreleasePool pool;
    NSMutableArray* array = NSMutableArray::array();
    Numbers model;
    for (int step = 0; step < 4000; ++step) {
        int value = static_cast<int>(random() % 30);
        auto [first, last] = std::equal_range(model.begin(), model.end(), value);
        if (random() % 8) {
            NSUInteger index =
                insertObject_withCompareFunction_context(array, number(value), compareNumbers, nullptr);
            ASSERT_TRUE(model.begin() + index >= first && model.begin() + index <= last);
            model.insert(first, value);
        } else {
            NSUInteger found =
                indexOfObject_withCompareFunction_context(array, number(value), compareNumbers, nullptr);
            ASSERT_EQ(found != NSNotFound, first != last);
            bool removed =
                removeObject_withCompareFunction_context(array, number(value), compareNumbers, nullptr);
            ASSERT_EQ(removed, first != last);
            if (removed) model.erase(model.begin() + found, last);
        }
        ASSERT_EQ(numbersOf(array), model);
    }
    Numbers few = {1, 5, 5, 7};
    NSMutableArray* small = arrayOf(few);
    EXPECT_TRUE(removeObject_withCompareFunction_context(small, number(5), compareNumbers, nullptr));
    EXPECT_EQ(numbersOf(small), (Numbers{1, 7}));
}

id removeLast(id array) {
    cast<NSMutableArray>(array)->removeLastObject();
    return nullptr;
}

TEST(NSArrayPelvorAdditions, CollectsAnswersAndShuffles) {
    NSEnumerator* none = NSEnumerator_PelvorAdditions::enumerator();
    NSArray* three = NSArray::of({NSEnumerator_PelvorAdditions::enumeratorWithObject(u"a"_ns), none,
                                  NSEnumerator_PelvorAdditions::enumeratorWithObject(u"b"_ns)});
    EXPECT_TRUE(arrayByMakingObjectsPerformSelector(three, "nextObject"_sel)
                    ->isEqual(NSArray::of({u"a"_ns, u"b"_ns})));
    EXPECT_TRUE(arrayByMakingObjectsPerformSelector_withObject(NSArray::of({u"a"_ns}),
                                                               "stringByAppendingString:"_sel, u"b"_ns)
                    ->isEqual(NSArray::of({u"ab"_ns})));
    Numbers all(100);
    std::iota(all.begin(), all.end(), 0);
    NSMutableArray* shuffled = arrayOf(all);
    randomize(shuffled);
    Numbers result = numbersOf(shuffled);
    EXPECT_NE(result, all);
    std::sort(result.begin(), result.end());
    EXPECT_EQ(result, all);
    auto same = NSMutableArray_PelvorAdditions::initWithSingleObject_count(u"x"_ns, 3);
    EXPECT_TRUE(same->isEqual(NSArray::of({u"x"_ns, u"x"_ns, u"x"_ns})));
}

TEST(NSArrayPelvorAdditions, NoticesChangesDuringAWalk) {
    Method drop{"dropLast"_sel, implementation<"dropLast", &removeLast>()};
    NSMutableArray::classObject()->addMethods({"Walk", {drop}, nullptr});
    NSMutableArray* array = NSMutableArray::of({u"a"_ns, u"b"_ns, u"c"_ns});
    array->replaceObjectAtIndex_withObject(0, array);
    EXPECT_THAT(
        reasonOf(NSGenericException, [&] { arrayByMakingObjectsPerformSelector(array, "dropLast"_sel); }),
        HasSubstr("mutated"));
    array->removeAllObjects();
}

// Finds the object before every element, and empties the array.
int compareAndEmpty(id, id, void* array) {
    static_cast<NSMutableArray*>(array)->removeAllObjects();
    return -1;
}

TEST(NSArrayPelvorAdditions, NoticesThatAComparisonChangesTheArray) {
    AutoreleasePool pool;
    NSMutableArray* array = arrayOf({1, 2, 3, 4, 5, 6, 7, 8});
    EXPECT_THROW(indexOfObject_withCompareFunction_context(array, number(3), compareAndEmpty, array),
                 NSException);
    array->addObjectsFromArray(arrayOf({1, 2, 3}));
    EXPECT_THROW(_isSortedInRange_withCompareFunction_context(array, {0, 3}, compareAndEmpty, array),
                 NSException);
}

TEST(NSArrayPelvorRangeArray, KeepsRangesInOrder) {
    NSMutableArray* ranges = NSMutableArray::array();
    for (NSRange range : {NSRange{5, 3}, NSRange{1, 1}, NSRange{5, 2}}) insertSortedRange(ranges, range);
    EXPECT_EQ(rangeAtIndex(ranges, 1), (NSRange{5, 2}));
    EXPECT_EQ(insertionIndexForRange(ranges, {5, 2}), 2u);
    EXPECT_EQ(insertionIndexForRange(ranges, {5, 3}), 3u);
    EXPECT_EQ(insertionIndexForRange(ranges, {0xFFFFFFFF, 0}), 3u);
    EXPECT_THROW(rangeAtIndex(ranges, 3), NSException);
    ranges->removeAllObjects();
    EXPECT_EQ(unionRange(ranges), PBNotFoundRange);
    for (NSRange range : {NSRange{10, 2}, NSRange{0, 1}, NSRange{4, 2}}) addRange(ranges, range);
    EXPECT_EQ(unionRange(ranges), (NSRange{4, 8}));
    replaceRangeAtIndex_withRange(ranges, 0, {7, 1});
    removeRangeAtIndex(ranges, 2);
    removeRangeAtIndex(ranges, 1);
    EXPECT_EQ(unionRange(ranges), (NSRange{7, 1}));
    registerLibrary(baseLibrary);
    id made = send<id>(NSMutableArray::classObject(), "initWithRange:"_sel, NSRange{1, 2});
    addRange(cast<NSMutableArray>(made), {3, 4});
    EXPECT_EQ(unionRange(cast<NSArray>(made)), (NSRange{1, 6}));
}

TEST(NSIndexSetPelvorAdditions, ReadArraysAndAnswerRuns) {
    NSIndexSet* set = NSIndexSet_PelvorAdditions::indexSetWithNumberArray(arrayOf({10, 6, 1, 2, 7, 8}));
    EXPECT_EQ(indexRangeStartingAtOrAfterIndex(set, 4), (NSRange{6, 3}));
    EXPECT_EQ(indexRangeStartingAtOrAfterIndex(set, 7), (NSRange{7, 2}));
    EXPECT_EQ(indexRangeStartingAtOrAfterIndex(set, 11), PBNotFoundRange);
    NSMutableArray* ranges = NSMutableArray::array();
    EXPECT_EQ(NSIndexSet_PelvorAdditions::indexSetWithRangeArray(ranges)->count(), 0u);
    addRange(ranges, {6, 3});
    EXPECT_EQ(NSIndexSet_PelvorAdditions::indexSetWithRangeArray(ranges)->count(), 3u);
    for (NSRange range : {NSRange{1, 2}, NSRange{10, 1}}) addRange(ranges, range);
    EXPECT_TRUE(NSIndexSet_PelvorAdditions::indexSetWithRangeArray(ranges)->isEqual(set));
    addRange(ranges, {NSNotFound, 1});
    EXPECT_THROW(NSIndexSet_PelvorAdditions::indexSetWithRangeArray(ranges), NSException);
    EXPECT_THROW(NSIndexSet_PelvorAdditions::indexSetWithNumberArray(ranges), NSException);
}

TEST(PBSingleObjectEnumerator, HandsItsObjectOverOnce) {
    auto object = NSObject::init();
    auto enumerator = PBSingleObjectEnumerator::initWithObject(object);
    {
        AutoreleasePool inner;
        EXPECT_EQ(enumerator->nextObject(), object.get());
        EXPECT_EQ(enumerator->nextObject(), nullptr);
    }
    EXPECT_EQ(object->retainCount(), 1u);
    (void)PBSingleObjectEnumerator::initWithObject(object);
    EXPECT_EQ(object->retainCount(), 1u);
    EXPECT_EQ(PBSingleObjectEnumerator::initWithObject(nullptr)->nextObject(), nullptr);
}

}  // namespace
}  // namespace pelvor
