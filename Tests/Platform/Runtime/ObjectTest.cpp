// SPDX-License-Identifier: Apache-2.0
#include "Runtime/Object.h"

#include "Creatures.h"

namespace {

static_assert(!std::is_convertible_v<Animal*, Retained<Animal>>, "a bare pointer must say what it means");
static_assert(!std::is_convertible_v<Retained<Animal>&&, Animal*>, "a temporary is not borrowed silently");
static_assert(!std::is_convertible_v<Retained<Object>, Retained<Animal>>);
static_assert(std::is_convertible_v<Retained<Dog>, Retained<Animal>>);
static_assert(!std::is_copy_constructible_v<Animal> && !std::is_default_constructible_v<Animal>);
static_assert(sizeof(Object) <= 24);

TEST(ObjectTest, AReferenceIsStoredBeforeTheOldOneGoes) {
    static Retained<Object> slot;
    journal().clear();
    slot = Counted::initWithName("old");
    Object* old = slot;
    slot = Counted::initWithName("new");
    EXPECT_NE(slot.get(), old);
    EXPECT_EQ(joined(journal()), "last old, ~old");
    slot = nullptr;
    EXPECT_EQ(joined(journal()), "last old, ~old, last new, ~new");
    // Outside any pool objects go with their thread.
    journal().clear();
    std::thread([] {
        Counted::initWithName("loose").autorelease();
        EXPECT_TRUE(journal().empty());
    }).join();
    EXPECT_EQ(joined(journal()), "last loose, ~loose");
}

TEST(ObjectTest, CopiesMovesAndSelfAssignmentBalance) {
    auto animal = Animal::initWithLegs(4);
    {
        Retained<Animal> copy = animal;
        Retained<Object> wider = copy;
        EXPECT_EQ(animal->retainCount(), 3u);
        Retained<Object> moved = std::move(wider);
        EXPECT_EQ(animal->retainCount(), 3u);
        Retained<Object>& alias = moved;
        moved = alias;
        EXPECT_EQ(animal->retainCount(), 3u);
    }
    EXPECT_EQ(animal->retainCount(), 1u);
    Animal* leaked = animal.leak();
    EXPECT_FALSE(animal);
    EXPECT_EQ(Retained<Animal>::adopting(leaked)->retainCount(), 1u);
}

TEST(ObjectTest, ARecycledObjectOutlivesItsLastRelease) {
    journal().clear();
    Counted* counted = Counted::initWithName("a").leak();
    counted->lives = 4;
    counted->retain();
    send(counted, "release"_sel);
    EXPECT_EQ(joined(journal()), "");
    send(counted, "release"_sel);
    AutoreleasePool pool;
    counted->autorelease();
    pool.drain();
    (void)Retained<Object>::adopting(counted);
    EXPECT_EQ(joined(journal()), "last a, last a, last a");
    EXPECT_EQ(counted->retainCount(), 1u);
    counted->release();
    EXPECT_EQ(journal().back(), "~a");
}

TEST(ObjectTest, CountsFromManyThreads) {
    auto animal = Animal::initWithLegs(4);
    onThreads(8, [&](int) {
        for (int i = 0; i < 1000; ++i) (void)Retained<Animal>::retaining(animal);
    });
    EXPECT_EQ(animal->retainCount(), 1u);
}

TEST(AutoreleasePoolTest, ReleasesItsObjectsInOrderAtTheEndOfItsScope) {
    journal().clear();
    {
        AutoreleasePool outer;
        Counted::initWithName("outer").autorelease();
        {
            AutoreleasePool inner;
            for (const char* name : {"first", "second"}) Counted::initWithName(name).autorelease();
        }
        EXPECT_EQ(joined(journal()), "last first, ~first, last second, ~second");
        outer.drain();
        EXPECT_EQ(journal().back(), "~outer");
        Counted::initWithName("again").autorelease();
    }
    EXPECT_EQ(journal().back(), "~again");
}

// Autoreleases another object while it goes.
class Heir : public NSObject {
    PELVOR_CLASS(Heir, NSObject);

  public:
    int generations = 0;

  protected:
    ~Heir() {
        note("heir " + std::to_string(generations));
        AutoreleasePool nested;
        Counted::initWithName("nested").autorelease();
        if (generations == 0) return;
        auto next = make<Heir>();
        next->generations = generations - 1;
        next->retain()->autorelease();
    }
};
PELVOR_DEFINE_CLASS(Heir, creatureLibrary) {}

TEST(AutoreleasePoolTest, WhatIsAutoreleasedDuringADrainIsReleasedToo) {
    std::size_t before = AutoreleasePool::pendingCount();
    journal().clear();
    {
        AutoreleasePool pool;
        auto heir = make<Heir>();
        heir->generations = 3;
        for (int i = 0; i < 5000; ++i) heir->retain()->autorelease();
        std::move(heir).autorelease();
    }
    EXPECT_EQ(AutoreleasePool::pendingCount(), before);
    EXPECT_EQ(std::count(journal().begin(), journal().end(), "heir 0"), 1);
    EXPECT_EQ(std::count(journal().begin(), journal().end(), "~nested"), 4);
}

}  // namespace
