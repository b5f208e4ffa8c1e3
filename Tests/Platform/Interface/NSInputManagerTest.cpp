// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSInputManager.h"

#include "Interface/NSTextView.h"
#include "InterfaceScope.h"
#include "TestViews.h"

namespace {

struct NSInputManagerTest : ::testing::Test {
    NSInputManagerTest() {
        window->contentView()->addSubview(view);
        window->makeFirstResponder(view);
    }
    ~NSInputManagerTest() { NSInputManager::setKeyBindings(nullptr); }

    std::vector<std::string> press(unichar key, std::uint32_t modifiers = 0) {
        screen.press(key, modifiers);
        return std::exchange(view->log, {});
    }

    InterfaceScope screen;
    Retained<NSWindow> window = screen.window({{100, 100}, {200, 100}});
    Retained<TestView> view = TestView::make({{0, 0}, {50, 50}});
};

TEST_F(NSInputManagerTest, KeysAreTextOrCommandsOfTheTable) {
    EXPECT_THAT(press(u'é'), ElementsAre("text \u00E9"));
    EXPECT_THAT(press(u'A', NSShiftKeyMask), ElementsAre("text A"));
    EXPECT_THAT(press(NSCarriageReturnCharacter), ElementsAre("insertNewline:"));
    EXPECT_THAT(press(NSLeftArrowFunctionKey, NSCommandKeyMask | NSShiftKeyMask),
                ElementsAre("moveWordLeftAndModifySelection:"));
    EXPECT_THAT(press(u'Z', NSCommandKeyMask | NSShiftKeyMask), ElementsAre("redo:"));
    EXPECT_THAT(press(u'q', NSCommandKeyMask), ElementsAre("noop:"));
    EXPECT_THAT(press(NSF5FunctionKey), ElementsAre("noop:"));
}

TEST_F(NSInputManagerTest, BindingsAreAddedReplacedAndTakenAway) {
    NSInputManager::setKeyBindings(NSDictionary::of({{u"~q"_ns, NSArray::of({u"first:"_ns, u"second:"_ns})},
                                                     {u"@z"_ns, u""_ns},
                                                     {u"^~\uF702"_ns, u"own:"_ns}}));
    EXPECT_THAT(press(u'q', NSAlternateKeyMask), ElementsAre("first:", "second:"));
    EXPECT_THAT(press(u'z', NSCommandKeyMask), ElementsAre("noop:"));
    EXPECT_THAT(press(NSLeftArrowFunctionKey, NSControlKeyMask | NSAlternateKeyMask), ElementsAre("own:"));
    EXPECT_TRUE(u"copy:"_ns->isEqual(NSInputManager::keyBindings()->objectForKey(u"@c"_ns)));
    EXPECT_THAT(reasonOf(NSInvalidArgumentException,
                         [] {
                             NSInputManager::setKeyBindings(NSDictionary::of({{u"ab"_ns, u"x:"_ns}}));
                         }),
                HasSubstr("setKeyBindings: the key \"ab\""));
    NSInputManager::setKeyBindings(nullptr);
    EXPECT_THAT(press(u'z', NSCommandKeyMask), ElementsAre("undo:"));
}

TEST_F(NSInputManagerTest, WhatIsComposedIsMarkedAndThenText) {
    screen.backend->inputMethod = [&](BackendWindow number, const BackendKey& key) {
        BackendSink& sink = DisplayConnection::shared();
        if (key.characters == u"k") return sink.preedit(number, u"k", 1, {}), true;
        if (key.characters != u"a") return false;
        sink.preedit(number, u"", 0, {});
        sink.text(number, u"か");
        return true;
    };
    EXPECT_THAT(press(u'k'), ElementsAre("marked k {1, 0}"));
    EXPECT_THAT(press(u'a'), ElementsAre("marked  {0, 0}", "text か"));
    EXPECT_THAT(press(u'b'), ElementsAre("text b"));
    // A reply that comes by itself goes to what has the keys then.
    auto other = TestView::make({{50, 0}, {50, 50}});
    window->contentView()->addSubview(other);
    window->makeFirstResponder(other);
    view->removeFromSuperview();
    static_cast<BackendSink&>(DisplayConnection::shared()).text(screen.number(window), u"late");
    screen.turn();
    EXPECT_THAT(other->log, ElementsAre("text late"));
}

// Such as those that were typed into a panel when it went.
TEST_F(NSInputManagerTest, KeysOfAClosedWindowAreTextWhereTheyGo) {
    Retained<NSWindow> panel = screen.window({{10, 10}, {50, 50}});
    auto button = TestView::make({{0, 0}, {50, 50}});
    panel->contentView()->addSubview(button);
    panel->makeFirstResponder(button);
    panel->makeKeyAndOrderFront(nullptr);
    screen.turn();
    BackendKey key;
    key.characters = u"x";
    screen.backend->key(key);
    panel->orderOut(nullptr);
    window->makeKeyAndOrderFront(nullptr);
    screen.turn();
    EXPECT_THAT(view->log, ElementsAre("text x"));
    EXPECT_THAT(button->log, IsEmpty());
}

TEST_F(NSInputManagerTest, CommandsGoOnBehindTheWindowOrEndWithOneBeep) {
    auto text = NSTextView::initWithFrame({{0, 0}, {100, 50}}),
         behind = NSTextView::initWithFrame({{0, 0}, {100, 50}});
    window->contentView()->addSubview(text);
    window->makeFirstResponder(text);
    window->setNextResponder(behind);
    NSInputManager::setKeyBindings(NSDictionary::of({{u"~q"_ns, u"nobody:"_ns}}));
    press(u'q', NSAlternateKeyMask);
    EXPECT_EQ(screen.backend->beeps(), 1);
    behind->setString(u"abc"_ns);
    window->doCommandBySelector("selectAll:"_sel);
    EXPECT_EQ(shown(behind->selectedRange().length, screen.backend->beeps()), "3 1");
    window->setNextResponder(nullptr);
}

TEST_F(NSInputManagerTest, ModifierKeysChangeTheFlagsAlone) {
    int changes = 0;
    auto* app = screen.app;
    screen.backend->setModifiers(kBackendShift);
    while (NSEvent* event =
               app->nextEventMatchingMask_untilDate_inMode_dequeue(NSAnyEventMask, nullptr, nullptr, true))
        changes += event->type() == NSFlagsChanged && event->modifierFlags() == NSShiftKeyMask;
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(GetCurrentKeyModifiers(), static_cast<std::uint32_t>(kKeyModifierShift));
    screen.clock.set(10);
    const std::int32_t before = TickCount();
    screen.clock.advance(1.5);
    EXPECT_EQ(TickCount() - before, 90);
}

}  // namespace
