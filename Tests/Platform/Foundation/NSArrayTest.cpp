// SPDX-License-Identifier: Apache-2.0
// Tests of arrays that do not change.
#include "Foundation/NSArray.h"

#include "Platform/Foundation/OwnCollections.h"

namespace {

TEST(NSArrayTest, HoldsWhatItWasMadeOfAndMakesOtherArrays) {
    NSArray* array = NSArray::of({u"a"_ns, num(2), u"c"_ns});
    EXPECT_EQ(joined({listing(array), listing(array->reverseObjectEnumerator())}), "a 2 c, c 2 a");
    EXPECT_EQ(shown(array->lastObject(), NSArray::array()->lastObject()), "c (null)");
    EXPECT_EQ(send<id>(array, "objectAtIndex:"_sel, 1), num(2));
    EXPECT_EQ(RAISED(array->objectAtIndex(0x80000000u)),
              "NSRangeException: objectAtIndex: index (2147483648) beyond bounds (3)");
    array = numbers({3, 1, 2});
    EXPECT_EQ(listing(array->subarrayWithRange({1, 2})) + listing(array->subarrayWithRange({3, 0})), "1 2");
    EXPECT_EQ(joined({listing(array->arrayByAddingObject(num(9))),
                      listing(array->arrayByAddingObjectsFromArray(array))}),
              "3 1 2 9, 3 1 2 3 1 2");
    EXPECT_EQ(shown(array->componentsJoinedByString(u", "_ns),
                    NSArray::array()->componentsJoinedByString(u", "_ns)),
              "3, 1, 2 ");
}

TEST(NSArrayTest, RetainsAndReleasesEachObjectOnce) {
    auto pebble = Pebble::create(1);
    {
        AutoreleasePool pool;
        NSArray* array = NSArray::of({pebble, pebble});
        EXPECT_EQ(pebble->retainCount(), 3u);
        EXPECT_EQ(array->copy().get(), array);
        EXPECT_EQ(array->mutableCopy()->count(), 2u);
        array->subarrayWithRange({0, 1});
        array->arrayByAddingObject(pebble);
        EXPECT_EQ(pebble->retainCount(), 7u);
    }
    EXPECT_EQ(pebble->retainCount(), 1u);
}

TEST(NSArrayTest, FindsByEqualityOfItsEntriesOrByIdentity) {
    auto one = Pebble::create(1), alike = Pebble::create(1);
    NSArray* array = NSArray::of({Pebble::create(0).autorelease(), one, alike});
    EXPECT_EQ(array->indexOfObject(alike), 1u);
    EXPECT_EQ(array->indexOfObjectIdenticalTo(alike), 2u);
    EXPECT_EQ(array->indexOfObject_inRange(one, {2, 1}), 2u);
    EXPECT_EQ(array->indexOfObject_inRange(one, {0, 1}), NSNotFound);
    for (id stranger : {id(u"x"_ns), id()}) EXPECT_EQ(array->indexOfObject(stranger), NSNotFound);
    EXPECT_FALSE(array->containsObject(nullptr));
    EXPECT_EQ(array->firstObjectCommonWithArray(NSArray::of({u"x"_ns, one})), one);
    EXPECT_EQ(array->firstObjectCommonWithArray(nullptr), nullptr);
}

int compareTens(id first, id second, void* calls) {
    ++*static_cast<int*>(calls);
    return static_cast<Pebble*>(first)->number() / 10 - static_cast<Pebble*>(second)->number() / 10;
}

int nonsense(id, id, void* random) {
    return static_cast<int>((*static_cast<std::mt19937*>(random))() % 3) - 1;
}

TEST(NSArrayTest, SortsStablyAndKeepsTheObjectsWhateverIsCompared) {
    std::mt19937 random(1);
    for (int count : {0, 1, 2, 9, 100, 1000}) {
        std::vector<Object*> pebbles;
        for (int i = 0; i < count; ++i)
            pebbles.push_back(Pebble::create(static_cast<int>(random() % 200)).autorelease());
        int calls = 0;
        NSArray* array =
            NSArray::arrayWithObjects_count(pebbles.data(), static_cast<NSUInteger>(pebbles.size()));
        NSArray* sorted = array->sortedArrayUsingFunction_context(&compareTens, &calls);
        std::stable_sort(pebbles.begin(), pebbles.end(),
                         [&](id a, id b) { return compareTens(a, b, &calls) < 0; });
        EXPECT_TRUE(std::equal(pebbles.begin(), pebbles.end(), sorted->contiguousObjects()));
    }
    auto countdown = OwnArray::countdown(500);
    for (int i = 0; i < 20; ++i) {
        NSArray* sorted = countdown->sortedArrayUsingFunction_context(&nonsense, &random);
        EXPECT_TRUE(NSSet::setWithArray(sorted)->isEqualToSet(NSSet::setWithArray(countdown)));
    }
}

TEST(NSArrayTest, ASubclassNeedsOnlyThePrimitivesAndEqualsTheSameArray) {
    auto countdown = OwnArray::countdown(3);
    NSArray* array = numbers({3, 2, 1});
    EXPECT_TRUE(array->isEqual(countdown) && countdown->isEqual(array) && array->hash() == countdown->hash());
    EXPECT_TRUE(array->isEqual(array->mutableCopy().get()));
    for (NSArray* other : {numbers({3, 2}), numbers({3, 2, 2}), numbers({3, 2, 1, 0}), NSArray::array()}) {
        EXPECT_FALSE(array->isEqual(other)) << other;
        EXPECT_NE(array->hash(), other->hash()) << other;
    }
    EXPECT_FALSE(array->isEqual(u"(3, 2, 1)"_ns));
    countdown->insertObject_atIndex(num(4), 0);
    for (NSArray* same :
         {static_cast<NSArray*>(countdown), static_cast<NSArray*>(countdown->mutableCopy().autorelease()),
          countdown->copy().autorelease()})
        EXPECT_EQ(listing(same), "4 3 2 1");
    EXPECT_EQ(listing(countdown->reverseObjectEnumerator()), "1 2 3 4");
    EXPECT_EQ(countdown->indexOfObject(num(1)), 3u);
    EXPECT_EQ(listing(countdown->subarrayWithRange({1, 2})), "3 2");
    EXPECT_EQ(listing(countdown->sortedArrayUsingSelector("compare:"_sel)), "1 2 3 4");
}

TEST(NSArrayTest, SendsItsObjectsMessages) {
    auto array = send<Retained<NSMutableArray>>(NSMutableArray::classObject(), "new"_sel);
    auto pebble = Pebble::create(5);
    int comparisons = 0;
    pebble->whenCompared = [&] { ++comparisons; };
    for (int i = 0; i < 2; ++i) array->addObject(pebble);
    array->makeObjectsPerformSelector_withObject("isEqual:"_sel, pebble);
    EXPECT_EQ(comparisons, 2);
    EXPECT_THROW(array->makeObjectsPerformSelector("frobnicate"_sel), NSException);
}

TEST(NSArrayTest, AReleaseAtItsEndSeesItEmpty) {
    NSArray* seen = nullptr;
    NSUInteger count = 99;
    auto pebble = Pebble::create(1);
    pebble->whenDestroyed = [&] { count = seen->count() + (seen->containsObject(num(3)) ? 50 : 0); };
    auto array = NSArray::initWithObjects({pebble, num(3)});
    seen = array;
    pebble = nullptr;
    array = nullptr;
    EXPECT_EQ(count, 0u);
}

}  // namespace
