// SPDX-License-Identifier: Apache-2.0
// Tests of sets: immutable, mutable, counted.
#include "Foundation/NSSet.h"

#include <gtest/gtest.h>

#include "Foundation/NSCountedSet.h"
#include "Platform/Foundation/Pebble.h"
#include "Runtime/Message.h"

namespace pelvor {
namespace {

using testing::listing;
using testing::num;
using testing::numbers;
using testing::Pebble;
using testing::reasonOf;

class NSSetTest : public ::testing::Test {
    AutoreleasePool _pool;
};

TEST_F(NSSetTest, HoldsEachObjectOnceInTheOrderOfComing) {
    NSSet* set = NSSet::setWithArray(numbers({5, 1, 5, 300, 1, 2}));
    EXPECT_EQ(set->count(), 4u);
    EXPECT_EQ(listing(set), "5 1 300 2");
    EXPECT_EQ(listing(set->objectEnumerator()), "5 1 300 2");
    EXPECT_EQ(listing(set->allObjects()), "5 1 300 2");
    EXPECT_EQ(set->anyObject(), num(5));
    EXPECT_EQ(NSSet::set()->anyObject(), nullptr);
    EXPECT_TRUE(set->containsObject(NSNumber::numberWithDouble(300)));
    EXPECT_FALSE(set->containsObject(num(3)));
    EXPECT_FALSE(set->containsObject(nullptr));
    EXPECT_EQ(reasonOf(NSInvalidArgumentException, [] { NSSet::setWithObject(nullptr); }),
              "no object was given to initWithObjects:count:");
}

// As a reference that is equal to what it refers to, though that does not know of it.
class NSSetOfOneSidedEquals : public NSSetTest {};
class Seeker : public Pebble {
    PELVOR_CLASS(Seeker, Pebble);

