// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSNotificationCenter.h"

#include "Foundation/ReadScopePrivate.h"
#include "Prelude.h"
#include "RandomSteps.h"

namespace pelvor::testing {

extern Library notificationTestLibrary;

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

  protected:
    Ear() = default;
    ~Ear() = default;

  private:
    Heard _heard;
};

/// Lets a post through unless its name is "silent", whatever the form of the post.
class QuietCenter : public NSNotificationCenter {
    PELVOR_CLASS(QuietCenter, NSNotificationCenter);

  protected:
    QuietCenter() = default;
    ~QuietCenter() = default;
};

namespace {

void quietPostName(NSNotificationCenter* center, NSString* name, id object, NSDictionary* userInfo) {
    if (!name->isEqualToString(u"silent"_ns))
        sendSuper(QuietCenter::classObject(), center, "postNotificationName:object:userInfo:"_sel, name,
                  object, userInfo);
}

void quietPost(NSNotificationCenter* center, NSNotification* notification) {
    if (!notification->name()->isEqualToString(u"silent"_ns))
        sendSuper(QuietCenter::classObject(), center, "postNotification:"_sel, notification);
}

constexpr Library* kDependencies[] = {&foundationLibrary};
constexpr Class* kClasses[] = {&Ear::classRecord, &QuietCenter::classRecord};

}  // namespace

constinit Library notificationTestLibrary{"NotificationTest", kDependencies, kClasses, {}};

PELVOR_DEFINE_CLASS(Ear, notificationTestLibrary) { methods.instance<"hear:", &Ear::hear>(); }

PELVOR_DEFINE_CLASS(QuietCenter, notificationTestLibrary) {
    methods.instanceAs<"postNotificationName:object:userInfo:", &quietPostName>();
    methods.instanceAs<"postNotification:", &quietPost>();
}

namespace {

class NSNotificationCenterTest : public ::testing::Test {
  protected:
    /// An ear that writes its mark and the name down.
    Ear* ear(std::string mark) {
        return ear([this, mark](Ear*, NSNotification* notification) {
            heard.push_back(mark + ":" + notification->name()->toUTF8());
        });
    }
    Ear* ear(Ear::Heard what) {
        ears.push_back(Ear::create(std::move(what)));
        return ears.back();
    }
    void add(Ear* ear, NSString* name, id sender = nullptr) {
        center->addObserver_selector_name_object(ear, "hear:"_sel, name, sender);
    }
    std::vector<std::string> post(NSString* name, id sender = nullptr) {
        heard.clear();
        center->postNotificationName_object(name, sender);
        return heard;
    }

