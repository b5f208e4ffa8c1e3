// SPDX-License-Identifier: Apache-2.0
// Random events, and a program that removes and ends what they meet.
#include "Interface/NSApplication.h"
#include "Interface/NSPanel.h"
#include "InterfaceScope.h"
#include "RandomSteps.h"
#include "TestViews.h"

namespace {

struct RandomEvents : ::testing::Test {
    int below(int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); }
    float coordinate() { return static_cast<float>(below(200)); }

    Retained<TestView> makeView(int depth) {
        auto view = TestView::make({{coordinate(), coordinate()}, {coordinate(), coordinate()}},
                                   below(2) ? NSColor::redColor() : nullptr, below(2));
        view->opaque = below(2);
        view->whenDrawn = [this] { act(15); };
        view->whenPressed = [this] { act(2); };
        for (int i = below(4); depth > 0 && i > 0; --i) view->addSubview(makeView(depth - 1).get());
        return view;
    }

    NSView* anyView(NSView* from) {
        NSArray* inner = from->subviews();
        if (!inner->count() || below(3) == 0) return from;
        return anyView(static_cast<NSView*>(inner->objectAtIndex(random() % inner->count())));
    }
    NSWindow* anyWindow() {
        NSArray* windows = screen.app->windows();
        return windows->count() ? static_cast<NSWindow*>(windows->objectAtIndex(random() % windows->count()))
                                : nullptr;
    }

    // One time in so many, the program does something drastic.
    void act(int seldom) {
        if (below(seldom)) return;
        NSWindow* window = anyWindow();
        if (!window) return;
        const auto view = Retained<NSView>::retaining(anyView(window->contentView()));
        switch (below(12)) {
            case 0:
                return view->removeFromSuperview();
            case 1:
                return window->setContentView(makeView(2).get());
            case 2:
                return window->close();
            case 3:
                return view->setFrame({{coordinate(), coordinate()}, {coordinate(), coordinate()}});
            case 4:
                return view->setHidden(!view->isHidden());
            case 5:
                return window->setContentSize({coordinate() + 1, coordinate() + 1});
            case 6:
                throw NSException(NSGenericException, "");
            case 7:
                return view->addSubview(makeView(1).get());
            case 8:
                return view->scrollRect_by(view->bounds(), {coordinate() - 100, coordinate() - 100});
            case 9:
                window->makeFirstResponder(view);
                return;
            case 10:
                return screen.app->stopModal();
            default: {
                NSEvent* event = screen.app->nextEventMatchingMask_untilDate_inMode_dequeue(
                    NSAnyEventMask, nullptr, NSEventTrackingRunLoopMode, below(2));
                if (event) screen.app->sendEvent(event);
            }
        }
    }

    void play() {
        HeadlessBackend& backend = *screen.backend;
        switch (below(10)) {
            case 0:
                return backend.movePointer({below(500), 500 + below(524)});
            case 1:
                return backend.pressButton(1 + below(3));
            case 2:
                return backend.releaseButton(1 + below(3));
            case 3:
                return backend.scroll(0, static_cast<float>(below(5) - 2));
            case 4:
                return backend.setModifiers(random() & 31);
            case 5: {
                BackendKey key;
                key.characters = std::u16string(1, below(2) ? u'a' : u'\t');
                key.charactersIgnoringModifiers = key.shortcutCharacters = key.characters;
                return backend.key(key);
            }
            case 6:
                return backend.focusWindow(static_cast<BackendWindow>(below(5)));
            case 7:
                return backend.setBusy(below(4) == 0);
            case 8:
                return (void)reasonOf([&] { act(1); });
            default:
                if (NSWindow* window = anyWindow(); window && below(4) == 0)
                    backend.moveWindow(screen.number(window),
                                       {below(300), 500 + below(300), below(300), below(300)});
        }
    }

    InterfaceScope screen;
    std::mt19937 random{7};
};

TEST_F(RandomEvents, LeaveTheProgramWhole) {
    const LogSinkScope quiet([](const LogEntry&) {});
    for (int step = 0; step < randomSteps(20'000); ++step) {
        AutoreleasePool pool;
        while (screen.app->windows()->count() < 3)
            screen.window({{coordinate(), coordinate()}, {200, 200}})->setContentView(makeView(3).get());
        play();
        if (below(3) == 0) screen.turn();
    }
    screen.backend->setBusy(false);
    screen.turn();
    for (id window : screen.app->orderedWindows())
        EXPECT_FALSE(static_cast<NSWindow*>(window)->viewsNeedDisplay());
}

}  // namespace
