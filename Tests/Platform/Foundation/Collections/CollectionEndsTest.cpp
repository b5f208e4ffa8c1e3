// SPDX-License-Identifier: Apache-2.0
// Tests of collections that the ends of their objects use.
#include "Foundation/NSCountedSet.h"
#include "Platform/Foundation/Pebble.h"

namespace {

void add(NSMutableDictionary* all, id object) { all->setObject_forKey(object, object); }
void add(auto* all, id object) { all->addObject(object); }
void remove(NSMutableDictionary* all, id key) { all->removeObjectForKey(key); }
void remove(auto* all, id object) { all->removeObject(object); }
void setToNothing(NSMutableArray* all) { all->setArray(nullptr); }
void setToNothing(NSMutableDictionary* all) { all->setDictionary(nullptr); }
void setToNothing(auto* all) { all->setSet(nullptr); }
int walk(auto* all) {
    int seen = 0;
    for ([[maybe_unused]] auto entry : all) ++seen;
    return seen;
}

// As the object ends, it walks over the collection, takes another one out and adds one.
void addRestlessPebble(auto* all, int number) {
    auto pebble = Pebble::create(number);
    pebble->whenDestroyed = [all, number] {
        walk(all);
        remove(all, Pebble::create(number + 1).get());
        add(all, num(100 + number));
    };
    add(all, pebble);
}

template <class Collection>
class CollectionEnds : public ::testing::Test {};
using Kinds = ::testing::Types<NSMutableArray, NSMutableSet, NSCountedSet, NSMutableDictionary>;
TYPED_TEST_SUITE(CollectionEnds, Kinds);

TYPED_TEST(CollectionEnds, TheEndOfAnObjectMayUseItsCollection) {
    using Owned = Retained<TypeParam>;
    const std::pair<const char*, void (*)(Owned&)> actions[] = {
        {"one is removed", [](Owned& all) { remove(all.get(), Pebble::create(0).get()); }},
        {"all are removed", [](Owned& all) { all->removeAllObjects(); }},
        {"the contents are set", [](Owned& all) { setToNothing(all.get()); }},
        {"the collection ends", [](Owned& all) { all = nullptr; }},
    };
    for (const auto& [name, act] : actions)
        expectPebblesBalance([&, act = act, name = name] {
            Owned all = TypeParam::init();
            for (int number = 0; number < 20; ++number) addRestlessPebble(all.get(), number);
            act(all);
            EXPECT_TRUE(!all || walk(all.get()) == 20) << name;
        });
}

TEST(CollectionEndsByReplacing, TheEndOfAnObjectMayUseItsCollection) {
    expectPebblesBalance([] {
        auto array = NSMutableArray::init();
        auto dictionary = NSMutableDictionary::init();
        for (int number = 0; number < 6; ++number) addRestlessPebble(array.get(), number);
        array->replaceObjectAtIndex_withObject(2, num(1));
        EXPECT_EQ(listing(array), "0 1 1 105 104 103 102");
        array->replaceObjectsInRange_withObjectsFromArray({0, 1}, numbers({7, 8}));
        EXPECT_EQ(listing(array), "7 8 1 105 104 103 102 101 100");
        auto value = Pebble::create(1);
        value->whenDestroyed = [&] { dictionary->removeAllObjects(); };
        dictionary->setObject_forKey(value, u"a"_ns);
        value = nullptr;
        dictionary->setObject_forKey(num(3), u"a"_ns);
        EXPECT_EQ(dictionary->count(), 0u);
    });
}

}  // namespace
