// SPDX-License-Identifier: Apache-2.0
#include "PBNotificationCenter.h"

#include "Foundation/NSRunLoop.h"
#include "Prelude.h"

namespace pelvor::testing {
namespace {

extern Library notificationCenterTestLibrary;

// Writes down what it hears, with "!" for a sender.
class PBTestWatcher : public PBNotificationWatcher {
    PELVOR_CLASS(PBTestWatcher, PBNotificationWatcher);

  public:
    void didPostNotification(NSNotification* notification) override {
        heard += notification->name()->toUTF8() + (notification->object() ? "! " : " ");
    }
    std::string heard;

  protected:
    PBTestWatcher() = default;
    ~PBTestWatcher() = default;
};

PELVOR_DEFINE_CLASS(PBTestWatcher, notificationCenterTestLibrary) {}
constexpr Class* kClasses[] = {&PBTestWatcher::classRecord};
constinit Library notificationCenterTestLibrary{"NotificationCenterTest", {}, kClasses, {}};

constexpr NSString* kFonts = u"NSFontSetChangedNotification"_ns;
constexpr NSString* kThreshold = u"NSAntialiasThresholdChangedNotification"_ns;
constexpr NSString* kX = u"X"_ns;
using Additions = NSNotificationCenter_PelvorAdditions;

class PBNotificationCenterTest : public ::testing::Test {
  protected:
    std::string hear() { return std::exchange(watcher->heard, ""); }
    void idle() {
        while (NSRunLoop::currentRunLoop()->runMode_beforeDate(NSDefaultRunLoopMode, NSDate::distantPast())) {
        }
    }

    NSNotificationCenter* center = NSNotificationCenter::defaultCenter();
    Retained<NSObject> sender = NSObject::init();
    Retained<PBTestWatcher> watcher = Retained<PBTestWatcher>::retaining(cast<PBTestWatcher>(
        PBNotificationWatcher::initWithNotificationCenter(center, PBTestWatcher::classObject())
            .autorelease()));
};

// The first case runs before the default centre has changed, unless another test has changed it.
TEST_F(PBNotificationCenterTest, TheFirstDisabledNameChangesTheDefaultCentre) {
    watcher->watchObject_notifications(nullptr, NSArray::of({kFonts, kX}));
    if (center->isa() == NSNotificationCenter::classObject()) {
        Additions::enableNotificationName(kX);
        for (int i = 0; i < 2; ++i) center->postNotificationName_object(kFonts, sender);
        EXPECT_EQ(hear(), "NSFontSetChangedNotification! NSFontSetChangedNotification! ");
    }
    for (int i = 0; i < 2; ++i) Additions::disableNotificationName(kX);
    EXPECT_EQ(center->isa(), PBNotificationCenter::classObject());
    Additions::enableNotificationName(kX);
    center->postNotificationName_object(kX, sender);
    center->postNotification(NSNotification::notificationWithName_object(kX, sender));
    EXPECT_EQ(hear(), "");
    for (int i = 0; i < 2; ++i) Additions::enableNotificationName(kX);
    center->postNotificationName_object_userInfo(kX, sender, nullptr);
    center->postNotification(NSNotification::notificationWithName_object(kX, nullptr));
    EXPECT_EQ(hear(), "X! X ");
    EXPECT_EQ(center->isa(), PBNotificationCenter::classObject());
}

// Deliberately: a name that was disabled after it was queued is delivered all the same.
TEST_F(PBNotificationCenterTest, DelayedNamesAreDeliveredOnceWithoutSenderWhenIdle) {
    PBNotificationCenter::doPosing();
    watcher->watchObject_notifications(nullptr, NSArray::of({kFonts, kThreshold}));
    for (NSString* name : {kFonts, kThreshold}) {
        for (int i = 0; i < 5; ++i) center->postNotificationName_object(name, sender);
        center->postNotification(NSNotification::notificationWithName_object(name, sender));
        EXPECT_EQ(hear(), "");
        idle();
        EXPECT_EQ(hear(), name->toUTF8() + " ");
    }
    center->postNotificationName_object(kFonts, sender);
    Additions::disableNotificationName(kFonts);
    center->postNotificationName_object(kFonts, sender);
    idle();
    EXPECT_EQ(hear(), "NSFontSetChangedNotification ");
    Additions::enableNotificationName(kFonts);
    idle();
    EXPECT_EQ(hear(), "");
}

TEST_F(PBNotificationCenterTest, AWatcherHearsOnlyWhatItWasToldToWatchLast) {
    auto post = [this](const char* expected) {
        for (NSString* name : {u"A"_ns, u"B"_ns})
            for (id from : {id(sender), id()}) center->postNotificationName_object(name, from);
        EXPECT_EQ(hear(), expected);
    };
    watcher->watchObject_notifications(sender, NSArray::of({u"A"_ns}));
    post("A! ");
    watcher->watchObject_notifications(nullptr, NSArray::of({u"B"_ns}));
    post("B! B ");
    watcher->watchObject_notifications(sender, nullptr);
    post("A! B! ");
    watcher->watchNone();
    post("");
    watcher->watchObject_notifications(sender, NSArray::of({u"A"_ns, u"B"_ns}));
    post("A! B! ");
    watcher->invalidate();
    watcher->watchObject_notifications(sender, nullptr);
    post("");
    auto other = NSNotificationCenter::init();
    auto gone = PBNotificationWatcher::initWithNotificationCenter(other);
    gone->watchObject_notifications(nullptr, nullptr);
    EXPECT_EQ(other->retainCount(), 2u);
    gone = nullptr;
    EXPECT_EQ(other->retainCount(), 1u);
    other->postNotificationName_object(kX, nullptr);
}

}  // namespace
}  // namespace pelvor::testing
