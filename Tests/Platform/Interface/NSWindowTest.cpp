// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSWindow.h"

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