  public:
    bool isEqual(id) override { return true; }
};
extern Library seekerLibrary;
PELVOR_DEFINE_CLASS(Seeker, seekerLibrary) {}
Class* const kSeekerClasses[] = {&Seeker::classRecord};
constinit Library seekerLibrary{"Seekers", {}, kSeekerClasses, {}};

TEST_F(NSSetOfOneSidedEquals, TheObjectThatIsLookedForIsAsked) {
    auto seeker = make<Seeker>();
    auto pebble = Pebble::create(4, 0);
    EXPECT_EQ(NSSet::setWithObject(pebble)->member(seeker), pebble);
    EXPECT_FALSE(NSSet::setWithObject(seeker)->containsObject(pebble));
}

TEST_F(NSSetTest, ComparesWithOtherSets) {
    NSSet* small = NSSet::setWithArray(numbers({2, 1}));
    NSSet* large = NSSet::setWithArray(numbers({1, 2, 3}));
    EXPECT_TRUE(small->isSubsetOfSet(large));
    EXPECT_FALSE(large->isSubsetOfSet(small));
    EXPECT_TRUE(NSSet::set()->isSubsetOfSet(nullptr));
    EXPECT_TRUE(large->intersectsSet(small));
    EXPECT_FALSE(large->intersectsSet(NSSet::setWithObject(num(9))));
    EXPECT_FALSE(large->intersectsSet(nullptr));
    EXPECT_FALSE(small->isEqual(large));
    EXPECT_FALSE(small->isEqual(nullptr));
    NSSet* reversed = NSSet::setWithArray(numbers({1, 2}));
    EXPECT_TRUE(small->isEqual(reversed));
    EXPECT_EQ(small->hash(), reversed->hash());
    EXPECT_NE(small->hash(), NSSet::setWithArray(numbers({1, 4}))->hash());
    EXPECT_EQ(listing(small->setByAddingObject(num(7))), "2 1 7");
    EXPECT_EQ(listing(small->setByAddingObjectsFromSet(large)), "2 1 3");
    EXPECT_EQ(listing(small->setByAddingObjectsFromArray(numbers({8, 1}))), "2 1 8");
}

TEST_F(NSSetTest, Changes) {
    auto set = NSMutableSet::initWithArray(numbers({1, 2, 3, 4}));
    set->addObject(num(2));
    set->removeObject(num(9));
    set->removeObject(num(1));
    EXPECT_EQ(listing(set), "2 3 4");
    set->unionSet(NSSet::setWithArray(numbers({4, 5, 6})));
    set->minusSet(NSSet::setWithArray(numbers({2, 6})));
    EXPECT_EQ(listing(set), "3 4 5");
    set->intersectSet(NSSet::setWithArray(numbers({5, 3, 8})));
    EXPECT_EQ(listing(set), "3 5");
    set->intersectSet(set);
    set->unionSet(set);
    set->setSet(set);
    EXPECT_EQ(listing(set), "3 5");
    auto copy = set->copy();
    set->setSet(NSSet::setWithObject(num(7)));
    set->addObjectsFromArray(numbers({8, 7}));
    EXPECT_EQ(listing(set), "7 8");
    EXPECT_EQ(listing(copy), "3 5");
    set->minusSet(set);
    EXPECT_EQ(set->count(), 0u);
    EXPECT_THROW(set->addObject(nullptr), NSException);
}

TEST_F(NSSetTest, BalancesReferences) {
    int before = Pebble::alive();
    {
        AutoreleasePool pool;
        auto set = NSMutableSet::init();
        for (int i = 0; i < 100; ++i) set->addObject(Pebble::create(i % 40).autorelease());
        for (int i = 0; i < 100; i += 3) set->removeObject(Pebble::create(i).autorelease());
        auto copy = set->copy();
        auto second = copy->mutableCopy();
        set->removeAllObjects();
        EXPECT_EQ(second->count(), 26u);
    }
    EXPECT_EQ(Pebble::alive(), before);
}

TEST_F(NSSetTest, AReleaseMayUseTheSet) {
    auto set = NSMutableSet::init();
    int freed = 0;
    for (int i = 0; i < 30; ++i) {
        auto pebble = Pebble::create(i);
        pebble->whenDestroyed = [&] {
            ++freed;
            set->addObject(num(1000 + static_cast<int>(set->count())));
        };
        set->addObject(pebble);
    }
    set->removeObject(Pebble::create(4).autorelease());
    EXPECT_EQ(set->count(), 30u);
    set->removeAllObjects();
    EXPECT_EQ(freed, 30);
    EXPECT_EQ(set->count(), 29u);
}

TEST_F(NSSetTest, CountsItsObjects) {
    auto set = NSCountedSet::initWithArray(numbers({1, 2, 1, 1}));
    EXPECT_EQ(set->count(), 2u);
    EXPECT_EQ(set->countForObject(num(1)), 3u);
    EXPECT_EQ(set->countForObject(num(9)), 0u);
    auto kept = set->mutableCopy();
    auto* copy = cast<NSCountedSet>(kept);
    set->removeObject(num(1));
    set->removeObject(num(2));
    EXPECT_EQ(listing(set), "1");
    EXPECT_EQ(set->countForObject(num(1)), 2u);
    EXPECT_EQ(copy->countForObject(num(1)), 3u);
    EXPECT_EQ(set->description()->toUTF8(), "{(\n    1 [2]\n)}");
    NSSet* plain = NSSet::setWithObject(num(1));
    EXPECT_FALSE(set->isEqual(plain));
    EXPECT_FALSE(plain->isEqual(set));
    set->removeObject(num(1));
    EXPECT_TRUE(plain->isEqual(set));
    EXPECT_EQ(plain->hash(), set->hash());
}

TEST_F(NSSetTest, AnswersMessages) {
    auto* set = send<NSMutableSet*>(NSMutableSet::classObject(), "setWithObject:"_sel, num(4));
    send(set, "addObject:"_sel, num(5));
    EXPECT_TRUE(send<bool>(set, "containsObject:"_sel, num(5)));
    auto* counted = send<NSSet*>(NSCountedSet::classObject(), "setWithObject:"_sel, num(4));
    EXPECT_EQ(send<int>(counted, "countForObject:"_sel, num(4)), 1);
}

}  // namespace
}  // namespace pelvor
