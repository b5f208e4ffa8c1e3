// SPDX-License-Identifier: Apache-2.0
// Tests of a whole application on an X server, by somebody with keys and a mouse.
#include <signal.h>

#include "../Interface/TestViews.h"
#include "BackendDriver.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSTimer.h"
#include "Interface/Events/ApplicationState.h"
#include "Interface/KeyboardLayouts.h"
#include "Interface/NSApplication.h"
#include "Interface/NSMenu.h"
#include "Interface/NSScreen.h"
#include "Interface/NSWindow.h"
#include "TestInputMethod.h"

namespace {

class XCBApplicationTest : public XCBTest {
  protected:
    void SetUp() override {
        XCBTest::SetUp();
        if (IsSkipped()) return;
        ::unsetenv("PELVOR_DISPLAY");
        server.emplace(XServerScope::Manager::openbox);
    }
    void TearDown() override {
        if (!server) return;
        window.set(nullptr);
        ApplicationState::end();
        server.reset();
    }
    void start() {
        app = NSApplication::sharedApplication();
        app->setTerminatesProcess(false);
        window = NSWindow::initWithContentRect_styleMask_backing_defer(
            {{100, 400}, {300, 200}}, NSTitledWindowMask | NSClosableWindowMask | NSResizableWindowMask,
            NSBackingStoreBuffered, true);
        view = TestView::make({{0, 0}, {300, 200}}, NSColor::redColor());
        window->setContentView(view);
        window->makeKeyAndOrderFront(nullptr);
        window->makeFirstResponder(view);
        EXPECT_TRUE(until([&] { return window->isKeyWindow() && server->pixel(250, 500) == 0xFF0000; }));
    }
    template <class Condition>
    [[nodiscard]] bool until(Condition condition) {
        for (const double deadline = secondsNow() + 20; secondsNow() < deadline;) {
            AutoreleasePool pool;
            if (condition()) return true;
            NSEvent* event = app->nextEventMatchingMask_untilDate_inMode_dequeue(
                NSAnyEventMask, NSDate::dateWithTimeIntervalSinceNow(0.02), NSDefaultRunLoopMode, true);
            if (event) app->state().handle(event);
        }
        return false;
    }
    [[nodiscard]] bool untilLogged(const std::string& text) {
        const bool isLogged = until([&] { return std::ranges::find(view->log, text) != view->log.end(); });
        EXPECT_TRUE(isLogged) << joined(view->log);
        return isLogged;
    }

