// SPDX-License-Identifier: Apache-2.0
// Tests of arrays that change.
#include "Foundation/NSMutableArray.h"

#include "Platform/Foundation/Messages.h"
#include "Platform/Foundation/OwnCollections.h"

namespace {

// Each test runs with the array of the platform and with one over only the primitives.
class NSMutableArrayTest : public ::testing::TestWithParam<bool> {
  protected:
    NSMutableArray* arrayOf(std::initializer_list<int> values) {
        auto array = GetParam() ? Retained<NSMutableArray>(make<OwnArray>()) : NSMutableArray::init();
        for (int value : values) array->addObject(num(value));
        return std::move(array).autorelease();
    }
};
INSTANTIATE_TEST_SUITE_P(, NSMutableArrayTest, ::testing::Bool(),
                         [](const auto& info) { return info.param ? "OfItsOwn" : "OfThePlatform"; });

TEST_P(NSMutableArrayTest, AddsReplacesRemovesAndSorts) {
    NSMutableArray* array = arrayOf({1, 2});
    expectSteps(
        array,
        {"insertObject:atIndex: '0 0 -> 0 1 2", "insertObject:atIndex: '9 3 -> 0 1 2 9",
         "replaceObjectAtIndex:withObject: 1 '7 -> 0 7 2 9", "addObjectsFromArray: . -> 0 7 2 9 0 7 2 9",
         "replaceObjectsInRange:withObjectsFromArray: 1,6 (4,5) -> 0 4 5 9",
         "replaceObjectsInRange:withObjectsFromArray: 1,1 . -> 0 0 4 5 9 5 9",
         "exchangeObjectAtIndex:withObjectAtIndex: 0 4 -> 9 0 4 5 0 5 9", "setArray: 0 -> ",
         "setArray: (1,2,1,3,1,4,5) -> 1 2 1 3 1 4 5", "removeObject:inRange: '1 1,2 -> 1 2 3 1 4 5",
         "removeObject: '1 -> 2 3 4 5", "removeObject: 0 -> 2 3 4 5", "removeObjectAtIndex: 1 -> 2 4 5",
         "removeLastObject -> 2 4", "addObjectsFromArray: (6,7,2,8) -> 2 4 6 7 2 8",
         "removeObjectsInArray: (2,7,100) -> 4 6 8", "removeObjectsInRange: 1,2 -> 4",
         "setArray: (3,1,2) -> 3 1 2", "sortUsingSelector: 'compare: -> 1 2 3"},
        listing<NSMutableArray*>);
    array->sortUsingFunction_context(
        [](id a, id b, void*) { return -cast<NSString>(a)->compare(cast<NSString>(b)); }, nullptr);
    EXPECT_EQ(listing(array), "3 2 1");
    while (array->count()) array->removeObjectIdenticalTo(array->objectAtIndex(0));
    EXPECT_EQ(RAISED(NSMutableArray::array()->removeLastObject()),
              "NSRangeException: removeLastObject: index (0) beyond bounds (0)");
}

TEST(NSMutableArray, DoesWhatAVectorDoes) {
    std::mt19937 random(3);
    auto array = NSMutableArray::init();
    std::vector<Object*> model;
    for (int step = 0; step < 20000; ++step) {
        // The places favour the front in one phase and the back in the next; it grows and shrinks in turn.
        auto place = [&](std::size_t count) {
            auto at = static_cast<NSUInteger>(random() % count),
                 phase = static_cast<NSUInteger>(step / 2000 % 3);
            return phase == 0 ? at / 8 : phase == 1 ? at : static_cast<NSUInteger>(count) - 1 - at / 8;
        };
        if (random() % 16 < (step / 4000 % 2 ? 7u : 9u) || model.empty()) {
            NSUInteger index = place(model.size() + 1);
            array->insertObject_atIndex(num(step), index);
            model.insert(model.begin() + index, array->objectAtIndex(index));
        } else {
            NSUInteger index = place(model.size());
            array->removeObjectAtIndex(index);
            model.erase(model.begin() + index);
        }
        if (step % 500) continue;
        ASSERT_EQ(array->count(), model.size());
        ASSERT_TRUE(std::equal(model.begin(), model.end(), array->contiguousObjects())) << step;
    }
}

TEST(NSMutableArray, ACapacityIsOnlyAHint) {
    for (NSUInteger capacity : {0u, 3u, 100u, 0xFFFFFFFFu}) {
        auto array = NSMutableArray::initWithCapacity(capacity);
        auto set = NSMutableSet::initWithCapacity(capacity);
        auto dictionary = NSMutableDictionary::initWithCapacity(capacity);
        for (int i = 0; i < 200; ++i) {
            array->insertObject_atIndex(num(i), 0);
            set->addObject(num(i));
            dictionary->setObject_forKey(num(-i), num(i));
        }
        EXPECT_TRUE(set->isEqualToSet(NSSet::setWithArray(array)) && array->objectAtIndex(199) == num(0));
        EXPECT_EQ(dictionary->objectForKey(num(150)), dictionary->allValues()->objectAtIndex(150));
    }
}

TEST(NSMutableArray, BalancesReferences) {
    expectPebblesBalance([] {
        auto array = NSMutableArray::init();
        for (int i = 0; i < 50; ++i) array->addObject(Pebble::create(i % 10).autorelease());
        array->removeObject(Pebble::create(3).autorelease());
        array->replaceObjectAtIndex_withObject(0, Pebble::create(77).autorelease());
        array->replaceObjectAtIndex_withObject(1, array->objectAtIndex(1));
        array->exchangeObjectAtIndex_withObjectAtIndex(2, 2);
        array->removeObjectsInRange({5, 10});
        array->sortUsingSelector("compare:"_sel);
        auto copy = array->copy();
        array->removeAllObjects();
        EXPECT_EQ(copy->count(), 35u);
        // Those that only the array holds, by one of them.
        for (int i = 0; i < 3; ++i) array->addObject(Pebble::create(1).get());
        array->removeObject(array->objectAtIndex(1));
        EXPECT_EQ(array->count(), 0u);
    });
}

}  // namespace
