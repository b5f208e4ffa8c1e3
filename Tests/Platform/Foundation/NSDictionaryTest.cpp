// SPDX-License-Identifier: Apache-2.0
// Tests of dictionaries, immutable and mutable.
#include "Foundation/NSDictionary.h"

#include <gmock/gmock.h>

#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSMutableString.h"
#include "Foundation/NSNull.h"
#include "Platform/Foundation/Pebble.h"
#include "Runtime/Message.h"

namespace pelvor {
namespace {

using testing::listing;
using testing::num;
using testing::numbers;
using testing::Pebble;
using testing::reasonOf;

class NSDictionaryTest : public ::testing::Test {
    AutoreleasePool _pool;
};

TEST_F(NSDictionaryTest, FindsObjectsByKeysInTheOrderOfComing) {
    NSDictionary* ages =
        NSDictionary::of({{u"Berta"_ns, num(7)}, {u"Anna"_ns, num(3)}, {u"Berta"_ns, num(8)}});
    EXPECT_EQ(ages->count(), 2u);
    EXPECT_EQ(ages->objectForKey(u"Berta"_ns), num(8));
    EXPECT_EQ(ages->valueForKey(u"Anna"_ns), num(3));
    EXPECT_EQ(ages->objectForKey(u"Carla"_ns), nullptr);
    EXPECT_EQ(ages->objectForKey(nullptr), nullptr);
    EXPECT_EQ(listing(ages->allKeys()), "Berta Anna");
    EXPECT_EQ(listing(ages->allValues()), "8 3");
    EXPECT_EQ(listing(ages->keyEnumerator()), "Berta Anna");
    EXPECT_EQ(listing(ages->objectEnumerator()), "8 3");
    EXPECT_EQ(listing(ages->keysSortedByValueUsingSelector("compare:"_sel)), "Anna Berta");
    EXPECT_EQ(
        listing(ages->objectsForKeys_notFoundMarker(NSArray::of({u"Anna"_ns, u"Z"_ns}), NSNull::null())),
        "3 <null>");
    std::string text;
    for (auto [name, age] : ages) text += name->description()->toUTF8() + age->description()->toUTF8();
    EXPECT_EQ(text, "Berta8Anna3");
}

TEST_F(NSDictionaryTest, IsMadeInManyWays) {
    NSDictionary* expected = NSDictionary::of({{num(1), u"a"_ns}, {num(2), u"b"_ns}});
    NSArray* objects = NSArray::of({u"a"_ns, u"b"_ns});
    for (NSDictionary* dictionary :
         {NSDictionary::dictionaryWithObjects_forKeys(objects, numbers({1, 2})),
          static_cast<NSDictionary*>(
              NSMutableDictionary::dictionaryWithObjects_forKeys(objects, numbers({1, 2}))),
          NSDictionary::dictionaryWithDictionary(NSMutableDictionary::dictionaryWithDictionary(expected))}) {
        EXPECT_TRUE(dictionary->isEqual(expected)) << dictionary;
        EXPECT_EQ(dictionary->hash(), expected->hash());
    }
    EXPECT_EQ(listing(expected->allKeysForObject(u"b"_ns)), "2");
    EXPECT_EQ(reasonOf(NSInvalidArgumentException,
                       [&] { NSDictionary::dictionaryWithObjects_forKeys(objects, numbers({1})); }),
              "initWithObjects:forKeys: got 2 objects for 1 keys");
    for (auto& action : std::initializer_list<std::function<void()>>{
             [] { NSDictionary::dictionaryWithObject_forKey(nullptr, num(1)); },
             [] { NSDictionary::dictionaryWithObject_forKey(num(1), nullptr); },
             [] {
                 NSDictionary::of({{u"a"_ns, nullptr}});
             },
             [] { NSMutableDictionary::dictionary()->setObject_forKey(num(1), nullptr); },
             [] { NSMutableDictionary::dictionary()->setObject_forKey(nullptr, num(1)); }})
        EXPECT_THAT(reasonOf(NSInvalidArgumentException, action),
                    ::testing::StartsWith("no object was given"));
}

TEST_F(NSDictionaryTest, ComparesByContentWhateverTheOrder) {
    NSDictionary* one = NSDictionary::of({{u"a"_ns, num(1)}, {u"b"_ns, num(2)}});
    NSDictionary* two = NSDictionary::of({{u"b"_ns, NSNumber::numberWithDouble(2)}, {u"a"_ns, num(1)}});
    EXPECT_TRUE(one->isEqual(two));
    EXPECT_EQ(one->hash(), two->hash());
    for (NSDictionary* other : {NSDictionary::of({{u"a"_ns, num(1)}, {u"c"_ns, num(2)}}),
                                NSDictionary::of({{u"a"_ns, num(2)}, {u"b"_ns, num(1)}}),
                                NSDictionary::of({{u"a"_ns, num(1)}}), NSDictionary::dictionary()}) {
        EXPECT_FALSE(one->isEqual(other)) << other;
        EXPECT_NE(one->hash(), other->hash()) << other;
    }
    EXPECT_FALSE(one->isEqualToDictionary(nullptr));
}

TEST_F(NSDictionaryTest, Changes) {
    NSMutableDictionary* dictionary = NSMutableDictionary::of({{u"a"_ns, num(1)}, {u"b"_ns, num(2)}});
    dictionary->setObject_forKey(num(9), u"a"_ns);
    dictionary->setValue_forKey(num(3), u"c"_ns);
    EXPECT_EQ(listing(dictionary->allValues()), "9 2 3");
    dictionary->setValue_forKey(nullptr, u"b"_ns);
    dictionary->removeObjectForKey(u"zz"_ns);
    dictionary->removeObjectForKey(nullptr);
    EXPECT_EQ(listing(dictionary->allKeys()), "a c");
    dictionary->addEntriesFromDictionary(NSDictionary::of({{u"c"_ns, num(4)}, {u"d"_ns, num(5)}}));
    dictionary->addEntriesFromDictionary(dictionary);
    EXPECT_EQ(listing(dictionary->allValues()), "9 4 5");
    dictionary->removeObjectsForKeys(NSArray::of({u"a"_ns, u"c"_ns, u"x"_ns}));
    EXPECT_EQ(listing(dictionary->allKeys()), "d");
    dictionary->setDictionary(dictionary->copy().get());
    EXPECT_EQ(dictionary->count(), 1u);
    dictionary->setDictionary(nullptr);
    EXPECT_EQ(dictionary->count(), 0u);
}

TEST_F(NSDictionaryTest, CopiesItsKeys) {
    auto key = NSMutableString::initWithString(u"key"_ns);
    auto dictionary = NSMutableDictionary::init();
    dictionary->setObject_forKey(num(1), key);
    key->appendString(u"s"_ns);
    EXPECT_EQ(dictionary->objectForKey(u"key"_ns), num(1));
    EXPECT_EQ(dictionary->objectForKey(key), nullptr);
    dictionary->setObject_forKey(num(2), NSArray::classObject());
    EXPECT_EQ(dictionary->objectForKey(NSArray::classObject()), num(2));
    auto plain = NSObject::init();
    EXPECT_THAT(reasonOf(NSInvalidArgumentException, [&] { dictionary->setObject_forKey(num(1), plain); }),
                ::testing::HasSubstr("NSObject"));
    EXPECT_EQ(dictionary->count(), 2u);
}

TEST_F(NSDictionaryTest, BalancesReferencesToKeysAndObjects) {
    int before = Pebble::alive();
    {
        AutoreleasePool pool;
        auto dictionary = NSMutableDictionary::init();
        for (int i = 0; i < 100; ++i)
            dictionary->setObject_forKey(Pebble::create(i).autorelease(),
                                         Pebble::create(i % 30).autorelease());
        for (int i = 0; i < 20; ++i) dictionary->removeObjectForKey(Pebble::create(i).autorelease());
        auto copy = dictionary->copy();
        auto second = copy->mutableCopy();
        dictionary->removeAllObjects();
        EXPECT_EQ(second->count(), 10u);
    }
    EXPECT_EQ(Pebble::alive(), before);
}

TEST_F(NSDictionaryTest, ForeignCodeMayUseTheDictionary) {
    auto dictionary = NSMutableDictionary::init();
    auto key = Pebble::create(1);
    // Copying a key puts an entry of the same key in.
    key->whenCopied = [&] {
        key->whenCopied = nullptr;
        dictionary->setObject_forKey(num(10), key);
    };
    dictionary->setObject_forKey(num(20), key);
    EXPECT_EQ(dictionary->count(), 1u);
    EXPECT_EQ(dictionary->objectForKey(key), num(20));
    // The release of what is replaced and removed looks at the dictionary, and changes it.
    auto value = Pebble::create(2);
    NSUInteger count = 0;
    value->whenDestroyed = [&] {
        count = dictionary->count();
        dictionary->removeAllObjects();
    };
    dictionary->setObject_forKey(value, u"a"_ns);
    value = nullptr;
    dictionary->setObject_forKey(num(3), u"a"_ns);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(dictionary->count(), 0u);
}

TEST_F(NSDictionaryTest, AnswersMessages) {
    auto* dictionary =
        send<id>(NSMutableDictionary::classObject(), "dictionaryWithObject:forKey:"_sel, num(1), num(2));
    send(dictionary, "setObject:forKey:"_sel, u"x"_ns, u"y"_ns);
    EXPECT_EQ(send<id>(dictionary, "objectForKey:"_sel, u"y"_ns), u"x"_ns);
    EXPECT_EQ(send<int>(dictionary, "count"_sel), 2);
}

}  // namespace
}  // namespace pelvor
