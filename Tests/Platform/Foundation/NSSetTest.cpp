// SPDX-License-Identifier: Apache-2.0
// Tests of sets: immutable, mutable, counted.
#include "Foundation/NSSet.h"

#include "Foundation/NSCountedSet.h"
#include "Platform/Foundation/Messages.h"

namespace {

TEST(NSSetTest, HoldsEachObjectOnceInTheOrderOfComing) {
    NSSet* set = NSSet::setWithArray(numbers({5, 1, 5, 300, 1, 2}));
    EXPECT_EQ(joined({listing(set), listing(set->objectEnumerator()), listing(set->allObjects())}),
              "5 1 300 2, 5 1 300 2, 5 1 300 2");
    EXPECT_TRUE(set->anyObject() == num(5) && !NSSet::set()->anyObject());
    EXPECT_TRUE(set->containsObject(NSNumber::numberWithDouble(300)));
    EXPECT_FALSE(set->containsObject(num(3)) || set->containsObject(nullptr));
}

// As a reference that is equal to what it refers to, though that does not know of it.
class Seeker : public Pebble {
    PELVOR_CLASS(Seeker, Pebble);

  public:
    bool isEqual(id) override { return true; }
};
PELVOR_DEFINE_CLASS(Seeker, foundationLibrary) {}

TEST(NSSetTest, TheObjectThatIsLookedForIsAsked) {
    auto seeker = make<Seeker>();
    auto pebble = Pebble::create(4, 0);
    EXPECT_EQ(NSSet::setWithObject(pebble)->member(seeker), pebble);
    EXPECT_FALSE(NSSet::setWithObject(seeker)->containsObject(pebble));
}

NSSet* setOf(std::initializer_list<int> values) { return NSSet::setWithArray(numbers(values)); }

TEST(NSSetTest, ComparesWithOtherSets) {
    NSSet *small = setOf({2, 1}), *large = setOf({1, 2, 3}), *reversed = setOf({1, 2});
    EXPECT_TRUE(small->isSubsetOfSet(large) && !large->isSubsetOfSet(small));
    EXPECT_TRUE(NSSet::set()->isSubsetOfSet(nullptr));
    EXPECT_TRUE(large->intersectsSet(small));
    EXPECT_FALSE(large->intersectsSet(setOf({9})) || large->intersectsSet(nullptr));
    EXPECT_FALSE(small->isEqual(large) || small->isEqual(nullptr));
    EXPECT_TRUE(small->isEqual(reversed) && small->hash() == reversed->hash());
    EXPECT_NE(small->hash(), setOf({1, 4})->hash());
    EXPECT_EQ(listing(small->setByAddingObject(num(7))), "2 1 7");
    EXPECT_EQ(listing(small->setByAddingObjectsFromSet(large)), "2 1 3");
    EXPECT_EQ(listing(small->setByAddingObjectsFromArray(numbers({8, 1}))), "2 1 8");
}

TEST(NSSetTest, Changes) {
    auto set = NSMutableSet::init();
    expectSteps(
        set.get(),
        {"addObjectsFromArray: (1,2,3,4) -> 1 2 3 4", "addObject: '2 -> 1 2 3 4",
         "removeObject: '9 -> 1 2 3 4", "removeObject: '1 -> 2 3 4", "unionSet: #(4,5,6) -> 2 3 4 5 6",
         "minusSet: #(2,6) -> 3 4 5", "intersectSet: #(5,3,8) -> 3 5", "intersectSet: . -> 3 5",
         "unionSet: . -> 3 5", "setSet: . -> 3 5"},
        listing<NSMutableSet*>);
    auto copy = set->copy();
    expectSteps(set.get(), {"setSet: #(7) -> 7", "addObjectsFromArray: (8,7) -> 7 8", "minusSet: . -> "},
                listing<NSMutableSet*>);
    EXPECT_EQ(listing(copy), "3 5");
}

TEST(NSSetTest, CountsItsObjects) {
    auto set = NSCountedSet::initWithArray(numbers({1, 2, 1, 1}));
    EXPECT_EQ(shown(set->count(), send<int>(set, "countForObject:"_sel, num(1)), set->countForObject(num(9))),
              "2 3 0");
    auto copy = set->mutableCopy();
    for (int value : {1, 2}) set->removeObject(num(value));
    EXPECT_EQ(cast<NSCountedSet>(copy)->countForObject(num(1)), 3u);
    EXPECT_EQ(set->description()->toUTF8(), "{(\n    1 [2]\n)}");
    auto intersected = NSCountedSet::initWithArray(numbers({1, 2, 2, 2}));
    intersected->intersectSet(setOf({1}));
    EXPECT_EQ(listing(intersected), "1");
    NSSet* plain = setOf({1});
    EXPECT_FALSE(set->isEqual(plain) || plain->isEqual(set));
    set->removeObject(num(1));
    EXPECT_TRUE(plain->isEqual(set) && plain->hash() == set->hash());
}

}  // namespace
