// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSNotificationCenter.h"

#include "Prelude.h"
#include "RandomSteps.h"

namespace {

/// Tells a function what it hears.
class Ear : public NSObject {
    PELVOR_CLASS(Ear, NSObject);

  public:
    using Heard = std::function<void(Ear*, NSNotification*)>;
    static Retained<Ear> create(Heard heard) {
        auto ear = make<Ear>();
        ear->_heard = std::move(heard);
        return ear;
    }
    void hear(NSNotification* notification) {
        auto heard = _heard;  // it may destroy this
        heard(this, notification);
    }

  private:
    Heard _heard;
};

/// Posts nothing.
class QuietCenter : public NSNotificationCenter, NSNotificationCenter::HiddenCreators {
    PELVOR_CLASS(QuietCenter, NSNotificationCenter);
};
void dropNamed(NSNotificationCenter*, NSString*, id, NSDictionary*) {}
void drop(NSNotificationCenter*, NSNotification*) {}

extern Library notificationTestLibrary;
PELVOR_DEFINE_CLASS(Ear, notificationTestLibrary) { methods.instance<"hear:", &Ear::hear>(); }
PELVOR_DEFINE_CLASS(QuietCenter, notificationTestLibrary) {
    methods.instanceAs<"postNotificationName:object:userInfo:", &dropNamed>();
    methods.instanceAs<"postNotification:", &drop>();
}
constinit Library notificationTestLibrary{"NotificationTest", {}, kClassesOf<Ear, QuietCenter>, {}};

class NSNotificationCenterTest : public ::testing::Test {
  protected:
    /// An ear that writes its mark and the name down.
    Ear* ear(std::string mark) {
        return ear([this, mark](Ear*, NSNotification* notification) {
            heard.push_back(mark + ":" + shown(notification->name()));
        });
    }
    Ear* ear(Ear::Heard what) { return ears.emplace_back(Ear::create(std::move(what))); }
    void add(Ear* ear, NSString* name, id sender = nullptr) {
        center->addObserver_selector_name_object(ear, "hear:"_sel, name, sender);
    }
    std::string post(NSString* name, id sender = nullptr) {
        heard.clear();
        center->postNotificationName_object(name, sender);
        return joined(heard);
    }

