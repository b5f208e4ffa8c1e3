// SPDX-License-Identifier: Apache-2.0
#include "PBObserverSet.h"

#include "PBWeakReference.h"
#include "Prelude.h"
#include "RandomSteps.h"

namespace pelvor::testing {
namespace {

extern Library observerSetTestLibrary;

// Calls what it was given.
class PBTestObserver : public NSObject {
    PELVOR_CLASS(PBTestObserver, NSObject);

  public:
    void note(id first, id second, id third) {
        for (id object : {first, second, third}) heard += object ? object->description()->toUTF8() : "-";
        act();
    }
    void noteOne(id first) { note(first, nullptr, nullptr); }
    void act() {
        ++calls;
        if (action) action(this);
    }

    int calls = 0;
    std::string heard;
    std::function<void(PBTestObserver*)> action;

  protected:
    PBTestObserver() = default;
    ~PBTestObserver() = default;
};

PELVOR_DEFINE_CLASS(PBTestObserver, observerSetTestLibrary) {
    methods.instanceAs<"note:and:and:", &PBTestObserver::note>();
    methods.instanceAs<"note:", &PBTestObserver::noteOne>();
    methods.instance<"act", &PBTestObserver::act>();
}
constexpr Class* kClasses[] = {&PBTestObserver::classRecord};
constinit Library observerSetTestLibrary{"ObserverSetTest", {}, kClasses, {}};

class PBObserverSetTest : public ::testing::Test {
  protected:
    PBObserverSetTest() {
        for (auto& observer : observers) {
            observer = make<PBTestObserver>();
            set->addObserver(observer);
        }
    }
    std::vector<int> calls() {
        std::vector<int> counts;
        for (auto& observer : observers) counts.push_back(observer ? observer->calls : -1);
        return counts;
    }

