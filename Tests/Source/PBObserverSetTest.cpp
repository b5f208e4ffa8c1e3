// SPDX-License-Identifier: Apache-2.0
#include "PBObserverSet.h"

#include "PBWeakReference.h"
#include "Prelude.h"

namespace {

// Calls what it was given.
class PBTestObserver : public NSObject {
    PELVOR_CLASS(PBTestObserver, NSObject);

  public:
    void note(id first, id second, id third) {
        heard += shown(first, second, third) + " ";
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
};

constinit Library observerSetTestLibrary{"ObserverSetTest", {}, kClassesOf<PBTestObserver>, {}};
PELVOR_DEFINE_CLASS(PBTestObserver, observerSetTestLibrary) {
    methods.instanceAs<"note:and:and:", &PBTestObserver::note>();
    methods.instanceAs<"note:", &PBTestObserver::noteOne>();
    methods.instance<"act", &PBTestObserver::act>();
}

struct PBObserverSetTest : ::testing::Test {
    PBObserverSetTest() { fill(); }
    void fill() {
        set = PBObserverSet::init();
        for (auto& observer : observers) {
            observer = make<PBTestObserver>();
            set->addObserver(observer);
        }
    }
    // How often the observers were called; "-" for those that are gone.
    std::string calls() {
        std::string counts;
        for (auto& observer : observers) counts += observer ? std::to_string(observer->calls) : "-";
        return counts;
    }

    Retained<PBObserverSet> set;
    Retained<PBTestObserver> observers[4];
};

TEST_F(PBObserverSetTest, HoldsEachObserverOnceAndDoesNotKeepIt) {
    set->addObserver(observers[0]);
    EXPECT_EQ(set->count(), 4u);
    EXPECT_EQ(observers[0]->retainCount(), 1u);
    set->removeObserver(observers[0]);
    EXPECT_FALSE(set->containsObserver(observers[0]));
    EXPECT_TRUE(set->containsObserver(observers[1]));
    for (int i : {1, 2}) set->removeObserver(observers[i]);
    EXPECT_THAT(shown(set.get()),
                AllOf(StartsWith("PBObserverSet {\n\tPBWeakReference<0x"), EndsWith(">\n}")));
    set->invalidate();
    set->addObserver(observers[0]);
    set->makeObserversPerformSelector("act"_sel);
    EXPECT_EQ(set->count(), 0u);
    EXPECT_FALSE(set->containsObserver(observers[3]));
    EXPECT_EQ(shown(set.get()), "PBObserverSet {\n}");
    EXPECT_EQ(calls(), "0000");
}

TEST_F(PBObserverSetTest, SendsAsManyObjectsAsTheMessageTakes) {
    auto deaf = make<NSObject>();
    for (id observer : {id(deaf), id()}) set->addObserver(observer);
    set->makeObserversPerformSelector_withObject_withObject_withObject("note:and:and:"_sel, u"a"_ns, nullptr,
                                                                       u"c"_ns);
    set->makeObserversPerformSelector_withObject_withObject("note:"_sel, u"d"_ns, u"e"_ns);
    set->makeObserversPerformSelector_withObject("act"_sel, u"f"_ns);
    for (auto& observer : observers) EXPECT_EQ(observer->heard, "a (null) c d (null) (null) ");
    EXPECT_EQ(calls(), "3333");
}

TEST_F(PBObserverSetTest, ObserversChangeTheSetInTheMiddleOfABroadcast) {
    auto late = make<PBTestObserver>();
    // The action is of the second.
    auto expectCalls = [&](const char* expected, const char* situation,
                           std::function<void(PBTestObserver*)> action) {
        fill();
        observers[1]->action = action;
        set->makeObserversPerformSelector("act"_sel);
        EXPECT_EQ(calls(), expected) << situation;
        EXPECT_EQ(late->calls, 0) << situation;
    };
    auto destroy = [this](int number) {
        set->removeObserver(observers[number]);
        observers[number] = nullptr;
    };
    expectCalls("1111", "removes itself", [&](id self) { set->removeObserver(self); });
    expectCalls("1101", "removes one to come", [&](id) { set->removeObserver(observers[2]); });
    expectCalls("1111", "removes one gone by", [&](id) { set->removeObserver(observers[0]); });
    expectCalls("1111", "adds one", [&](id) { set->addObserver(late); });
    expectCalls("1100", "invalidates the set", [&](id) { set->invalidate(); });
    expectCalls("111-", "destroys one to come", [&](id) { destroy(3); });
    expectCalls("1-11", "destroys itself", [&](PBTestObserver* self) {
        destroy(1);
        EXPECT_EQ(self->retainCount(), 1u);
    });
    expectCalls("1111", "drops the set", [&](id) { set = nullptr; });
    expectCalls("2222", "broadcasts once more", [&, times = 0](id) mutable {
        if (++times == 1) set->makeObserversPerformSelector("act"_sel);
    });
    expectCalls("2202", "removes one in a broadcast of its own", [&, times = 0](id) mutable {
        if (++times == 1)
            set->makeObserversPerformSelector("act"_sel);
        else
            set->removeObserver(observers[2]);
    });
}

TEST_F(PBObserverSetTest, WhatAnObserverRaisesLeavesTheBroadcast) {
    observers[1]->action = [](id) { throw NSException("PBTestException", "as asked"); };
    EXPECT_THROW(set->makeObserversPerformSelector("act"_sel), NSException);
    EXPECT_EQ(calls(), "1100");
    for (auto& observer : observers) EXPECT_EQ(observer->retainCount(), 1u);
    observers[1]->action = nullptr;
    set->makeObserversPerformSelector("act"_sel);
    EXPECT_EQ(calls(), "2211");
}

}  // namespace
