// SPDX-License-Identifier: Apache-2.0
// Tests of sorted arrays against a plain vector, of lists of ranges, and of the one-object enumerator.
#include "NSArray-PelvorAdditions.h"

#include <cstdlib>
#include <numeric>

#include "ActingObject.h"
#include "Foundation/NSMutableIndexSet.h"
#include "Foundation/NSValue.h"
#include "NSArray-PelvorRangeArray.h"
#include "NSEnumerator-PelvorAdditions.h"
#include "NSIndexSet-PelvorAdditions.h"
#include "PBSingleObjectEnumerator.h"
#include "PBUtil.h"
#include "Prelude.h"

namespace {

using Numbers = std::vector<int>;

int intValue(id number) { return cast<NSNumber>(number)->intValue(); }
int compareNumbers(id first, id second, void*) {
    return cast<NSNumber>(first)->compare(cast<NSNumber>(second));
}

NSMutableArray* arrayOf(const Numbers& numbers) {
    NSMutableArray* array = NSMutableArray::array();
    for (int value : numbers) array->addObject(NSNumber::numberWithInt(value));
    return array;
}

Numbers numbersOf(NSArray* array) {
    Numbers numbers;
    for (id value : array) numbers.push_back(intValue(value));
    return numbers;
}

std::string joined(NSArray* array) { return array->componentsJoinedByString(u" "_ns)->toUTF8(); }

TEST(NSArrayPelvorAdditions, TellsWhetherARangeIsSorted) {
    NSArray* array = arrayOf({5, 1, 2, 2, 0});
    auto isSorted = [&](NSRange range) {
        return _isSortedInRange_withCompareFunction_context(array, range, compareNumbers, nullptr);
    };
    EXPECT_TRUE(isSorted({1, 3}) && isSorted({4, 0}));
    EXPECT_FALSE(isSorted({1, 4}));
    for (NSRange range : {NSRange{5, 0}, {4, 0xFFFFFFFF}, {4, 2}}) EXPECT_THROW(isSorted(range), NSException);
}

// The fuzz target SortedArray compares searches, insertions and removals with a plain vector.

// What is removed may change the array when it ends.
TEST(NSArrayPelvorAdditions, RemovesEqualElementsTogether) {
    auto array = NSMutableArray::init();
    for (int i = 0; i < 3; ++i)
        array->addObject(ActingObject::endingWith([&] { array->removeAllObjects(); }).get());
    auto same = [](id, id, void*) { return 0; };
    array->addObject(u"end"_ns);
    auto end = [](id, id element, void*) { return element->isEqual(u"end"_ns) ? -1 : 0; };
    EXPECT_TRUE(removeObject_withCompareFunction_context(array, array, end, nullptr));
    EXPECT_EQ(array->count(), 0u);
    EXPECT_FALSE(removeObject_withCompareFunction_context(array, array, same, nullptr));
    EXPECT_EQ(RAISED(insertObject_withCompareFunction_context(array, nullptr, same, nullptr)),
              "NSInvalidArgumentException: insertObject:withCompareFunction:context: the object is null");
}

TEST(NSArrayPelvorAdditions, TakesComparisonsAsTheyAre) {
    // What is neither -1 nor 1 ends the search, which goes back over what is exactly 0.
    auto answer = [](id, id, void* result) { return *static_cast<int*>(result); };
    NSArray* array = arrayOf({1, 2, 3, 4, 5, 6});
    for (int result : {-2, 2})
        EXPECT_EQ(indexOfObject_withCompareFunction_context(array, array, answer, &result), 2u);
    // The object that is looked for may be one that only the array holds.
    Retained<NSNumber> half = NSNumber::initWithDouble(0.5);
    auto numbers = NSMutableArray_PelvorAdditions::initWithSingleObject_count(half, 2);
    numbers->addObject(NSNumber::numberWithInt(1));
    half = nullptr;
    removeObject_withCompareFunction_context(numbers, firstObject(numbers), compareNumbers, nullptr);
    EXPECT_EQ(numbersOf(numbers), Numbers{1});
}

TEST(NSArrayPelvorAdditions, CollectsAnswersRepeatsAndShuffles) {
    auto one = [](id object) { return NSEnumerator_PelvorAdditions::enumeratorWithObject(object); };
    NSArray* three = NSArray::of({one(u"a"_ns), NSEnumerator_PelvorAdditions::enumerator(), one(u"b"_ns)});
    NSArray* letters = arrayByMakingObjectsPerformSelector(three, "nextObject"_sel);
    EXPECT_EQ(joined(letters), "a b");
    EXPECT_EQ(joined(arrayByMakingObjectsPerformSelector_withObject(letters, "stringByAppendingString:"_sel,
                                                                    u"c"_ns)),
              "ac bc");
    EXPECT_EQ(joined(NSMutableArray_PelvorAdditions::initWithSingleObject_count(u"x"_ns, 3).get()), "x x x");
    Numbers all(100);
    std::iota(all.begin(), all.end(), PBRandomInt() % 2);
    NSMutableArray* shuffled = arrayOf(all);
    srandom(5);
    randomize(shuffled);
    srandom(5);
    for (int i = 0; i < 100; ++i) std::swap(all[i], all[i + PBRandomInt() % (100 - i)]);
    EXPECT_EQ(numbersOf(shuffled), all);
}

TEST(NSArrayPelvorAdditions, NoticesChangesDuringAWalk) {
    NSMutableArray* array = arrayOf({1, 2, 3});
    array->replaceObjectAtIndex_withObject(0, array);
    EXPECT_THAT(reasonOf(NSGenericException,
                         [&] { arrayByMakingObjectsPerformSelector(array, "removeLastObject"_sel); }),
                HasSubstr("mutated"));
    // Finds the object before every element, and empties the array.
    auto empty = [](id, id, void* context) {
        static_cast<NSMutableArray*>(context)->removeAllObjects();
        return -1;
    };
    array->setArray(arrayOf({1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_THROW(indexOfObject_withCompareFunction_context(array, array, empty, array), NSException);
    array->setArray(arrayOf({1, 2, 3}));
    EXPECT_THROW(_isSortedInRange_withCompareFunction_context(array, {0, 3}, empty, array), NSException);
}

TEST(NSArrayPelvorRangeArray, KeepsRangesInOrder) {
    NSMutableArray* ranges = NSMutableArray::array();
    EXPECT_EQ(unionRange(ranges), PBNotFoundRange);
    for (NSRange range : {NSRange{5, 3}, {1, 1}, {5, 2}}) insertSortedRange(ranges, range);
    EXPECT_EQ(joined(ranges), "{1, 1} {5, 2} {5, 3}");
    const std::pair<NSRange, NSUInteger> places[] = {{{5, 2}, 2}, {{5, 3}, 3}, {{0xFFFFFFFF, 0}, 3}};
    for (auto [range, index] : places) EXPECT_EQ(insertionIndexForRange(ranges, range), index);
    EXPECT_EQ(rangeAtIndex(ranges, 1), (NSRange{5, 2}));
    EXPECT_THROW(rangeAtIndex(ranges, 3), NSException);
    addRange(ranges, {4, 2});
    replaceRangeAtIndex_withRange(ranges, 0, {10, 2});
    EXPECT_EQ(unionRange(ranges), (NSRange{4, 8}));
    for (NSUInteger index : {3, 2, 1}) removeRangeAtIndex(ranges, index);
    EXPECT_EQ(unionRange(ranges), (NSRange{10, 2}));
    auto made = NSArray_PelvorRangeArray::initWithRange({1, 2}, NSMutableArray::classObject());
    addRange(cast<NSMutableArray>(made.get()), {3, 4});
    EXPECT_EQ(joined(made), "{1, 2} {3, 4}");
}

TEST(NSIndexSetPelvorAdditions, ReadArraysAndAnswerRuns) {
    using Sets = NSIndexSet_PelvorAdditions;
    NSIndexSet* set = Sets::indexSetWithNumberArray(arrayOf({10, 6, 1, 2, 7, 8}));
    EXPECT_EQ(cast<NSMutableIndexSet>(set), nullptr);
    const std::pair<NSUInteger, NSRange> runs[] = {{4, {6, 3}}, {7, {7, 2}}, {11, PBNotFoundRange}};
    for (auto [index, run] : runs) EXPECT_EQ(indexRangeStartingAtOrAfterIndex(set, index), run);
    NSMutableArray* ranges = NSMutableArray::array();
    EXPECT_EQ(Sets::indexSetWithRangeArray(ranges)->count(), 0u);
    addRange(ranges, {6, 3});
    EXPECT_EQ(Sets::indexSetWithRangeArray(ranges)->count(), 3u);
    for (NSRange range : {NSRange{1, 2}, {10, 1}}) addRange(ranges, range);
    EXPECT_TRUE(Sets::indexSetWithRangeArray(ranges)->isEqual(set));
    addRange(ranges, {NSNotFound, 1});
    EXPECT_THROW(Sets::indexSetWithRangeArray(ranges), NSException);
}

TEST(PBSingleObjectEnumerator, HandsItsObjectOverOnce) {
    auto object = make<NSObject>();
    {
        AutoreleasePool inner;
        auto enumerator = PBSingleObjectEnumerator::initWithObject(object);
        (void)PBSingleObjectEnumerator::initWithObject(object);
        EXPECT_EQ(enumerator->nextObject(), object.get());
        EXPECT_EQ(enumerator->nextObject(), nullptr);
    }
    EXPECT_EQ(object->retainCount(), 1u);
    EXPECT_EQ(PBSingleObjectEnumerator::initWithObject(nullptr)->nextObject(), nullptr);
}

}  // namespace