    Retained<PBObserverSet> set = PBObserverSet::init();
    Retained<PBTestObserver> observers[4];
};

using Calls = std::vector<int>;

TEST_F(PBObserverSetTest, HoldsEachObserverOnceAndDoesNotKeepIt) {
    set->addObserver(observers[0]);
    EXPECT_EQ(set->count(), 4u);
    EXPECT_EQ(observers[0]->retainCount(), 1u);
    set->removeObserver(observers[0]);
    EXPECT_FALSE(set->containsObserver(observers[0]));
    EXPECT_TRUE(set->containsObserver(observers[1]));
    for (int i : {1, 2}) set->removeObserver(observers[i]);
    EXPECT_TRUE(set->description()->hasPrefix(u"PBObserverSet {\n\tPBWeakReference<0x"_ns));
    EXPECT_TRUE(set->description()->hasSuffix(u">\n}"_ns));
    set->invalidate();
    set->addObserver(observers[0]);
    set->makeObserversPerformSelector("act"_sel);
    EXPECT_EQ(set->count(), 0u);
    EXPECT_FALSE(set->containsObserver(observers[3]));
    EXPECT_EQ(set->description()->toUTF8(), "PBObserverSet {\n}");
    EXPECT_EQ(calls(), (Calls{0, 0, 0, 0}));
}

TEST_F(PBObserverSetTest, SendsAsManyObjectsAsTheMessageTakes) {
    auto deaf = NSObject::init();
    for (id observer : {id(deaf), id()}) set->addObserver(observer);
    set->makeObserversPerformSelector_withObject_withObject_withObject("note:and:and:"_sel, u"a"_ns, nullptr,
                                                                       u"c"_ns);
    set->makeObserversPerformSelector_withObject_withObject("note:"_sel, u"d"_ns, u"e"_ns);
    set->makeObserversPerformSelector_withObject("act"_sel, u"f"_ns);
    for (auto& observer : observers) EXPECT_EQ(observer->heard, "a-cd--");
}

TEST_F(PBObserverSetTest, ObserversChangeTheSetInTheMiddleOfABroadcast) {
    auto late = make<PBTestObserver>();
    const struct {
        const char* name;
        std::function<void(PBTestObserver*)> action;  // of the second
        Calls expected;
    } cases[] = {
        {"removes itself", [&](PBTestObserver* self) { set->removeObserver(self); }, {1, 1, 1, 1}},
        {"removes one to come", [&](id) { set->removeObserver(observers[2]); }, {1, 1, 0, 1}},
        {"removes one gone by", [&](id) { set->removeObserver(observers[0]); }, {1, 1, 1, 1}},
        {"adds one", [&](id) { set->addObserver(late); }, {1, 1, 1, 1}},
        {"invalidates the set", [&](id) { set->invalidate(); }, {1, 1, 0, 0}},
        {"destroys one to come",
         [&](id) {
             set->removeObserver(observers[3]);
             observers[3] = nullptr;
         },
         {1, 1, 1, -1}},
        {"destroys itself",
         [&](PBTestObserver* self) {
             set->removeObserver(self);
             observers[1] = nullptr;
             EXPECT_EQ(self->retainCount(), 1u);
         },
         {1, -1, 1, 1}},
        {"drops the set", [&](id) { set = nullptr; }, {1, 1, 1, 1}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        set = PBObserverSet::init();
        for (auto& observer : observers) {
            observer = make<PBTestObserver>();
            set->addObserver(observer);
        }
        observers[1]->action = c.action;
        set->makeObserversPerformSelector("act"_sel);
        EXPECT_EQ(calls(), c.expected);
        EXPECT_EQ(late->calls, 0);
    }
}

TEST_F(PBObserverSetTest, WhatAnObserverRaisesLeavesTheBroadcast) {
    observers[1]->action = [](id) { throw NSException("PBTestException", "as asked"); };
    EXPECT_THROW(set->makeObserversPerformSelector("act"_sel), NSException);
    EXPECT_EQ(calls(), (Calls{1, 1, 0, 0}));
    for (auto& observer : observers) EXPECT_EQ(observer->retainCount(), 1u);
    observers[1]->action = nullptr;
    set->makeObserversPerformSelector("act"_sel);
    EXPECT_EQ(calls(), (Calls{2, 2, 1, 1}));
}

// Observers add, remove, destroy and broadcast at random, also from inside broadcasts. By the model, each
// broadcast calls those that were members at its beginning and still are at their turn, once, in order.
TEST_F(PBObserverSetTest, RandomStepsCallWhomAPlainListCalls) {
    std::mt19937 random(11);
    std::vector<Retained<PBTestObserver>> all(12);
    std::vector<PBTestObserver*> members, present;
    std::size_t turn = 0;
    std::function<void(PBTestObserver*)> action;
    set = PBObserverSet::init();
    auto leave = [&](PBTestObserver* observer) {
        set->removeObserver(observer);
        std::erase(members, observer);
    };
    auto change = [&] {
        auto& observer = all[random() % all.size()];
        switch (random() % 4) {
            case 0:
                if (observer) leave(observer);
                observer = nullptr;
                break;
            case 1:
                if (observer) leave(observer);
                break;
            default:
                if (!observer) {
                    observer = make<PBTestObserver>();
                    observer->action = action;
                }
                if (std::find(members.begin(), members.end(), observer.get()) == members.end())
                    members.push_back(observer);
                set->addObserver(observer);
        }
    };
    auto skipGone = [&] {
        while (turn < present.size() &&
               std::find(members.begin(), members.end(), present[turn]) == members.end())
            ++turn;
    };
    action = [&](PBTestObserver* self) {
        skipGone();
        ASSERT_LT(turn, present.size());
        ASSERT_EQ(present[turn++], self);
        change();
    };
    for (int step = 0, steps = randomSteps(50'000); step < steps; ++step) {
        AutoreleasePool inner;
        change();
        ASSERT_EQ(set->count(), members.size());
        if (step % 5) continue;
        present = members;
        turn = 0;
        set->makeObserversPerformSelector("act"_sel);
        skipGone();
        ASSERT_EQ(turn, present.size());
    }
}

}  // namespace
}  // namespace pelvor::testing
