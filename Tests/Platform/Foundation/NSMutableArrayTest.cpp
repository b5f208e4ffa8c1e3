// SPDX-License-Identifier: Apache-2.0
// Tests of arrays that change.
#include "Foundation/NSMutableArray.h"

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

TEST_P(NSMutableArrayTest, AddsAndReplaces) {
    NSMutableArray* array = arrayOf({1, 2});
    array->insertObject_atIndex(num(0), 0);
    array->insertObject_atIndex(num(9), 3);
    array->replaceObjectAtIndex_withObject(1, num(7));
    EXPECT_EQ(listing(array), "0 7 2 9");
    array->addObjectsFromArray(array);
    EXPECT_EQ(listing(array), "0 7 2 9 0 7 2 9");
    array->replaceObjectsInRange_withObjectsFromArray({1, 6}, numbers({4, 5}));
    EXPECT_EQ(listing(array), "0 4 5 9");
    array->replaceObjectsInRange_withObjectsFromArray({1, 1}, array);
    EXPECT_EQ(listing(array), "0 0 4 5 9 5 9");
    array->exchangeObjectAtIndex_withObjectAtIndex(0, 4);
    EXPECT_EQ(listing(array), "9 0 4 5 0 5 9");
    array->setArray(array->subarrayWithRange({2, 2}));
    EXPECT_EQ(listing(array), "4 5");
    array->setArray(nullptr);
    EXPECT_EQ(array->count(), 0u);
}

TEST_P(NSMutableArrayTest, Removes) {
    NSMutableArray* array = arrayOf({1, 2, 1, 3, 1, 4, 5});
    array->removeObject_inRange(num(1), {1, 2});
    EXPECT_EQ(listing(array), "1 2 3 1 4 5");
    for (id object : {id(num(1)), id()}) array->removeObject(object);
    array->removeObjectAtIndex(1);
    array->removeLastObject();
    EXPECT_EQ(listing(array), "2 4");
    array->addObjectsFromArray(numbers({6, 7, 2, 8}));
    array->removeObjectsInArray(numbers({2, 7, 100}));
    EXPECT_EQ(listing(array), "4 6 8");
    array->removeObjectsInRange({1, 2});
    array->removeObjectIdenticalTo(num(4));
    EXPECT_EQ(array->count(), 0u);
    EXPECT_EQ(RAISED(NSMutableArray::array()->removeLastObject()),
              "NSRangeException: removeLastObject: index (0) beyond bounds (0)");
}

TEST_P(NSMutableArrayTest, Sorts) {
    NSMutableArray* array = arrayOf({3, 1, 2});
    array->sortUsingSelector("compare:"_sel);
    EXPECT_EQ(listing(array), "1 2 3");
    array->sortUsingFunction_context(
        [](id a, id b, void*) { return -cast<NSNumber>(a)->compare(cast<NSNumber>(b)); }, nullptr);
    EXPECT_EQ(listing(array), "3 2 1");
}

TEST(NSMutableArray, RaisesAndChangesNothing) {
    NSMutableArray* array = NSMutableArray::of({num(1), num(2)});
    for (const std::string& raised :
         {RAISED(array->insertObject_atIndex(num(1), 3)), RAISED(array->removeObjectAtIndex(2)),
          RAISED(array->replaceObjectAtIndex_withObject(2, num(1))),
          RAISED(array->exchangeObjectAtIndex_withObjectAtIndex(0, 2))})
        EXPECT_THAT(raised, AllOf(StartsWith(NSRangeException), EndsWith(" beyond bounds (2)")));
    EXPECT_EQ(listing(array), "1 2");
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
        EXPECT_EQ(array->objectAtIndex(199), num(0));
        EXPECT_TRUE(set->isEqualToSet(NSSet::setWithArray(array)));
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
    });
}

TEST(NSMutableArray, RemovingTheLastReferenceToTheObjectAskedForIsSafe) {
    auto array = NSMutableArray::init();
    for (int i = 0; i < 3; ++i) array->addObject(Pebble::create(1).get());
    array->removeObject(array->objectAtIndex(1));
    EXPECT_EQ(array->count(), 0u);
}

}  // namespace
