// SPDX-License-Identifier: Apache-2.0
// Tests of dictionaries, immutable and mutable.
#include "Foundation/NSDictionary.h"

#include "Platform/Foundation/Messages.h"

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

TEST(NSDictionaryTest, IsMadeInManyWaysAndComparedByContent) {
    NSDictionary* expected = NSDictionary::of({{num(1), u"a"_ns}, {num(2), u"b"_ns}});
    NSArray* objects = NSArray::of({u"a"_ns, u"b"_ns});
    NSDictionary* mutableOne = NSMutableDictionary::dictionaryWithObjects_forKeys(objects, numbers({1, 2}));
    for (NSDictionary* dictionary : {NSDictionary::dictionaryWithObjects_forKeys(objects, numbers({1, 2})),
                                     mutableOne, NSDictionary::dictionaryWithDictionary(mutableOne)}) {
        EXPECT_TRUE(dictionary->isEqual(expected)) << dictionary;
        EXPECT_EQ(dictionary->hash(), expected->hash());
    }
    EXPECT_EQ(listing(expected->allKeysForObject(u"b"_ns)), "2");
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
    expectSteps(
        dictionary,
        {"setObject:forKey: '9 'a -> a b: 9 2", "setValue:forKey: '3 'c -> a b c: 9 2 3",
         "setValue:forKey: 0 'b -> a c: 9 3", "removeObjectForKey: 'zz -> a c: 9 3",
         "removeObjectForKey: 0 -> a c: 9 3", "addEntriesFromDictionary: {c=4;d=5;} -> a c d: 9 4 5",
         "addEntriesFromDictionary: . -> a c d: 9 4 5", "removeObjectsForKeys: (a,c,x) -> d: 5",
         "setDictionary: {d=6;} -> d: 6", "setDictionary: . -> d: 6", "setDictionary: 0 -> : "},
        [](NSDictionary* each) { return listing(each->allKeys()) + ": " + listing(each->allValues()); });
}

TEST(NSDictionaryTest, CopiesItsKeysWhichMayUseIt) {
    auto key = NSMutableString::initWithString(u"key"_ns);
    auto dictionary = NSMutableDictionary::init();
    dictionary->setObject_forKey(num(1), key);
    key->appendString(u"s"_ns);
    EXPECT_EQ(dictionary->objectForKey(u"key"_ns), num(1));
    EXPECT_EQ(dictionary->objectForKey(key), nullptr);
    dictionary->setObject_forKey(num(2), NSArray::classObject());
    EXPECT_EQ(dictionary->objectForKey(NSArray::classObject()), num(2));
    dictionary->removeAllObjects();
    auto pebble = Pebble::create(1);
    // Copying a key puts an entry of the same key in.
    pebble->whenCopied = [&] {
        pebble->whenCopied = nullptr;
        dictionary->setObject_forKey(num(10), pebble);
    };
    dictionary->setObject_forKey(num(20), pebble);
    EXPECT_EQ(shown(dictionary->count(), dictionary->objectForKey(pebble)), "1 20");
}

// A dictionary beside a plain list, with keys whose hashes collide in different ways.
class AgainstAModel {
  public:
    AgainstAModel(unsigned seed, std::uintptr_t hashes) : _random(seed) {
        for (int i = 0; i < 300; ++i)
            _keys.push_back(Pebble::create(i, static_cast<std::uintptr_t>(i) % hashes * 64));
    }
    // So many steps, of which so many out of ten put something in, and then the same content.
    void run(int steps, unsigned addingOutOfTen) {
        for (int i = 0; i < steps; ++i) step(addingOutOfTen);
        AutoreleasePool pool;
        NSDictionary *copy = dictionary->copy().autorelease(), *second = copy->mutableCopy().autorelease();
        for (NSDictionary* each : {static_cast<NSDictionary*>(dictionary), copy, second}) {
            std::vector<std::pair<id, id>> entries;
            for (auto [key, object] : each) entries.emplace_back(key, object);
            ASSERT_EQ(entries, model);
        }
    }

    Retained<NSMutableDictionary> dictionary = NSMutableDictionary::init();
    std::vector<std::pair<id, id>> model;

  private:
    void step(unsigned addingOutOfTen) {
        Pebble *key = _keys[_random() % _keys.size()], *object = _keys[_random() % _keys.size()];
        auto entry = std::ranges::find(model, id(key), &std::pair<id, id>::first);
        ASSERT_EQ(dictionary->objectForKey(key), entry == model.end() ? nullptr : entry->second);
        if (_random() % 10 >= addingOutOfTen) {
            dictionary->removeObjectForKey(key);
            if (entry != model.end()) model.erase(entry);
        } else {
            dictionary->setObject_forKey(object, key);
            entry == model.end() ? void(model.emplace_back(key, object)) : void(entry->second = object);
        }
        ASSERT_EQ(dictionary->count(), model.size());
    }

    std::mt19937 _random;
    std::vector<Retained<Pebble>> _keys;
};

TEST(NSDictionaryTest, DoesWhatAPlainListDoes) {
    for (std::uintptr_t hashes : {1, 7, 300})
        for (unsigned seed = 0; seed < 5 && !HasFatalFailure(); ++seed) {
            SCOPED_TRACE(::testing::Message() << hashes << " hashes, seed " << seed);
            AgainstAModel both(seed, hashes);
            for (unsigned phase : {9u, 5u, 1u, 8u, 0u, 9u}) both.run(400, phase);
            both.dictionary->removeAllObjects();
            both.model.clear();
            both.run(50, 9);
        }
}

TEST(NSDictionaryTest, TakesFirstOutInTurnWithoutSlowingDown) {
    auto dictionary = NSMutableDictionary::init();
    for (int i = 0; i < 20000; ++i) dictionary->setObject_forKey(num(i), num(i));
    // A table that walked over the holes each time would need 10^8 steps and more.
    for (int i = 0; i < 20000; ++i) {
        AutoreleasePool pool;
        id first = dictionary->keyEnumerator()->nextObject();
        ASSERT_TRUE(first->isEqual(num(i)));
        dictionary->removeObjectForKey(first);
    }
}

TEST(NSDictionaryTest, LookUpSurvivesAComparisonThatChangesIt) {
    for (int others : {2, 40}) {
        auto dictionary = NSMutableDictionary::init();
        for (int i = 0; i < others; ++i)
            dictionary->setObject_forKey(num(i), Pebble::create(i, 5).autorelease());
        auto probe = Pebble::create(others - 1, 5);
        bool isFirst = true;
        probe->whenCompared = [&] {
            if (std::exchange(isFirst, false)) dictionary->removeAllObjects();
        };
        EXPECT_EQ(dictionary->objectForKey(probe), nullptr);
    }
}

}  // namespace