    Retained<NSNotificationCenter> center = NSNotificationCenter::init();
    std::vector<Retained<Ear>> ears;
    std::vector<std::string> heard;
    Retained<NSObject> sender = NSObject::init();
    Retained<NSObject> otherSender = NSObject::init();
};

TEST_F(NSNotificationCenterTest, AnObserverHearsTheNameAndSenderItAskedFor) {
    add(ear("any"), nullptr);
    add(ear("name"), u"opened"_ns);
    add(ear("sender"), nullptr, sender);
    add(ear("both"), u"opened"_ns, sender);

    EXPECT_THAT(post(u"opened"_ns, sender),
                ElementsAre("any:opened", "name:opened", "sender:opened", "both:opened"));
    EXPECT_THAT(post(u"opened"_ns, otherSender), ElementsAre("any:opened", "name:opened"));
    EXPECT_THAT(post(u"opened"_ns), ElementsAre("any:opened", "name:opened"));
    EXPECT_THAT(post(u"closed"_ns, sender), ElementsAre("any:closed", "sender:closed"));
    EXPECT_THAT(post(u"closed"_ns), ElementsAre("any:closed"));
}

TEST_F(NSNotificationCenterTest, NamesAreComparedByTheirTextAsItWasAtRegistration) {
    auto name = NSMutableString::initWithString(u"opened"_ns);
    add(ear("a"), name);
    name->appendString(u" twice"_ns);
    EXPECT_THAT(post(u"opened"_ns), ElementsAre("a:opened"));
    EXPECT_THAT(post(NSString::ofUTF8("opened")), ElementsAre("a:opened"));
    EXPECT_THAT(post(name), IsEmpty());
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
    add(ear(look), u"closing"_ns);
    add(ear(look), u"closing"_ns);
    center->postNotificationName_object(u"closing"_ns, last);
    EXPECT_THAT(seen, ElementsAre(true, true));
    EXPECT_FALSE(isAlive);
}

// MARK: Removal

TEST_F(NSNotificationCenterTest, RemovalTakesAwayWhatWasAskedForByNameAndSender) {
    struct {
        NSString* name;
        id sender;
        std::vector<std::string> left;
    } const rows[] = {
        {nullptr, nullptr, {}},
        {u"opened"_ns, nullptr, {"a:closed"}},
        {nullptr, sender, {"a:opened"}},
        {u"opened"_ns, sender, {"a:opened", "a:closed"}},
        {u"moved"_ns, nullptr, {"a:opened", "a:opened", "a:closed"}},
    };
    for (const auto& row : rows) {
        auto* a = ear("a");
        add(a, u"opened"_ns);
        add(a, u"opened"_ns, sender);
        add(a, u"closed"_ns, sender);
        center->removeObserver_name_object(a, row.name, row.sender);
        auto all = post(u"opened"_ns, sender);
        for (auto& more : post(u"closed"_ns, sender)) all.push_back(more);
        EXPECT_EQ(all, row.left);
        center->removeObserver(a);
    }
    center->removeObserver(nullptr);
    EXPECT_THAT(post(u"opened"_ns, sender), IsEmpty());
}

TEST_F(NSNotificationCenterTest, ObserversComeAndGoInTheMiddleOfADelivery) {
    Retained<Ear> here[3];
    auto leave = [&](int index) {
        center->removeObserver(here[index]);
        here[index] = nullptr;
    };
    auto comeLate = [&] {
        for (NSString* name : {u"opened"_ns, static_cast<NSString*>(nullptr)})
            for (id from : {id(sender), id()}) add(ear("late"), name, from);
    };
    struct {
        const char* name;
        std::function<void()> action;  // of the first
        std::vector<std::string> expected;
    } const rows[] = {
        {"adds others", comeLate, {"second", "third"}},
        {"destroys itself", [&] { leave(0); }, {"second", "third"}},
        {"destroys the next", [&] { leave(1); }, {"third"}},
        {"destroys the others", [&] { leave(1), leave(2); }, {}},
        {"destroys all", [&] { leave(2), leave(1), leave(0); }, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        center = NSNotificationCenter::init();
        here[0] = Ear::create([&](Ear*, NSNotification*) { row.action(); });
        here[1] = Ear::create([&](Ear*, NSNotification*) { heard.push_back("second"); });
        here[2] = Ear::create([&](Ear*, NSNotification*) { heard.push_back("third"); });
        for (auto& each : here) add(each, u"opened"_ns);
        EXPECT_EQ(post(u"opened"_ns, sender), row.expected);
    }
}

TEST_F(NSNotificationCenterTest, PostsNestDeeply) {
    int depth = 0;
    add(ear([&](Ear* self, NSNotification*) {
            if (++depth < 100) center->postNotificationName_object(u"deeper"_ns, nullptr);
            center->removeObserver(self);
            add(self, u"deeper"_ns);
        }),
        u"deeper"_ns);
    add(ear("after"), u"deeper"_ns);
    // The first call goes 100 deep; on the way back each level still has "after" to call.
    EXPECT_EQ(post(u"deeper"_ns).size(), 100u);
    EXPECT_EQ(depth, 100);
}

TEST_F(NSNotificationCenterTest, WhatAnObserverRaisesReachesThePosterAndHarmsNothing) {
    auto* bad = ear([](Ear*, NSNotification*) { throw NSException("Bad", "as ever"); });
    add(ear("before"), u"opened"_ns);
    add(bad, u"opened"_ns);
    add(ear("after"), u"opened"_ns);
    EXPECT_THROW(post(u"opened"_ns), NSException);
    EXPECT_THAT(heard, ElementsAre("before:opened"));
    center->removeObserver(bad);
    EXPECT_THAT(post(u"opened"_ns), ElementsAre("before:opened", "after:opened"));
}

TEST_F(NSNotificationCenterTest, MistakesAreRaised) {
    EXPECT_THROW(add(nullptr, u"opened"_ns), NSException);
    EXPECT_THROW(center->addObserver_selector_name_object(ear("a"), SEL(), u"opened"_ns, nullptr),
                 NSException);
    EXPECT_THROW(center->postNotification(nullptr), NSException);
    EXPECT_THROW(center->postNotificationName_object(nullptr, nullptr), NSException);
    EXPECT_THROW(NSNotification::notificationWithName_object(nullptr, nullptr), NSException);
    // One that does not answer the message is found out when it is called.
    center->addObserver_selector_name_object(sender, "hear:"_sel, u"opened"_ns, nullptr);
    EXPECT_THROW(post(u"opened"_ns), NSException);
}

// MARK: Subclasses

TEST_F(NSNotificationCenterTest, EveryFormOfPostingFindsTheMethodsOfANewClass) {
    add(ear("a"), nullptr);
    Instances::setClass(center, QuietCenter::classObject());
    std::vector<std::string> all;
    for (NSString* name : {u"loud"_ns, u"silent"_ns}) {
        heard.clear();
        center->postNotificationName_object(name, nullptr);
        center->postNotificationName_object_userInfo(name, nullptr, nullptr);
        center->postNotification(NSNotification::notificationWithName_object(name, nullptr));
        send(center, "postNotificationName:object:"_sel, name, nullptr);
        send(center, "postNotificationName:object:userInfo:"_sel, name, nullptr, nullptr);
        send(center, "postNotification:"_sel, NSNotification::notificationWithName_object(name, nullptr));
        EXPECT_EQ(heard.size(), name->isEqualToString(u"loud"_ns) ? 6u : 0u);
    }
    Instances::setClass(center, NSNotificationCenter::classObject());
}

TEST(NSNotificationCenterDeathTest, WhatPosesAsTheCentreIsTheDefaultCentre) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            QuietCenter::classObject()->poseAsClass(NSNotificationCenter::classObject());
            auto* center = NSNotificationCenter::defaultCenter();
            std::exit(center->isa() == QuietCenter::classObject() ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
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
    struct Delivery {
        std::vector<std::shared_ptr<Entry>> audience;
        std::size_t next = 0;
    };

    int random(int below) { return static_cast<int>(_random() % static_cast<unsigned>(below)); }
    static NSString* name(int index) {
        static constexpr NSString* names[] = {nullptr, u"one"_ns, u"two"_ns};
        // "three" is a new string each time.
        return index < 3 ? names[index] : NSString::ofUTF8("three");
    }
    id sender(int index) { return index ? _senders[static_cast<std::size_t>(index) - 1].get() : nullptr; }

    void step() {
        AutoreleasePool pool;
        int what = random(100);
        if (_ears.size() < 2 || (what < 12 && _ears.size() < 12))
            _ears.push_back(Ear::create([this](Ear* ear, NSNotification*) { hear(ear); }));
        else if (what < 20)
            destroy(static_cast<std::size_t>(random(static_cast<int>(_ears.size()))));
        else if (what < 50)
            add(random(static_cast<int>(_ears.size())), random(4), random(3));
        else if (what < 70)
            remove(_ears[_random() % _ears.size()], random(4), random(3));
        else
            post(1 + random(3), random(3));
    }

    void add(int index, int nameIndex, int senderIndex) {
        Ear* ear = _ears[static_cast<std::size_t>(index)];
        _center->addObserver_selector_name_object(ear, "hear:"_sel, name(nameIndex), sender(senderIndex));
        _entries.push_back(std::make_shared<Entry>(Entry{ear, nameIndex, senderIndex}));
    }

    void remove(Ear* ear, int nameIndex, int senderIndex) {
        _center->removeObserver_name_object(ear, name(nameIndex), sender(senderIndex));
        std::erase_if(_entries, [&](const auto& entry) {
            bool goes = entry->ear == ear && (!nameIndex || entry->name == nameIndex) &&
                        (!senderIndex || entry->sender == senderIndex);
            if (goes) entry->isThere = false;
            return goes;
        });
    }

    void destroy(std::size_t index) {
        remove(_ears[index], 0, 0);
        _ears.erase(_ears.begin() + static_cast<std::ptrdiff_t>(index));
    }

    void post(int nameIndex, int senderIndex) {
        if (_deliveries.size() > 3) return;
        auto& delivery = *_deliveries.emplace_back(std::make_unique<Delivery>());
        for (const auto& entry : _entries)
            if ((!entry->name || entry->name == nameIndex) &&
                (!entry->sender || entry->sender == senderIndex))
                delivery.audience.push_back(entry);
        _center->postNotificationName_object(name(nameIndex), sender(senderIndex));
        EXPECT_EQ(nextOf(delivery), nullptr) << "somebody was left out";
        _deliveries.pop_back();
    }

    static Entry* nextOf(Delivery& delivery) {
        while (delivery.next < delivery.audience.size())
            if (Entry* entry = delivery.audience[delivery.next++].get(); entry->isThere) return entry;
        return nullptr;
    }

    void hear(Ear* ear) {
        Entry* expected = nextOf(*_deliveries.back());
        ASSERT_TRUE(expected && expected->ear == ear);
        for (int i = random(4); i > 0; --i) step();
    }

    std::mt19937 _random{20040712};
    Retained<NSNotificationCenter> _center = NSNotificationCenter::init();
    std::vector<Retained<Ear>> _ears;
    std::vector<Retained<NSObject>> _senders{NSObject::init(), NSObject::init()};
    std::vector<std::shared_ptr<Entry>> _entries;
    std::vector<std::unique_ptr<Delivery>> _deliveries;
};

TEST(NSNotificationCenterModelTest, RandomStepsAlsoInsideDeliveriesAgreeWithAModel) {
    CenterModel().run(randomSteps(20'000));
    EXPECT_LT(ReadScope::retiredCount(), 200u);
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
}  // namespace pelvor::testing
