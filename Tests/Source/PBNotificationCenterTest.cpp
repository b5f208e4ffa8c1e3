// SPDX-License-Identifier: Apache-2.0
#include "PBNotificationCenter.h"

#include "BaseLibrary.h"
#include "Foundation/NSRunLoop.h"
#include "PBNotificationWatcher.h"
#include "Prelude.h"

namespace {

// Writes down what it hears, with "!" for a sender.
class PBTestWatcher : public PBNotificationWatcher, PBNotificationWatcher::HiddenCreators {
    PELVOR_CLASS(PBTestWatcher, PBNotificationWatcher);

  public:
    void didPostNotification(NSNotification* notification) override {
        heard += notification->name()->toUTF8() + (notification->object() ? "! " : " ");
    }
    std::string heard;
};
PELVOR_DEFINE_CLASS(PBTestWatcher, baseLibrary) {}

constexpr NSString* kFonts = u"NSFontSetChangedNotification"_ns;
constexpr NSString* kThreshold = u"NSAntialiasThresholdChangedNotification"_ns;
constexpr NSString* kX = u"X"_ns;
using Additions = NSNotificationCenter_PelvorAdditions;

struct PBNotificationCenterTest : ::testing::Test {
    std::string hear() { return std::exchange(watcher->heard, ""); }
    void idle() {
        while (NSRunLoop::currentRunLoop()->runMode_beforeDate(NSDefaultRunLoopMode, NSDate::distantPast()))
            continue;
    }
    void post(NSString* name) { center->postNotificationName_object(name, sender); }
    void watch(id object, std::initializer_list<id> names) {
        watcher->watchObject_notifications(object, NSArray::of(names));
    }

    NSNotificationCenter* center = NSNotificationCenter::defaultCenter();
    Retained<NSObject> sender = make<NSObject>();
    Retained<PBTestWatcher> watcher = Retained<PBTestWatcher>::retaining(cast<PBTestWatcher>(
        PBNotificationWatcher::initWithNotificationCenter(center, PBTestWatcher::classObject())
            .autorelease()));
};

// The first case runs before the default centre has changed, unless another test has changed it.
TEST_F(PBNotificationCenterTest, TheFirstDisabledNameChangesTheDefaultCentre) {
    watch(nullptr, {kFonts, kX});
    if (center->isa() == NSNotificationCenter::classObject()) {
        Additions::enableNotificationName(kX);
        for (int i = 0; i < 2; ++i) post(kFonts);
        EXPECT_EQ(hear(), "NSFontSetChangedNotification! NSFontSetChangedNotification! ");
    }
    for (int i = 0; i < 2; ++i) Additions::disableNotificationName(kX);
    EXPECT_EQ(center->isa(), PBNotificationCenter::classObject());
    Additions::enableNotificationName(kX);
    post(kX);
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
    watch(nullptr, {kFonts, kThreshold});
    for (NSString* name : {kFonts, kThreshold}) {
        for (int i = 0; i < 5; ++i) post(name);
        center->postNotification(NSNotification::notificationWithName_object(name, sender));
        EXPECT_EQ(hear(), "");
        idle();
        EXPECT_EQ(hear(), name->toUTF8() + " ");
    }
    post(kFonts);
    Additions::disableNotificationName(kFonts);
    post(kFonts);
    idle();
    EXPECT_EQ(hear(), "NSFontSetChangedNotification ");
    post(kFonts);
    Additions::enableNotificationName(kFonts);
    idle();
    EXPECT_EQ(hear(), "");
}

TEST_F(PBNotificationCenterTest, AWatcherHearsOnlyWhatItWasToldToWatchLast) {
    auto heardOfAll = [this] {
        for (NSString* name : {u"A"_ns, u"B"_ns})
            for (id from : {id(sender), id()}) center->postNotificationName_object(name, from);
        return hear();
    };
    watch(sender, {u"A"_ns});
    EXPECT_EQ(heardOfAll(), "A! ");
    watch(nullptr, {u"B"_ns});
    EXPECT_EQ(heardOfAll(), "B! B ");
    watcher->watchObject_notifications(sender, nullptr);
    EXPECT_EQ(heardOfAll(), "A! B! ");
    watcher->watchNone();
    EXPECT_EQ(heardOfAll(), "");
    watch(sender, {u"A"_ns, u"B"_ns});
    EXPECT_EQ(heardOfAll(), "A! B! ");
    watcher->invalidate();
    watcher->watchObject_notifications(sender, nullptr);
    EXPECT_EQ(heardOfAll(), "");
    auto other = NSNotificationCenter::init();
    auto gone = PBNotificationWatcher::initWithNotificationCenter(other);
    gone->watchObject_notifications(nullptr, nullptr);
    EXPECT_EQ(other->retainCount(), 2u);
    gone = nullptr;
    EXPECT_EQ(other->retainCount(), 1u);
    other->postNotificationName_object(kX, nullptr);
}

}  // namespace
