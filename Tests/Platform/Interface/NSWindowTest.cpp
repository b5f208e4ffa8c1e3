// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSWindow.h"

#include "Interface/NSMenu.h"
#include "Interface/NSMenuBarView.h"
#include "InterfaceScope.h"
#include "TestViews.h"

namespace {

TEST(NSWindow, ShowsWhatItsViewsDraw) {
    InterfaceScope screen;
    auto window = screen.window({{100, 100}, {200, 100}});
    auto red = TestView::make({{10, 10}, {50, 20}}, NSColor::redColor());
    window->contentView()->addSubview(red);
    screen.turn();
    EXPECT_EQ(screen.pixel(red, {1, 1}), 0xFF0000u);
    EXPECT_EQ(screen.pixel(red, {49, 19}), 0xFF0000u);
    EXPECT_NE(screen.pixel(window->contentView(), {5, 5}), 0xFF0000u);
    EXPECT_EQ(screen.backend->frame(screen.number(window)), (PixelRect{100, 1024 - 200, 200, 100}));
}

TEST(NSWindow, PaintsNoMoreThanWhatIsMarked) {
    InterfaceScope screen(2);
    auto window = screen.window({{100, 100}, {200, 100}});
    auto view = TestView::make({{10, 10}, {50, 20}}, NSColor::redColor());
    window->contentView()->addSubview(view);
    screen.turn();
    screen.backend->takePresented();
    view->drawn.clear();
    view->setNeedsDisplayInRect({{0, 0}, {5, 5}});
    screen.turn();
    EXPECT_EQ(screen.backend->takePresented(), (std::vector<PixelRect>{{20, 200 - 30, 10, 10}}));
    EXPECT_THAT(view->drawn, ElementsAre(NSRect{{0, 0}, {5, 5}}));
    screen.turn();
    EXPECT_THAT(screen.backend->takePresented(), IsEmpty());
}

TEST(NSWindow, GrowsByItsMenuBar) {
    InterfaceScope screen;
    const NSRect asked{{100, 100}, {200, 100}};
    const int bar = static_cast<int>(NSMenuBarView::menuBarHeight());
    const auto contents = [](NSWindow* window) { return window->contentRectForFrameRect(window->frame()); };
    const auto make = [&] {
        return NSWindow::initWithContentRect_styleMask_backing_defer(asked, NSTitledWindowMask,
                                                                     NSBackingStoreBuffered, true);
    };
    auto shown = screen.window(asked), unshown = make(), restored = make();
    const NSRect frame = shown->frame();
    restored->setFrameFromString(NSStringFromRect(frame));
    const auto menu = NSMenu::init();
    screen.app->setMainMenu(menu);
    EXPECT_EQ(restored->frame(), frame) << "or else it grew at each launch";
    auto later = make();
    for (NSWindow* window : {shown.get(), unshown.get(), later.get()}) {
        window->orderFront(nullptr);
        screen.turn();
        EXPECT_EQ(window->contentView()->frame().size, asked.size);
        EXPECT_EQ(contents(window).size, asked.size);
        EXPECT_EQ(screen.backend->frame(screen.number(window)).height, 100 + bar);
        EXPECT_EQ(window->frameRectForContentRect(contents(window)), window->frame());
    }
    EXPECT_EQ(NSMaxY(shown->frame()), NSMaxY(frame));
    EXPECT_EQ(contents(unshown), asked);
    EXPECT_EQ(contents(later), asked);

    later->setContentSize({260, 120});
    EXPECT_EQ(later->contentView()->frame().size, (NSSize{260, 120}));
    later->setFrame_display({{50, 50}, {300, 200}}, true);
    EXPECT_EQ(later->frame(), (NSRect{{50, 50}, {300, 200}}));
    later->setContentSize({260, 1});
    later->setContentSize({260, 120});
    EXPECT_EQ(later->contentView()->frame().size, (NSSize{260, 120}));
    later->setContentMinSize({240, 100});
    EXPECT_EQ(screen.backend->limits(screen.number(later)), (PixelRect{240, 100 + bar, 0, 0}));
    later->setShowsMenuBar(false);
    EXPECT_EQ(screen.backend->limits(screen.number(later)), (PixelRect{240, 100, 0, 0}));
    EXPECT_EQ(later->contentView()->frame().size, (NSSize{260, 120}));
    EXPECT_EQ(screen.backend->frame(screen.number(later)).height, 120);
}

TEST(NSWindow, HandsPressesAndKeysToViews) {
    InterfaceScope screen;
    auto window = screen.window({{100, 100}, {200, 100}});
    auto view = TestView::make({{10, 10}, {50, 20}}, NSColor::redColor());
    window->contentView()->addSubview(view);
    screen.click(view, {5, 6}, 2);
    EXPECT_THAT(view->log, ElementsAre("down 1 {5, 6}", "up 1 {5, 6}", "down 2 {5, 6}", "up 2 {5, 6}"));
    EXPECT_EQ(window->firstResponder(), view.get());
    view->log.clear();
    screen.type(u"ab");
    screen.press(NSLeftArrowFunctionKey, NSShiftKeyMask);
    EXPECT_THAT(view->log, ElementsAre("text a", "text b", "moveLeftAndModifySelection:"));
}

}  // namespace
