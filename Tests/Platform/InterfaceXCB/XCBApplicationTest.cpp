// SPDX-License-Identifier: Apache-2.0
// Tests of a whole application on an X server, by somebody with keys and a mouse.
#include <signal.h>

#include "../Interface/TestViews.h"
#include "BackendDriver.h"
#include "Interface/Events/ApplicationState.h"
#include "Interface/NSApplication.h"
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

TEST_F(XCBApplicationTest, ShowsWhatIsComposed) {
    TestInputMethod method;
    start();
    EXPECT_TRUE(until([&] { return method.focusCount > 0; }));
    server->press(30);
    EXPECT_TRUE(until([&] { return !view->log.empty(); }));
    EXPECT_THAT(view->log.back(), HasSubstr("啊"));
    server->press(28);
    EXPECT_TRUE(untilLogged("text 啊"));
}

TEST_F(XCBApplicationTest, GoesOnWithoutItsDisplay) {
    start();
    LogLines log;
    auto listener = Listener::to(NSApplicationDidLoseDisplayNotification);
    server->server().end(SIGKILL);
    EXPECT_TRUE(until([&] { return !listener->heard.empty(); }));
    EXPECT_THAT(log.lines, Contains(HasSubstr("The display is lost")));
    view->setNeedsDisplay(true);
    window->setFrame_display({{0, 0}, {500, 400}}, true);
    window->orderOut(nullptr);
}

}  // namespace