    std::optional<XServerScope> server;
    NSApplication* app = nullptr;
    Retained<NSWindow> window;
    Retained<TestView> view;
};

TEST_F(XCBApplicationTest, SwitchesKeyboards) {
    start();
    KeyboardLayoutRef layout = nullptr;
    NSInteger count = 0;
    EXPECT_EQ(KLGetCurrentKeyboardLayout(&layout), noErr);
    const auto lists = Listener::to(NSKeyboardLayoutsDidChangeNotification);
    XServerScope::run({"setxkbmap", "-layout", "us,de,ru"});
    EXPECT_TRUE(until([&] { return KLGetKeyboardLayoutCount(&count) == noErr && count == 3; }));
    EXPECT_TRUE(until([&] { return lists->takeCount() > 0; }));

    const auto currents = Listener::to(NSCurrentKeyboardLayoutDidChangeNotification);
    EXPECT_EQ(KLGetKeyboardLayoutWithIdentifier(keyboardLayoutIdentifier(u"ru"_ns), &layout), noErr);
    EXPECT_EQ(KLSetCurrentKeyboardLayout(layout), noErr);
    EXPECT_EQ(GetScriptManagerVariable(smKeyScript), smCyrillic);
    EXPECT_TRUE(until([&] { return currents->takeCount() > 0; }));
    server->press(30);
    EXPECT_TRUE(untilLogged("text ф"));
    KeyScript(smRoman);
    server->press(21);
    EXPECT_TRUE(untilLogged("text y"));

    EXPECT_EQ(KLGetKeyboardLayoutWithIdentifier(keyboardLayoutIdentifier(u"gr"_ns), &layout), noErr);
    EXPECT_EQ(KLSetCurrentKeyboardLayout(layout), resNotFound);
    XServerScope::run({"setxkbmap", "-layout", "us,gr"});
    EXPECT_TRUE(until([&] { return lists->takeCount() > 0; }));
    EXPECT_EQ(KLSetCurrentKeyboardLayout(layout), noErr);
    server->press(30);
    EXPECT_TRUE(untilLogged("text α"));
}

TEST_F(XCBApplicationTest, GetsKeysAndClicks) {
    start();
    server->press(30);
    EXPECT_TRUE(untilLogged("text a"));
    server->press(28);
    EXPECT_TRUE(untilLogged("insertNewline:"));
    server->click(150, 500);
    EXPECT_TRUE(untilLogged("up 1 {50, 124}"));
    // The user closes the window by the manager's button.
    XServerScope::run({"xdotool", "key", "alt+F4"});
    EXPECT_TRUE(until([&] { return !window->isVisible(); }));
}

TEST_F(XCBApplicationTest, OpensMenus) {
    start();
    int chosen = 0;
    auto taker =
        Listener::doing([&](id item) { chosen = static_cast<int>(static_cast<NSMenuItem*>(item)->tag()); });
    auto bar = NSMenu::init(), file = NSMenu::init();
    for (int tag = 1; tag <= 3; ++tag) {
        NSMenuItem* item = file->addItemWithTitle_action_keyEquivalent(u"Item"_ns, "hear:"_sel, u""_ns);
        item->setTarget(taker);
        item->setTag(tag);
    }
    bar->addItemWithTitle_action_keyEquivalent(u"File"_ns, SEL(), u""_ns)->setSubmenu(file);
    app->setMainMenu(bar);
    constexpr int kF10 = 68, kDown = 108, kReturn = 28, kEscape = 1, kGrave = 41, kAlt = 56, kF = 33, kE = 18;
    for (int key : {kF10, kDown, kReturn}) server->press(key);
    EXPECT_TRUE(until([&] { return chosen == 2; }));
    EXPECT_EQ(app->orderedWindows()->count(), 1u);
    // By the mouse, as soon as the menu is seen.
    const NSRect contents = window->contentRectForFrameRect(window->frame());
    const int x = static_cast<int>(NSMinX(contents)) + 20,
              y = static_cast<int>(NSMaxY(NSScreen::mainScreen()->frame()) - NSMaxY(contents)) - 12;
    auto user = Listener::doing([&](id timer) {
        static_cast<NSTimer*>(timer)->invalidate();
        server->click(x + 10, y + 12 + 5 + 2 * 22 + 11);
    });
    NSTimer* timer = NSTimer::timerWithTimeInterval_target_selector_userInfo_repeats(0.2, user, "hear:"_sel,
                                                                                     nullptr, true);
    NSRunLoop::mainRunLoop()->addTimer_forMode(timer, NSEventTrackingRunLoopMode);
    server->click(x, y);
    EXPECT_TRUE(until([&] { return chosen == 3; }));
    // Nobody else is shut out afterwards: keys go to the view again, and a dead key is forgotten.
    XServerScope::run({"setxkbmap", "-layout", "de"});
    for (int key : {kGrave, kF10, kEscape, 30}) server->press(key);
    EXPECT_TRUE(untilLogged("text a"));
    server->press(kGrave);
    server->key(kAlt, true);
    server->press(kF);
    server->key(kAlt, false);
    for (int key : {kEscape, kE}) server->press(key);
    EXPECT_TRUE(untilLogged("text e"));
    app->setMainMenu(nullptr);
}

TEST_F(XCBApplicationTest, ShowsWhatIsComposed) {
    TestInputMethod method;
    start();
    EXPECT_TRUE(until([&] { return method.focusCount > 0; }));
    // A machine that stalls makes the method too late, and the key a letter.
    for (int i = 0; i < 20 && (view->log.empty() || view->log.back() == "text a"); ++i) {
        view->log.clear();
        server->press(30);
        ASSERT_TRUE(until([&] { return !view->log.empty(); }));
    }
    EXPECT_THAT(view->log.back(), HasSubstr("啊"));
    server->press(28);
    EXPECT_TRUE(untilLogged("text 啊"));
}

}  // namespace
