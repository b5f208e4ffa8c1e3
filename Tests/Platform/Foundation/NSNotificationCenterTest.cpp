// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSNotificationCenter.h"

#include <map>

#include "Prelude.h"
#include "RandomSteps.h"

namespace {

/// Posts nothing.
class QuietCenter : public NSNotificationCenter, NSNotificationCenter::HiddenCreators {
    PELVOR_CLASS(QuietCenter, NSNotificationCenter);
};
void dropNamed(NSNotificationCenter*, NSString*, id, NSDictionary*) {}
void drop(NSNotificationCenter*, NSNotification*) {}

extern Library notificationTestLibrary;
PELVOR_DEFINE_CLASS(QuietCenter, notificationTestLibrary) {
    methods.instanceAs<"postNotificationName:object:userInfo:", &dropNamed>();
    methods.instanceAs<"postNotification:", &drop>();
}
constinit Library notificationTestLibrary{"NotificationTest", {}, kClassesOf<QuietCenter>, {}};

class NSNotificationCenterTest : public ::testing::Test {
  protected:
    /// An ear that writes its mark and the name down.
    id ear(std::string mark) {
        return ear([this, mark](id posted) {
            heard.push_back(mark + ":" + shown(static_cast<NSNotification*>(posted)->name()));
        });
    }
    id ear(std::function<void(id)> what) { return ears.emplace_back(Listener::doing(std::move(what))); }
    void add(id ear, NSString* name, id sender = nullptr) {
        center->addObserver_selector_name_object(ear, "hear:"_sel, name, sender);
    }
    std::string post(NSString* name, id sender = nullptr) {
        heard.clear();
        center->postNotificationName_object(name, sender);
        return joined(heard);
    }

    Retained<NSNotificationCenter> center = NSNotificationCenter::init();
    std::vector<Retained<Listener>> ears;
    std::vector<std::string> heard;
    Retained<NSObject> sender = make<NSObject>();
};

TEST_F(NSNotificationCenterTest, NamesAreComparedByTheirTextAsItWasAtRegistration) {
    auto name = NSMutableString::initWithString(u"opened"_ns);
    add(ear("a"), name);
    name->appendString(u" twice"_ns);
    for (NSString* opened : {u"opened"_ns, NSString::ofUTF8("opened")}) EXPECT_EQ(post(opened), "a:opened");
    EXPECT_EQ(post(name), "");
}

TEST_F(NSNotificationCenterTest, WhatIsPostedIsWhatIsHeard) {
    auto* info = NSDictionary::dictionaryWithObject_forKey(u"here"_ns, u"where"_ns);
    auto* whole = NSNotification::notificationWithName_object(u"opened"_ns, sender);
    auto keeping = make<Listener>();
    center->postNotification(whole);  // nobody listens yet
    add(keeping, u"opened"_ns);
    center->postNotificationName_object_userInfo(u"opened"_ns, sender, info);
    center->postNotificationName_object(u"opened"_ns, keeping);  // a kept one is not used again
    center->postNotification(whole);
    const auto& kept = keeping->heard;
    EXPECT_TRUE(kept[0]->object() == sender && kept[0]->userInfo() == info);
    EXPECT_TRUE(kept[1]->object() == keeping && !kept[1]->userInfo() && kept[2] == whole);
    keeping->takeCount();  // the listener is the sender of one that it keeps
}

TEST_F(NSNotificationCenterTest, APostKeepsItsSenderAliveUntilAllHaveHeard) {
    bool isAlive = true;
    auto last = Listener::doing([guard = atEnd([&] { isAlive = false; })](id) {});
    std::vector<bool> seen;
    auto look = [&](id) {
        last = nullptr;
        seen.push_back(isAlive);
    };
    for (int i = 0; i < 2; ++i) add(ear(look), u"closing"_ns);
    center->postNotificationName_object(u"closing"_ns, last);
    EXPECT_THAT(seen, ElementsAre(true, true));
    EXPECT_FALSE(isAlive);
}

TEST_F(NSNotificationCenterTest, AnObserverMayEndTheCentreAndTheOthersAreStillCalled) {
    add(ear([&](id) { center = nullptr; }), u"opened"_ns);
    add(ear("after"), u"opened"_ns);
    EXPECT_EQ(post(u"opened"_ns), "after:opened");
}

TEST_F(NSNotificationCenterTest, WhatAnObserverRaisesReachesThePosterAndHarmsNothing) {
    id bad = ear([](id) { throw NSException("Bad", "as ever"); });
    for (id each : {ear("before"), bad, ear("after")}) add(each, u"opened"_ns);
    EXPECT_EQ(RAISED(post(u"opened"_ns)), "Bad: as ever");
    EXPECT_EQ(joined(heard), "before:opened");
    center->removeObserver(bad);
    EXPECT_EQ(post(u"opened"_ns), "before:opened, after:opened");
    add(sender, u"opened"_ns);
    EXPECT_THROW(post(u"opened"_ns), NSException) << "it does not have the method";
    center->removeObserver(nullptr);
}

TEST_F(NSNotificationCenterTest, EveryFormOfPostingFindsTheMethodsOfANewClass) {
    Class* const plain = NSNotificationCenter::classObject();
    add(ear("a"), nullptr);
    for (Class* cls : {plain, QuietCenter::classObject(), plain}) {
        Instances::setClass(center, cls);
        auto* whole = NSNotification::notificationWithName_object(u"x"_ns, nullptr);
        post(u"x"_ns);
        center->postNotificationName_object_userInfo(u"x"_ns, nullptr, nullptr);
        center->postNotification(whole);
        send(center, "postNotificationName:object:"_sel, u"x"_ns, nullptr);
        send(center, "postNotificationName:object:userInfo:"_sel, u"x"_ns, nullptr, nullptr);
        send(center, "postNotification:"_sel, whole);
        EXPECT_EQ(heard.size(), cls == plain ? 6u : 0u);
    }
}

TEST(NSNotificationCenterDeathTest, WhatPosesAsTheCentreIsTheDefaultCentre) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    auto pose = [] {
        QuietCenter::classObject()->poseAsClass(NSNotificationCenter::classObject());
        std::exit(NSNotificationCenter::defaultCenter()->isa() == QuietCenter::classObject() ? 0 : 1);
    };
    EXPECT_EXIT(pose(), ::testing::ExitedWithCode(0), "");
}

