// SPDX-License-Identifier: Apache-2.0
// Tests of walks over collections, and of collections that change under them.
#include "Foundation/NSEnumerator.h"

#include "Foundation/NSCountedSet.h"
#include "Platform/Foundation/Pebble.h"

namespace {

TEST(NSEnumeratorTest, IsUsedUpByWalking) {
    NSEnumerator* enumerator = numbers({1, 2, 3})->objectEnumerator();
    EXPECT_EQ(enumerator->nextObject(), num(1));
    EXPECT_EQ(listing(enumerator->allObjects()), "2 3");
    EXPECT_EQ(enumerator->nextObject(), nullptr);
}

TEST(NSEnumeratorTest, KeepsTheCollectionUntilTheEndAsLoopsDo) {
    auto array = NSMutableArray::initWithObjects({num(1)});
    Retained<NSEnumerator> enumerator;
    {
        AutoreleasePool pool;
        enumerator.set(array->objectEnumerator());
    }
    EXPECT_EQ(array->retainCount(), 2u);
    enumerator->nextObject();
    EXPECT_EQ(enumerator->nextObject(), nullptr);
    EXPECT_EQ(array->retainCount(), 1u);
    array->addObject(num(2));
    EXPECT_EQ(enumerator->nextObject(), nullptr);
    array->setArray(numbers({1, 2, 3}));
    NSMutableArray* borrowed = array;
    int seen = 0;
    for (id object : borrowed) {
        array = nullptr;
        seen += cast<NSNumber>(object)->intValue();
    }
    EXPECT_EQ(seen, 6);
    for (id object : static_cast<NSArray*>(nullptr)) FAIL() << object;
}

void forEach(auto* collection, auto act) {
    for (id object : collection) act(object);
}

TEST(NSEnumeratorTest, NoticesThatTheCollectionChanged) {
    NSMutableArray* array = NSMutableArray::arrayWithArray(numbers({1, 2, 3}));
    NSMutableSet* set = NSMutableSet::setWithArray(array);
    NSCountedSet* counted = NSCountedSet::setWithArray(array);
    NSMutableDictionary* dictionary = NSMutableDictionary::dictionaryWithObjects_forKeys(array, array);
    auto pebble = Pebble::create(1);
    pebble->whenCompared = [&] { array->removeAllObjects(); };
    auto shrink = [&](id) { dictionary->removeObjectForKey(num(1)); };
    auto expectNoticed = [](Object* collection, const std::function<void()>& walk) {
        EXPECT_EQ(RAISED(walk()), std::string("NSGenericException: Collection <") +
                                      collection->isa()->publicName() + ": " + addressOf(collection) +
                                      "> was mutated while being enumerated.");
    };
    expectNoticed(array, [&] { forEach(array, [&](id object) { array->removeObject(object); }); });
    expectNoticed(array,
                  [&] { forEach(array->reverseObjectEnumerator(), [&](id) { array->addObject(num(8)); }); });
    expectNoticed(set, [&] { forEach(set, [&](id object) { set->removeObject(object); }); });
    expectNoticed(set, [&] { forEach(set->objectEnumerator(), [&](id) { set->addObject(num(8)); }); });
    expectNoticed(counted, [&] { forEach(counted, [&](id object) { counted->removeObject(object); }); });
    expectNoticed(dictionary, [&] { forEach(dictionary->keyEnumerator(), shrink); });
    expectNoticed(dictionary, [&] {
        for (auto [key, value] : dictionary) dictionary->setObject_forKey(key, pebble);
    });
    array->insertObject_atIndex(pebble, 0);
    expectNoticed(array, [&] { array->indexOfObject(num(100)); });
}

TEST(NSEnumeratorTest, AnotherObjectInAPlaceIsNoChangeOfTheWalk) {
    NSMutableArray* array = NSMutableArray::arrayWithArray(numbers({1, 2, 3}));
    NSUInteger index = 0;
    for (id object : array)
        array->replaceObjectAtIndex_withObject(index++, num(cast<NSNumber>(object)->intValue() * 2));
    EXPECT_EQ(listing(array), "2 4 6");
    NSMutableDictionary* dictionary = NSMutableDictionary::dictionaryWithObjects_forKeys(array, array);
    for (auto [key, object] : dictionary) dictionary->setObject_forKey(u"x"_ns, key);
    EXPECT_EQ(listing(dictionary->allValues()), "x x x");
    for (id object : array)
        if (object == num(4)) {
            array->removeObject(object);
            break;
        }
    EXPECT_EQ(listing(array), "2 6");
}

}  // namespace
