// SPDX-License-Identifier: Apache-2.0
// Tests of dictionaries, immutable and mutable.
#include "Foundation/NSDictionary.h"

#include "Platform/Foundation/Pebble.h"

namespace {

TEST(NSDictionaryTest, FindsObjectsByKeysInTheOrderOfComing) {
    NSDictionary* ages =
        NSDictionary::of({{u"Berta"_ns, num(7)}, {u"Anna"_ns, num(3)}, {u"Berta"_ns, num(8)}});
    EXPECT_EQ(shown(ages->objectForKey(u"Berta"_ns), ages->valueForKey(u"Anna"_ns),
                    ages->objectForKey(u"Carla"_ns), ages->objectForKey(nullptr)),
              "8 3 (null) (null)");
    EXPECT_EQ(listing(ages->allKeys()) + listing(ages->allValues()), "Berta Anna8 3");
    EXPECT_EQ(listing(ages->keyEnumerator()) + listing(ages->objectEnumerator()), "Berta Anna8 3");
    EXPECT_EQ(listing(ages->keysSortedByValueUsingSelector("compare:"_sel)), "Anna Berta");
    NSArray* keys = NSArray::of({u"Anna"_ns, u"Z"_ns});
    EXPECT_EQ(listing(ages->objectsForKeys_notFoundMarker(keys, NSNull::null())), "3 <null>");
    std::string text;
    for (auto [name, age] : ages) text += shown(name, age);
    EXPECT_EQ(text, "Berta 8Anna 3");
}

TEST(NSDictionaryTest, IsMadeInManyWays) {
    NSDictionary* expected = NSDictionary::of({{num(1), u"a"_ns}, {num(2), u"b"_ns}});
    NSArray* objects = NSArray::of({u"a"_ns, u"b"_ns});
    NSDictionary* mutableOne = NSMutableDictionary::dictionaryWithObjects_forKeys(objects, numbers({1, 2}));
    for (NSDictionary* dictionary : {NSDictionary::dictionaryWithObjects_forKeys(objects, numbers({1, 2})),
                                     mutableOne, NSDictionary::dictionaryWithDictionary(mutableOne)}) {
        EXPECT_TRUE(dictionary->isEqual(expected)) << dictionary;
        EXPECT_EQ(dictionary->hash(), expected->hash());
    }
    EXPECT_EQ(listing(expected->allKeysForObject(u"b"_ns)), "2");
}

TEST(NSDictionaryTest, ComparesByContentWhateverTheOrder) {
    NSDictionary* one = NSDictionary::of({{u"a"_ns, num(1)}, {u"b"_ns, num(2)}});
    NSDictionary* two = NSDictionary::of({{u"b"_ns, NSNumber::numberWithDouble(2)}, {u"a"_ns, num(1)}});
    EXPECT_TRUE(one->isEqual(two) && one->hash() == two->hash());
    for (NSDictionary* other : {NSDictionary::of({{u"a"_ns, num(1)}, {u"c"_ns, num(2)}}),
                                NSDictionary::of({{u"a"_ns, num(2)}, {u"b"_ns, num(1)}}),
                                NSDictionary::of({{u"a"_ns, num(1)}}), NSDictionary::dictionary()})
        EXPECT_TRUE(!one->isEqual(other) && one->hash() != other->hash()) << other;
    EXPECT_FALSE(one->isEqualToDictionary(nullptr));
}

TEST(NSDictionaryTest, Changes) {
    NSMutableDictionary* dictionary = NSMutableDictionary::of({{u"a"_ns, num(1)}, {u"b"_ns, num(2)}});
    dictionary->setObject_forKey(num(9), u"a"_ns);
    dictionary->setValue_forKey(num(3), u"c"_ns);
    EXPECT_EQ(listing(dictionary->allValues()), "9 2 3");
    dictionary->setValue_forKey(nullptr, u"b"_ns);
    for (NSString* none : {u"zz"_ns, static_cast<NSString*>(nullptr)}) dictionary->removeObjectForKey(none);
    EXPECT_EQ(listing(dictionary->allKeys()), "a c");
    dictionary->addEntriesFromDictionary(NSDictionary::of({{u"c"_ns, num(4)}, {u"d"_ns, num(5)}}));
    dictionary->addEntriesFromDictionary(dictionary);
    EXPECT_EQ(listing(dictionary->allValues()), "9 4 5");
    dictionary->removeObjectsForKeys(NSArray::of({u"a"_ns, u"c"_ns, u"x"_ns}));
    EXPECT_EQ(listing(dictionary->allKeys()), "d");
    dictionary->setDictionary(dictionary->copy().get());
    EXPECT_EQ(listing(dictionary->allKeys()), "d");
    dictionary->setDictionary(nullptr);
    EXPECT_EQ(dictionary->count(), 0u);
}

TEST(NSDictionaryTest, CopiesItsKeys) {
    auto key = NSMutableString::initWithString(u"key"_ns);
    auto dictionary = NSMutableDictionary::init();
    dictionary->setObject_forKey(num(1), key);
    key->appendString(u"s"_ns);
    EXPECT_EQ(dictionary->objectForKey(u"key"_ns), num(1));
    EXPECT_EQ(dictionary->objectForKey(key), nullptr);
    dictionary->setObject_forKey(num(2), NSArray::classObject());
    EXPECT_EQ(dictionary->objectForKey(NSArray::classObject()), num(2));
    auto plain = make<NSObject>();
    EXPECT_THAT(RAISED(dictionary->setObject_forKey(num(1), plain)),
                AllOf(StartsWith(NSInvalidArgumentException), HasSubstr("NSObject")));
    EXPECT_EQ(dictionary->count(), 2u);
}

TEST(NSDictionaryTest, BalancesReferencesToKeysAndObjects) {
    expectPebblesBalance([] {
        auto dictionary = NSMutableDictionary::init();
        for (int i = 0; i < 100; ++i)
            dictionary->setObject_forKey(Pebble::create(i).autorelease(),
                                         Pebble::create(i % 30).autorelease());
        for (int i = 0; i < 20; ++i) dictionary->removeObjectForKey(Pebble::create(i).autorelease());
        auto second = dictionary->copy()->mutableCopy();
        dictionary->removeAllObjects();
        EXPECT_EQ(second->count(), 10u);
    });
}

TEST(NSDictionaryTest, ForeignCodeMayUseTheDictionary) {
    auto dictionary = NSMutableDictionary::init();
    auto key = Pebble::create(1);
    // Copying a key puts an entry of the same key in.
    key->whenCopied = [&] {
        key->whenCopied = nullptr;
        dictionary->setObject_forKey(num(10), key);
    };
    dictionary->setObject_forKey(num(20), key);
    EXPECT_EQ(shown(dictionary->count(), dictionary->objectForKey(key)), "1 20");
}

}  // namespace
