// SPDX-License-Identifier: Apache-2.0
// Tests of walks over collections, and of collections that change under them.
#include "Foundation/NSEnumerator.h"

#include <gtest/gtest.h>

#include "Foundation/NSCountedSet.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Platform/Foundation/Pebble.h"

namespace pelvor {
namespace {

using testing::listing;
using testing::num;
using testing::numbers;
using testing::Pebble;
using testing::reasonOf;

class NSEnumeratorTest : public ::testing::Test {
    AutoreleasePool _pool;
};

TEST_F(NSEnumeratorTest, IsUsedUpByWalking) {
    NSEnumerator* enumerator = numbers({1, 2, 3})->objectEnumerator();
    EXPECT_EQ(enumerator->nextObject(), num(1));
    EXPECT_EQ(listing(enumerator->allObjects()), "2 3");
    EXPECT_EQ(enumerator->nextObject(), nullptr);
    EXPECT_EQ(enumerator->allObjects()->count(), 0u);
}

TEST_F(NSEnumeratorTest, KeepsTheCollectionUntilTheEnd) {
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
}

TEST_F(NSEnumeratorTest, LoopsKeepTheCollection) {
    auto array = NSMutableArray::initWithArray(numbers({1, 2, 3}));
    NSMutableArray* borrowed = array;
    int seen = 0;
    for (id object : borrowed) {
        array = nullptr;
        seen += cast<NSNumber>(object)->intValue();
    }
    EXPECT_EQ(seen, 6);
    for (id object : static_cast<NSArray*>(nullptr)) FAIL() << object;
}

struct Walk {
    const char* name;
    std::function<void()> walk;
    Object* collection;
};

TEST_F(NSEnumeratorTest, NoticesThatTheCollectionChanged) {
    NSMutableArray* array = NSMutableArray::arrayWithArray(numbers({1, 2, 3}));
    NSMutableSet* set = NSMutableSet::setWithArray(array);
    NSCountedSet* counted = NSCountedSet::setWithArray(array);
    NSMutableDictionary* dictionary = NSMutableDictionary::dictionaryWithObjects_forKeys(array, array);
    auto walkOver = [](NSEnumerator* enumerator, std::function<void()> change) {
        while (enumerator->nextObject()) change();
    };
    auto shrink = [&] { dictionary->removeObjectForKey(num(1)); };
    const Walk walks[] = {
        {"array",
         [&] {
             for (id o : array) array->removeObject(o);
         },
         array},
        {"backwards", [&] { walkOver(array->reverseObjectEnumerator(), [&] { array->addObject(num(8)); }); },
         array},
        {"set",
         [&] {
             for (id o : set) set->removeObject(o);
         },
         set},
        {"set enumerator", [&] { walkOver(set->objectEnumerator(), [&] { set->addObject(num(8)); }); }, set},
        {"counted",
         [&] {
             for (id o : counted) counted->removeObject(o);
         },
         counted},
        {"keys", [&] { walkOver(dictionary->keyEnumerator(), shrink); }, dictionary},
        {"entries",
         [&] {
             for (auto [k, v] : dictionary) dictionary->setObject_forKey(k, Pebble::create(7).autorelease());
             (void)0;
         },
         dictionary},
        {"searching",
         [&] {
             auto pebble = Pebble::create(1);
             pebble->whenCompared = [&] { array->removeAllObjects(); };
             array->insertObject_atIndex(pebble, 0);
             array->indexOfObject(num(100));
         },
         array},
    };
    for (const Walk& walk : walks) {
        char address[32];
        std::snprintf(address, sizeof address, "%p", static_cast<void*>(walk.collection));
        EXPECT_EQ(reasonOf(NSGenericException, walk.walk),
                  std::string("Collection <") + walk.collection->isa()->name() + ": " + address +
                      "> was mutated while being enumerated.")
            << walk.name;
    }
}

TEST_F(NSEnumeratorTest, AnotherObjectInAPlaceIsNoChangeOfTheWalk) {
    NSMutableArray* array = NSMutableArray::arrayWithArray(numbers({1, 2, 3}));
    NSUInteger index = 0;
    for (id object : array)
        array->replaceObjectAtIndex_withObject(index++, num(cast<NSNumber>(object)->intValue() * 2));
    EXPECT_EQ(listing(array), "2 4 6");
    NSMutableDictionary* dictionary = NSMutableDictionary::dictionaryWithObjects_forKeys(array, array);
    for (auto [key, object] : dictionary) dictionary->setObject_forKey(u"x"_ns, key);
    EXPECT_EQ(listing(dictionary->allValues()), "x x x");
    for (id object : array) {
        if (object == num(6)) break;
        if (object == num(4)) {
            array->removeObject(object);
            break;
        }
    }
    EXPECT_EQ(listing(array), "2 6");
}

}  // namespace
}  // namespace pelvor
