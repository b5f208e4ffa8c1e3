// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSApplication.h"

#include "EnvironmentScope.h"
#include "Foundation/NSTimer.h"
#include "Interface/Events/ApplicationState.h"
#include "Interface/NSMenu.h"
#include "Interface/NSPanel.h"
#include "Interface/Windows/WindowState.h"
#include "InterfaceScope.h"
#include "TestClasses.h"
#include "TestViews.h"

namespace {

/// What a delegate was told, and what it replies.
struct Delegate {
    std::vector<std::string> log;
    bool allows = true;
    int reply = NSTerminateNow;
    std::function<void()> whenCalled;
} delegate;

template <FixedString Name>
void note(Object*, NSNotification*) {
    delegate.log.push_back(std::string(Name.view()));
    if (delegate.whenCalled) delegate.whenCalled();
}
bool shouldClose(Object*, id) { return delegate.allows; }
int shouldTerminate(Object*, id) { return delegate.reply; }
bool endsWithLastWindow(Object*, id) { return delegate.allows; }
void perform(Object* self, id) { delegate.log.push_back(self->isa()->name()); }

struct NSApplicationTest : ::testing::Test {
    NSApplicationTest() {
        static Class* cls = [] {
            Class* made = makeClass<"windowDidResize:", &note<"resize">>("TestDelegate");
            addMethod<"windowDidMove:", &note<"move">>(made);
            addMethod<"windowWillClose:", &note<"close">>(made);
            addMethod<"windowDidBecomeKey:", &note<"key">>(made);
            addMethod<"windowDidResignKey:", &note<"no key">>(made);
            addMethod<"applicationWillTerminate:", &note<"end">>(made);
            addMethod<"applicationDidResignActive:", &note<"inactive">>(made);
            addMethod<"windowShouldClose:", &shouldClose>(made);
            addMethod<"applicationShouldTerminate:", &shouldTerminate>(made);
            addMethod<"applicationShouldTerminateAfterLastWindowClosed:", &endsWithLastWindow>(made);
            return addMethod<"doIt:", &perform>(made);
        }();
        delegate = {};
        object = instanceOf(cls);
    }

    /// Calls the function from a timer, a moment from now.
    static void soon(std::function<void()> action) {
        auto observer = TestObserver::doing([action](NSNotification*) { action(); });
        NSRunLoop::mainRunLoop()->perform([observer, action] { action(); },
                                          NSArray::of({NSRunLoopCommonModes}));
    }