// MARK: Many steps

// A centre written down plainly, which is told what the real one is told and checks its calls.
class CenterModel {
  public:
    void run(int steps) {
        for (int i = 0; i < steps; ++i) step();
        while (!_ears.empty()) destroy(_ears.front());
    }

  private:
    struct Entry {
        id ear;
        int name, sender;  // 0: any
    };

    int random(int below) { return static_cast<int>(_random() % static_cast<unsigned>(below)); }
    static NSString* name(int index) {
        static constexpr NSString* names[] = {nullptr, u"one"_ns, u"two"_ns};
        return index < 3 ? names[index] : NSString::ofUTF8("three");  // a new string each time
    }

    void step() {
        AutoreleasePool pool;
        const int what = random(100);
        if (_ears.size() < 2 || (what < 12 && _ears.size() < 12)) return addEar();
        const id ear = _ears[_random() % _ears.size()];
        if (what < 20)
            destroy(ear);
        else if (what < 50)
            add(ear, random(4), random(3));
        else if (what < 70)
            remove(ear, random(4), random(3));
        else
            post(1 + random(3), random(3));
    }

    void addEar() {
        auto& ear = _ears.emplace_back(make<Listener>());
        ear->task = [this, self = ear.get()](id) { hear(self); };
    }

    void add(id ear, int nameIndex, int senderIndex) {
        _center->addObserver_selector_name_object(ear, "hear:"_sel, name(nameIndex), _senders[senderIndex]);
        _entries[_nextNumber++] = {ear, nameIndex, senderIndex};
    }

    void remove(id ear, int nameIndex, int senderIndex) {
        _center->removeObserver_name_object(ear, name(nameIndex), _senders[senderIndex]);
        std::erase_if(_entries, [&](const auto& each) {
            const Entry& entry = each.second;
            return entry.ear == ear && (!nameIndex || entry.name == nameIndex) &&
                   (!senderIndex || entry.sender == senderIndex);
        });
    }

    void destroy(id ear) {
        remove(ear, 0, 0);
        std::erase_if(_ears, [&](const auto& each) { return each == ear; });
    }

    void post(int nameIndex, int senderIndex) {
        if (_deliveries.size() > 3) return;
        auto& audience = _deliveries.emplace_back();
        for (const auto& [number, entry] : _entries)
            if ((!entry.name || entry.name == nameIndex) && (!entry.sender || entry.sender == senderIndex))
                audience.push_back(number);
        _center->postNotificationName_object(name(nameIndex), _senders[senderIndex]);
        EXPECT_EQ(nextOfAudience(), nullptr) << "somebody was left out";
        _deliveries.pop_back();
    }

    id nextOfAudience() {
        auto& audience = _deliveries.back();
        std::erase_if(audience, [this](int number) { return !_entries.contains(number); });
        if (audience.empty()) return nullptr;
        const id next = _entries[audience.front()].ear;
        audience.erase(audience.begin());
        return next;
    }

    void hear(id ear) {
        ASSERT_EQ(nextOfAudience(), ear);
        for (int i = random(4); i > 0; --i) step();
    }

    std::mt19937 _random{20040712};
    Retained<NSNotificationCenter> _center = NSNotificationCenter::init();
    std::vector<Retained<Listener>> _ears;
    Retained<NSObject> _senders[3] = {nullptr, make<NSObject>(), make<NSObject>()};
    int _nextNumber = 0;
    std::map<int, Entry> _entries;
    std::vector<std::vector<int>> _deliveries;  // the entries that have still to hear of each
};

TEST(NSNotificationCenterModelTest, RandomStepsAlsoInsideDeliveriesAgreeWithAModel) {
    CenterModel().run(randomSteps(20'000));
}

TEST_F(NSNotificationCenterTest, ThreadsPostWhileOthersComeAndGo) {
    constexpr int kRounds = 2'000;
    std::atomic<int> steady{0}, passing{0};
    add(ear([&](id) { ++steady; }), u"tick"_ns);
    id guest = ear([&](id) { ++passing; });
    onThreads(4, [&](int number) {
        for (int i = 0; i < kRounds; ++i) {
            center->postNotificationName_object(u"tick"_ns, number % 2 ? id(sender) : id());
            if (number == 0) add(guest, i % 3 ? u"tick"_ns : nullptr, i % 2 ? id(sender) : id());
            if (number == 0 && i % 5 == 0) center->removeObserver(guest);
        }
    });
    EXPECT_EQ(steady, 4 * kRounds);
    EXPECT_GT(passing, 0);
}

}  // namespace