    Retained<NSNotificationCenter> center = NSNotificationCenter::init();
    std::vector<Retained<Ear>> ears;
    std::vector<std::string> heard;
    Retained<NSObject> sender = make<NSObject>();
    Retained<NSObject> otherSender = make<NSObject>();
};

TEST_F(NSNotificationCenterTest, AnObserverHearsTheNameAndSenderItAskedFor) {
    add(ear("any"), nullptr);
    add(ear("name"), u"opened"_ns);
    add(ear("sender"), nullptr, sender);
    add(ear("both"), u"opened"_ns, sender);
    EXPECT_EQ(post(u"opened"_ns, sender), "any:opened, name:opened, sender:opened, both:opened");
    for (id other : {id(otherSender), id()}) EXPECT_EQ(post(u"opened"_ns, other), "any:opened, name:opened");
    EXPECT_EQ(post(u"closed"_ns, sender), "any:closed, sender:closed");
    EXPECT_EQ(post(u"closed"_ns), "any:closed");
}

TEST_F(NSNotificationCenterTest, NamesAreComparedByTheirTextAsItWasAtRegistration) {
    auto name = NSMutableString::initWithString(u"opened"_ns);
    add(ear("a"), name);
    name->appendString(u" twice"_ns);
    for (NSString* opened : {u"opened"_ns, NSString::ofUTF8("opened")}) EXPECT_EQ(post(opened), "a:opened");
    EXPECT_EQ(post(name), "");
}

TEST_F(NSNotificationCenterTest, WhatIsPostedIsWhatIsHeard) {
    auto* info = NSDictionary::dictionaryWithObject_forKey(u"here"_ns, u"where"_ns);
    Retained<NSNotification> kept;
    add(ear([&](Ear*, NSNotification* notification) { kept.set(notification); }), u"opened"_ns);
    center->postNotificationName_object_userInfo(u"opened"_ns, sender, info);
    auto first = kept;
    center->postNotificationName_object(u"opened"_ns, otherSender);  // a kept one is not used again
    EXPECT_TRUE(first->object() == sender && first->userInfo() == info);
    EXPECT_TRUE(kept->object() == otherSender && !kept->userInfo());
    auto* whole = NSNotification::notificationWithName_object(u"opened"_ns, sender);
    center->postNotification(whole);
    EXPECT_TRUE(kept == whole);
}

TEST_F(NSNotificationCenterTest, APostKeepsItsSenderAliveUntilAllHaveHeard) {
    bool isAlive = true;
    auto last = Ear::create([&, guard = std::shared_ptr<void>(nullptr, [&](void*) { isAlive = false; })](
                                Ear*, NSNotification*) {});
    std::vector<bool> seen;
    auto look = [&](Ear*, NSNotification*) {
        last = nullptr;
        seen.push_back(isAlive);
    };
    for (int i = 0; i < 2; ++i) add(ear(look), u"closing"_ns);
    center->postNotificationName_object(u"closing"_ns, last);
    EXPECT_THAT(seen, ElementsAre(true, true));
    EXPECT_FALSE(isAlive);
}

TEST_F(NSNotificationCenterTest, AnObserverMayEndTheCentreAndTheOthersAreStillCalled) {
    add(ear([&](Ear*, NSNotification*) { center = nullptr; }), u"opened"_ns);
    add(ear("after"), u"opened"_ns);
    EXPECT_EQ(post(u"opened"_ns), "after:opened");
}

TEST_F(NSNotificationCenterTest, WhatAnObserverRaisesReachesThePosterAndHarmsNothing) {
    auto* bad = ear([](Ear*, NSNotification*) { throw NSException("Bad", "as ever"); });
    for (Ear* each : {ear("before"), bad, ear("after")}) add(each, u"opened"_ns);
    EXPECT_EQ(RAISED(post(u"opened"_ns)), "Bad: as ever");
    EXPECT_EQ(joined(heard), "before:opened");
    center->removeObserver(bad);
    EXPECT_EQ(post(u"opened"_ns), "before:opened, after:opened");
}

TEST_F(NSNotificationCenterTest, MistakesAreRaised) {
    EXPECT_THROW(add(nullptr, u"opened"_ns), NSException);
    EXPECT_THROW(center->addObserver_selector_name_object(ear("a"), SEL(), u"opened"_ns, nullptr),
                 NSException);
    EXPECT_THROW(center->postNotification(nullptr), NSException);
    EXPECT_THROW(post(nullptr), NSException);
    EXPECT_THROW(NSNotification::notificationWithName_object(nullptr, nullptr), NSException);
    // One that does not answer the message is found out when it is called.
    center->addObserver_selector_name_object(sender, "hear:"_sel, u"opened"_ns, nullptr);
    EXPECT_THROW(post(u"opened"_ns), NSException);
    center->removeObserver(nullptr);
}

TEST_F(NSNotificationCenterTest, EveryFormOfPostingFindsTheMethodsOfANewClass) {
    Class* const plain = NSNotificationCenter::classObject();
    add(ear("a"), nullptr);
    for (Class* cls : {plain, QuietCenter::classObject(), plain}) {
        Instances::setClass(center, cls);
        heard.clear();
        auto* whole = NSNotification::notificationWithName_object(u"x"_ns, nullptr);
        center->postNotificationName_object(u"x"_ns, nullptr);
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
        while (!_ears.empty()) destroy(_ears.size() - 1);
    }

  private:
    struct Entry {
        Ear* ear;
        int name, sender;  // 0: any
        bool isThere = true;
    };
    using Entries = std::vector<std::shared_ptr<Entry>>;

    int random(std::size_t below) { return static_cast<int>(_random() % below); }
    static NSString* name(int index) {
        static constexpr NSString* names[] = {nullptr, u"one"_ns, u"two"_ns};
        // "three" is a new string each time.
        return index < 3 ? names[index] : NSString::ofUTF8("three");
    }

    void step() {
        AutoreleasePool pool;
        int what = random(100);
        if (_ears.size() < 2 || (what < 12 && _ears.size() < 12))
            _ears.push_back(Ear::create([this](Ear* ear, NSNotification*) { hear(ear); }));
        else if (what < 20)
            destroy(random(_ears.size()));
        else if (what < 50)
            add(anyEar(), random(4), random(3));
        else if (what < 70)
            remove(anyEar(), random(4), random(3));
        else
            post(1 + random(3), random(3));
    }

    Ear* anyEar() { return _ears[_random() % _ears.size()]; }

    void add(Ear* ear, int nameIndex, int senderIndex) {
        _center->addObserver_selector_name_object(ear, "hear:"_sel, name(nameIndex), _senders[senderIndex]);
        _entries.push_back(std::make_shared<Entry>(Entry{ear, nameIndex, senderIndex}));
    }

    void remove(Ear* ear, int nameIndex, int senderIndex) {
        _center->removeObserver_name_object(ear, name(nameIndex), _senders[senderIndex]);
        std::erase_if(_entries, [&](const auto& entry) {
            bool goes = entry->ear == ear && (!nameIndex || entry->name == nameIndex) &&
                        (!senderIndex || entry->sender == senderIndex);
            if (goes) entry->isThere = false;
            return goes;
        });
    }

    void destroy(int index) {
        remove(_ears[static_cast<std::size_t>(index)], 0, 0);
        _ears.erase(_ears.begin() + index);
    }

    void post(int nameIndex, int senderIndex) {
        if (_deliveries.size() > 3) return;
        Entries& audience = *_deliveries.emplace_back(std::make_unique<Entries>());
        for (const auto& entry : _entries)
            if ((!entry->name || entry->name == nameIndex) &&
                (!entry->sender || entry->sender == senderIndex))
                audience.push_back(entry);
        _center->postNotificationName_object(name(nameIndex), _senders[senderIndex]);
        EXPECT_EQ(nextOf(audience), nullptr) << "somebody was left out";
        _deliveries.pop_back();
    }

    static std::shared_ptr<Entry> nextOf(Entries& audience) {
        std::erase_if(audience, [](const auto& entry) { return !entry->isThere; });
        if (audience.empty()) return nullptr;
        auto next = audience.front();
        audience.erase(audience.begin());
        return next;
    }

    void hear(Ear* ear) {
        auto expected = nextOf(*_deliveries.back());
        ASSERT_TRUE(expected && expected->ear == ear);
        for (int i = random(4); i > 0; --i) step();
    }

    std::mt19937 _random{20040712};
    Retained<NSNotificationCenter> _center = NSNotificationCenter::init();
    std::vector<Retained<Ear>> _ears;
    Retained<NSObject> _senders[3] = {nullptr, make<NSObject>(), make<NSObject>()};
    Entries _entries;
    std::vector<std::unique_ptr<Entries>> _deliveries;  // who has still to hear of each
};

TEST(NSNotificationCenterModelTest, RandomStepsAlsoInsideDeliveriesAgreeWithAModel) {
    CenterModel().run(randomSteps(20'000));
}

TEST_F(NSNotificationCenterTest, ThreadsPostWhileOthersComeAndGo) {
    constexpr int kRounds = 2'000;
    std::atomic<int> steady{0}, passing{0};
    add(ear([&](Ear*, NSNotification*) { ++steady; }), u"tick"_ns);
    auto* guest = ear([&](Ear*, NSNotification*) { ++passing; });
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