    InterfaceScope screen;
    Retained<Object> object;
};

TEST_F(NSApplicationTest, WindowsFollowTheUserAndTellTheirDelegate) {
    auto window = screen.window({{100, 100}, {200, 100}});
    window->setDelegate(object);
    screen.backend->moveWindow(screen.number(window), {50, 60, 300, 200});
    screen.turn();
    EXPECT_EQ(window->contentView()->frame().size, (NSSize{300, 200}));
    EXPECT_EQ(window->convertBaseToScreen({0, 0}), (NSPoint{50, 1024 - 260}));
    EXPECT_THAT(delegate.log, ElementsAre("resize", "move"));
    delegate.log.clear();
    delegate.allows = false;
    screen.backend->clickCloseButton(screen.number(window));
    screen.turn();
    EXPECT_TRUE(window->isVisible());
    delegate.allows = true;
    screen.backend->clickCloseButton(screen.number(window));
    screen.turn();
    EXPECT_FALSE(window->isVisible());
    EXPECT_THAT(delegate.log, ElementsAre("close", "no key"));
    EXPECT_EQ(screen.app->windows()->count(), 0u);
}

TEST_F(NSApplicationTest, AWindowOnTheScreenIsKeptAliveByIt) {
    auto window = screen.window({{100, 100}, {200, 100}});
    const WeakHandle watched(window);
    window = nullptr;
    screen.turn();
    ASSERT_TRUE(watched.object());
    {
        AutoreleasePool pool;
        static_cast<NSWindow*>(watched.object().get())->close();
    }
    screen.turn();
    EXPECT_FALSE(watched.object());
}

TEST_F(NSApplicationTest, AMainMenuReachesAllWindowsThoughOneEnds) {
    const auto make = [](NSUInteger style) {
        return NSWindow::initWithContentRect_styleMask_backing_defer({{0, 0}, {200, 100}}, style,
                                                                     NSBackingStoreBuffered, true);
    };
    auto bare = make(NSBorderlessWindowMask), first = make(NSTitledWindowMask),
         second = make(NSTitledWindowMask), third = make(NSTitledWindowMask);
    const float height = NSHeight(second->frame());
    const WeakHandle watched(bare);
    first->setDelegate(object);
    delegate.whenCalled = [&] { bare = nullptr; };
    const auto menu = NSMenu::init();
    screen.app->setMainMenu(menu);
    EXPECT_THAT(delegate.log, ElementsAre("resize"));
    EXPECT_FALSE(watched.object());
    for (NSWindow* window : {first.get(), second.get(), third.get()})
        EXPECT_GT(NSHeight(window->frame()), height);
}

TEST_F(NSApplicationTest, TheKeyWindowIsTheOneWithTheFocus) {
    screen.app->setDelegate(object);
    auto first = screen.window({{100, 100}, {200, 100}}), second = screen.window({{400, 100}, {200, 100}});
    EXPECT_EQ(screen.app->keyWindow(), second.get());
    screen.click(first->contentView(), {5, 5});
    EXPECT_EQ(screen.app->keyWindow(), first.get());
    EXPECT_EQ(screen.app->orderedWindows()->objectAtIndex(0), first.get());
    first->orderOut(nullptr);
    EXPECT_EQ(screen.app->keyWindow(), second.get());
    auto panel = NSPanel::initWithContentRect_styleMask_backing_defer({{0, 0}, {50, 50}}, NSTitledWindowMask,
                                                                      NSBackingStoreBuffered, true);
    panel->setHidesOnDeactivate(true);
    panel->makeKeyAndOrderFront(nullptr);
    EXPECT_TRUE(panel->isKeyWindow() && second->isMainWindow());
    screen.turn();
    EXPECT_TRUE(screen.app->isActive());
    screen.backend->focusWindow(0);
    screen.turn();
    EXPECT_TRUE(screen.app->isActive()) << "another window of the program may get the focus";
    screen.wait(0.2);
    EXPECT_FALSE(screen.app->isActive() || panel->isVisible());
    EXPECT_EQ(screen.app->keyWindow(), nullptr);
    EXPECT_THAT(delegate.log, ElementsAre("inactive"));
    screen.backend->focusWindow(screen.number(second));
    screen.turn();
    EXPECT_TRUE(panel->isVisible() && second->isKeyWindow());
}

TEST_F(NSApplicationTest, ActionsGoToTheFirstThatHasThem) {
    auto window = screen.window({{100, 100}, {200, 100}});
    const SEL action = "doIt:"_sel;
    EXPECT_FALSE(screen.app->sendAction_to_from(action, nullptr, nullptr));
    window->setDelegate(object);
    AutoreleasePool pool;
    EXPECT_EQ(screen.app->targetForAction(action), object.get());
    EXPECT_TRUE(screen.app->sendAction_to_from(action, nullptr, nullptr));
    auto view = TestView::make({{0, 0}, {5, 5}});
    window->contentView()->addSubview(view);
    window->makeFirstResponder(view);
    EXPECT_EQ(screen.app->targetForAction("setMarkedText:selectedRange:"_sel), view.get());
    EXPECT_FALSE(screen.app->sendAction_to_from(action, view, nullptr));
    EXPECT_THAT(delegate.log, ElementsAre("TestDelegate"));
    pool.drain();
    object = nullptr;
    EXPECT_EQ(window->delegate(), nullptr);
}

TEST_F(NSApplicationTest, AModalWindowKeepsEventsFromTheOthers) {
    auto window = screen.window({{100, 100}, {200, 100}}), modal = screen.window({{400, 100}, {200, 100}});
    auto behind = TestView::make({{0, 0}, {50, 50}}), inside = TestView::make({{0, 0}, {50, 50}});
    window->contentView()->addSubview(behind);
    modal->contentView()->addSubview(inside);
    inside->whenPressed = [&] { screen.app->stopModalWithCode(7); };
    soon([&] {
        EXPECT_EQ(screen.app->modalWindow(), modal.get());
        for (NSView* view : {static_cast<NSView*>(behind), static_cast<NSView*>(inside)}) {
            screen.backend->movePointer(screen.placeOf(view, {5, 5}));
            screen.backend->pressButton(1);
            screen.backend->releaseButton(1);
        }
    });
    EXPECT_EQ(screen.app->runModalForWindow(modal), 7);
    EXPECT_THAT(behind->log, IsEmpty());
    EXPECT_EQ(inside->log.size(), 1u);
    EXPECT_EQ(screen.backend->beeps(), 1);
    EXPECT_EQ(screen.app->modalWindow(), nullptr);
    // A window that goes away ends its run.
    soon([&] { modal->close(); });
    EXPECT_EQ(screen.app->runModalForWindow(modal), NSRunAbortedResponse);
    NSModalSession session = screen.app->beginModalSessionForWindow(window);
    EXPECT_EQ(screen.app->runModalSession(session), NSRunContinuesResponse);
    screen.app->stopModal();
    EXPECT_EQ(screen.app->runModalSession(session), NSRunStoppedResponse);
    screen.app->endModalSession(session);
    EXPECT_EQ(screen.app->runModalSession(session), NSRunAbortedResponse);
    NSModalSession unseen = screen.app->beginModalSessionForWindow(window);
    screen.backend->lose("the cable");
    EXPECT_EQ(screen.app->runModalSession(unseen), NSRunAbortedResponse) << "nobody can press a button";
    screen.app->endModalSession(unseen);
}

TEST_F(NSApplicationTest, EndsAllRunsWhenTheDisplayIsLost) {
    auto window = screen.window({{100, 100}, {200, 100}});
    auto lost = Listener::to(NSApplicationDidLoseDisplayNotification);
    soon([&] {
        soon([&] { screen.backend->lose("the cable"); });
        EXPECT_EQ(screen.app->runModalForWindow(window), NSRunAbortedResponse);
        EXPECT_EQ(lost->takeCount(), 1u);
    });
    screen.app->run();
}

TEST_F(NSApplicationTest, RunHandlesEventsUntilTheEndAndSurvivesExceptions) {
    auto window = screen.window({{100, 100}, {200, 100}});
    screen.app->setDelegate(object);
    auto view = TestView::make({{0, 0}, {50, 50}});
    window->contentView()->addSubview(view);
    view->whenPressed = [] { throw NSException(NSGenericException, "no hand"); };
    soon([&] {
        screen.backend->movePointer(screen.placeOf(view, {5, 5}));
        screen.backend->pressButton(1);
        screen.backend->releaseButton(1);
        soon([&] {
            delegate.reply = NSTerminateCancel;
            screen.app->terminate(nullptr);
            delegate.reply = NSTerminateLater;
            screen.app->terminate(nullptr);
            EXPECT_TRUE(screen.app->isRunning());
            screen.app->replyToApplicationShouldTerminate(true);
        });
    });
    screen.app->run();
    EXPECT_THAT(view->log, ElementsAre("down 1 {5, 5}", "up 1 {5, 5}"));
    EXPECT_THAT(delegate.log, ElementsAre("end"));
    EXPECT_FALSE(screen.app->isRunning());
    // The last window's end is the program's, and nothing to wait for ends a run.
    delegate.reply = NSTerminateNow;
    soon([&] { window->close(); });
    screen.app->run();
    EXPECT_THAT(delegate.log, ElementsAre("end", "end"));
    screen.app->run();
}

TEST_F(NSApplicationTest, AForeignLoopDeliversEvents) {
    auto window = screen.window({{100, 100}, {200, 100}});
    auto view = TestView::make({{0, 0}, {50, 50}}, NSColor::redColor());
    window->contentView()->addSubview(view);
    screen.app->deliverEventsInRunLoop();
    screen.backend->movePointer(screen.placeOf(view, {5, 5}));
    screen.backend->pressButton(1);
    screen.backend->releaseButton(1);
    while (NSRunLoop::mainRunLoop()->performReadyWorkForMode(NSDefaultRunLoopMode)) {
    }
    EXPECT_THAT(view->log, ElementsAre("down 1 {5, 5}", "up 1 {5, 5}"));
    EXPECT_EQ(screen.pixel(view, {5, 5}), 0xFF0000u);
}

TEST_F(NSApplicationTest, EventsWaitInTheQueueByTheirKind) {
    auto window = screen.window({{100, 100}, {200, 100}});
    auto view = TestView::make({{0, 0}, {50, 50}});
    window->contentView()->addSubview(view);
    screen.moveTo(view, {1, 1});
    for (int i = 2; i < 6; ++i) screen.backend->movePointer(screen.placeOf(view, {static_cast<float>(i), 1}));
    screen.backend->pressButton(1);
    auto next = [&](NSUInteger mask, bool dequeue) {
        return screen.app->nextEventMatchingMask_untilDate_inMode_dequeue(mask, nullptr, nullptr, dequeue);
    };
    NSEvent* moved = next(NSMouseMovedMask, true);
    EXPECT_EQ(moved->deltaX(), 4);
    EXPECT_EQ(moved->locationInWindow(), (NSPoint{5, 1}));
    EXPECT_EQ(next(NSMouseMovedMask, true), nullptr);
    NSEvent* pressed = next(NSLeftMouseDownMask, false);
    EXPECT_EQ(next(NSAnyEventMask, true), pressed);
    NSEvent* own =
        NSEvent::otherEventWithType_location_modifierFlags_timestamp_windowNumber_context_subtype_data1_data2(
            NSApplicationDefined, {}, 0, 0, 0, nullptr, 3, 4, 5);
    screen.app->postEvent_atStart(own, true);
    EXPECT_EQ(next(NSApplicationDefinedMask, true)->data2(), 5);
    NSEvent::startPeriodicEventsAfterDelay_withPeriod(0.5, 0.1);
    int count = 0;
    for (double end = screen.clock.now() + 1.05; screen.clock.now() < end;)
        count += screen.app->nextEventMatchingMask_untilDate_inMode_dequeue(
                     NSPeriodicMask, NSDate::dateWithTimeIntervalSinceReferenceDate(end), nullptr, true) !=
                 nullptr;
    EXPECT_EQ(count, 6);
    NSEvent::stopPeriodicEvents();
}

TEST_F(NSApplicationTest, ScreensAreInPointsFromTheLowerLeftOfTheFirst) {
    BackendScreen main, side;
    main.frame = {0, 0, 2000, 1000};
    main.visibleFrame = {0, 50, 2000, 950};
    main.isMain = true;
    side.frame = side.visibleFrame = {2000, -200, 1000, 800};
    main.scale = side.scale = 2;
    side.name = "side";
    screen.backend->setScreens({main, side});
    screen.turn();
    auto* first = static_cast<NSScreen*>(NSScreen::screens()->objectAtIndex(0));
    auto* second = static_cast<NSScreen*>(NSScreen::screens()->objectAtIndex(1));
    EXPECT_EQ(first->frame(), (NSRect{{0, 0}, {1000, 500}}));
    EXPECT_EQ(first->visibleFrame(), (NSRect{{0, 0}, {1000, 475}}));
    EXPECT_EQ(second->frame(), (NSRect{{1000, 200}, {500, 400}}));
    auto window = screen.window({{1100, 250}, {100, 50}});
    EXPECT_TRUE(window->screen()->isEqual(second));
    EXPECT_EQ(window->frame(), (NSRect{{1100, 250}, {100, 50}}));
    EXPECT_EQ(screen.backend->frame(screen.number(window)), (PixelRect{2200, 400, 200, 100}));
    // A title bar is kept on a screen.
    auto lost = screen.window({{5000, 9000}, {100, 50}});
    EXPECT_TRUE(NSIntersectsRect(lost->frame(), NSScreen::mainScreen()->visibleFrame()));
}

TEST_F(NSApplicationTest, APanelOpensOverTheMainWindow) {
    BackendScreen first, second;
    first.frame = first.visibleFrame = {0, 0, 1000, 800};
    first.isMain = true;
    second.frame = second.visibleFrame = {1000, 0, 1000, 800};
    screen.backend->setScreens({first, second});
    screen.turn();
    const struct {
        const char* name;
        NSRect main;
        bool isPanel, wasShown;
        NSPoint place;
    } rows[] = {{"nothing below", {}, true, false, {400, 467}},
                {"above the middle", {{1100, 100}, {600, 400}}, true, false, {1300, 300}},
                {"kept on the screen", {{1850, 700}, {600, 400}}, true, false, {1800, 600}},
                {"shown before", {{1100, 100}, {600, 400}}, true, true, {400, 467}},
                {"a window", {{1100, 100}, {600, 400}}, false, false, {400, 467}}};
    for (const auto& row : rows) {
        const auto main = NSWidth(row.main) > 0 ? screen.window(row.main) : Retained<NSWindow>();
        const NSRect contents{{10, 10}, {200, 100}};
        Retained<NSWindow> window = NSPanel::initWithContentRect_styleMask_backing_defer(
            contents, NSBorderlessWindowMask, NSBackingStoreBuffered, true);
        if (!row.isPanel)
            window = NSWindow::initWithContentRect_styleMask_backing_defer(contents, NSBorderlessWindowMask,
                                                                           NSBackingStoreBuffered, true);
        if (row.wasShown) window->orderFront(nullptr);
        window->center();
        EXPECT_EQ(window->frame().origin, row.place) << row.name;
        window->orderOut(nullptr);
        if (main) main->close();
    }
}

TEST_F(NSApplicationTest, FramesIncludeWhatIsAroundWindowsAndAreKeptByName) {
    screen.backend->setFrameExtents({2, 20, 2, 4});
    auto window = screen.window({{100, 100}, {200, 100}});
    EXPECT_EQ(window->frame(), (NSRect{{98, 96}, {204, 124}}));
    window->setFrame_display({{10, 20}, {304, 224}}, true);
    EXPECT_EQ(window->contentView()->frame().size, (NSSize{300, 200}));
    window->saveFrameUsingName(u"Letter"_ns);
    auto other = screen.window({{100, 100}, {200, 100}});
    EXPECT_TRUE(other->setFrameUsingName(u"Letter"_ns));
    EXPECT_EQ(other->frame(), window->frame());
    other->zoom(nullptr);
    screen.turn();
    EXPECT_TRUE(other->isZoomed());
    EXPECT_EQ(other->contentView()->frame().size, NSScreen::mainScreen()->visibleFrame().size);
    other->miniaturize(nullptr);
    screen.turn();
    EXPECT_TRUE(other->isMiniaturized());
}

TEST_F(NSApplicationTest, APictureThatIsStillBeingSentDelaysTheNext) {
    auto window = screen.window({{100, 100}, {200, 100}});
    auto view = TestView::make({{0, 0}, {50, 50}}, NSColor::redColor());
    screen.backend->setBusy(true);
    window->contentView()->addSubview(view);
    screen.turn();
    EXPECT_THAT(view->drawn, IsEmpty());
    EXPECT_FALSE(view->lockFocusIfCanDraw());
    screen.backend->setBusy(false);
    screen.turn();
    EXPECT_EQ(screen.pixel(view, {5, 5}), 0xFF0000u);
    view->lockFocus();
    EXPECT_EQ(NSView::focusView(), view.get());
    NSColor::greenColor()->set();
    NSRectFill({{0, 0}, {100, 100}});
    view->unlockFocus();
    EXPECT_EQ(screen.pixel(view, {5, 5}), 0x00FF00u);
    EXPECT_NE(screen.pixel(view, {60, 5}), 0x00FF00u);
}

TEST(NSApplicationDisplay, SaysThatAWishMeansNothing) {
    const EnvironmentScope display("DISPLAY", nullptr), wish("PELVOR_DISPLAY", "wall");
    AutoreleasePool pool;
    ApplicationState::end();
    LogLines log;
    EXPECT_FALSE(NSApplication::sharedApplication()->hasDisplay());
    EXPECT_THAT(log.lines, ElementsAre(HasSubstr("PELVOR_DISPLAY is \"wall\"")));
    ApplicationState::end();
}

}  // namespace
