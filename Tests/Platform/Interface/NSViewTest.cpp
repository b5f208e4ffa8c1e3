// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSView.h"

#include "Interface/NSCursor.h"
#include "InterfaceScope.h"
#include "TestViews.h"
#include "Text/NSFont.h"
#include "Text/NSString-Drawing.h"
#include "Text/TextAttributes.h"

namespace {

struct NSViewTest : ::testing::Test {
    Retained<TestView> add(NSView* superview, NSRect frame, NSColor* color = nullptr,
                           bool isFlipped = false) {
        auto view = TestView::make(frame, color, isFlipped);
        superview->addSubview(view);
        return view;
    }

    InterfaceScope screen;
    Retained<NSWindow> window = screen.window({{100, 100}, {200, 100}});
    NSView* content = window->contentView();
};

TEST_F(NSViewTest, CoordinatesAreConvertedThroughFlippedAndScaledViews) {
    auto flipped = add(content, {{10, 20}, {100, 50}}, nullptr, true);
    auto inner = add(flipped, {{5, 5}, {40, 20}});
    inner->setBounds({{100, 0}, {80, 40}});
    struct {
        const char* name;
        NSView* view;
        NSPoint point, inWindow;
    } const rows[] = {
        {"flipped, upper left", flipped, {0, 0}, {10, 70}},
        {"flipped, inside", flipped, {5, 5}, {15, 65}},
        {"scaled, lower left", inner, {100, 0}, {15, 45}},
        {"scaled, upper right", inner, {180, 40}, {55, 65}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.view->convertPoint_toView(row.point, nullptr), row.inWindow);
        EXPECT_EQ(row.view->convertPoint_fromView(row.inWindow, nullptr), row.point);
    }
    EXPECT_EQ(inner->convertRect_toView({{100, 0}, {80, 40}}, flipped), inner->frame());
    EXPECT_EQ(inner->convertSize_toView({80, 40}, nullptr), (NSSize{40, 20}));
    EXPECT_EQ(flipped->convertPoint_fromView({100, 40}, inner), (NSPoint{5, 5}));
}

TEST_F(NSViewTest, ResizingGoesToTheSubviewsByTheirMasks) {
    struct {
        const char* name;
        NSUInteger mask;
        NSRect after;
    } const rows[] = {
        {"nothing", NSViewNotSizable, {{10, 10}, {50, 20}}},
        {"all sizes", NSViewWidthSizable | NSViewHeightSizable, {{10, 10}, {110, 40}}},
        {"to the right and the top", NSViewMinXMargin | NSViewMinYMargin, {{70, 30}, {50, 20}}},
        {"in the middle", NSViewMinXMargin | NSViewMaxXMargin, {{40, 10}, {50, 20}}},
        {"three shares", NSViewMinXMargin | NSViewWidthSizable | NSViewMaxXMargin, {{30, 10}, {70, 20}}},
    };
    std::vector<Retained<TestView>> views;
    for (const auto& row : rows) {
        views.push_back(add(content, {{10, 10}, {50, 20}}));
        views.back()->setAutoresizingMask(row.mask);
    }
    window->setContentSize({260, 120});
    for (std::size_t i = 0; i < views.size(); ++i)
        EXPECT_EQ(views[i]->frame(), rows[i].after) << rows[i].name;
    EXPECT_EQ(content->frame().size, (NSSize{260, 120}));
}

TEST_F(NSViewTest, TheScaleOfBoundsSurvivesAFrameWithoutExtent) {
    auto view = add(content, {{0, 0}, {100, 50}});
    view->setBoundsSize({50, 25});
    view->setFrameSize({0, 0});
    view->setFrameSize({40, 40});
    EXPECT_EQ(view->bounds().size, (NSSize{20, 20}));
    view->scaleUnitSquareToSize({0.5, 0.5});
    EXPECT_EQ(view->bounds().size, (NSSize{40, 40}));
}

TEST_F(NSViewTest, AHitIsTheFrontVisibleViewAlsoAmongMany) {
    std::vector<Retained<TestView>> views;
    for (int i = 0; i < 300; ++i)
        views.push_back(
            add(content, {{static_cast<float>(i % 20) * 10, static_cast<float>(i / 20) * 6}, {10, 6}}));
    auto at = [&](NSPoint point) { return content->superview()->hitTest(point); };
    for (int i = 0; i < 300; ++i)
        ASSERT_EQ(at({static_cast<float>(i % 20) * 10 + 5, static_cast<float>(i / 20) * 6 + 3}),
                  views[i].get());
    auto front = add(content, {{0, 0}, {100, 50}});
    EXPECT_EQ(at({5, 3}), front.get());
    front->setHidden(true);
    EXPECT_EQ(at({5, 3}), views[0].get());
    views[0]->setFrameOrigin({190, 94});
    EXPECT_EQ(at({5, 3}), content);
    EXPECT_EQ(at({195, 98}), views[0].get());
    // The upper edge belongs to an unflipped view, the lower one does not.
    EXPECT_EQ(at({15, 6}), views[1].get());
    EXPECT_EQ(at({500, 6}), nullptr);
}

TEST_F(NSViewTest, OpaqueViewsHideWhatIsBehind) {
    auto back = add(content, {{0, 0}, {200, 100}}, NSColor::redColor());
    auto front = add(content, {{0, 0}, {200, 100}}, NSColor::greenColor());
    screen.turn();
    EXPECT_THAT(back->drawn, IsEmpty());
    EXPECT_EQ(front->drawn.size(), 1u);
    front->opaque = false;
    front->setNeedsDisplayInRect({{0, 0}, {10, 10}});
    screen.turn();
    EXPECT_THAT(back->drawn, ElementsAre(NSRect{{0, 0}, {10, 10}}));
    // What has been moved or hidden is drawn again.
    back->drawn.clear();
    front->setFrame({{100, 0}, {50, 50}});
    screen.turn();
    EXPECT_EQ(screen.pixel(back, {10, 10}), 0xFF0000u);
    EXPECT_EQ(screen.pixel(back, {110, 10}), 0x00FF00u);
    front->removeFromSuperview();
    screen.turn();
    EXPECT_EQ(screen.pixel(back, {110, 10}), 0xFF0000u);
}

TEST_F(NSViewTest, ViewsAreClippedToThoseAroundThem) {
    auto outer = add(content, {{10, 10}, {20, 20}}, NSColor::redColor());
    auto inner = add(outer, {{10, 10}, {50, 50}}, NSColor::greenColor());
    screen.turn();
    EXPECT_EQ(inner->visibleRect(), (NSRect{{0, 0}, {10, 10}}));
    EXPECT_EQ(screen.pixel(content, {25, 25}), 0x00FF00u);
    EXPECT_NE(screen.pixel(content, {35, 35}), 0x00FF00u);
    outer->setHidden(true);
    EXPECT_EQ(inner->visibleRect(), NSZeroRect);
    EXPECT_FALSE(inner->canBecomeKeyView());
}

TEST_F(NSViewTest, TextStandsUprightInFlippedAndUnflippedViews) {
    std::vector<std::uint32_t> pictures[2];
    for (bool isFlipped : {false, true}) {
        auto view = add(content, {{0, 0}, {60, 30}}, NSColor::whiteColor(), isFlipped);
        view->whenDrawn = [] {
            drawInRect_withAttributes(
                u"7F"_ns, {{0, 0}, {60, 30}},
                NSDictionary::of({{NSFontAttributeName, NSFont::systemFontOfSize(20)}}));
        };
        screen.turn();
        for (float y = 0.5F; y < 30; ++y)
            for (float x = 0.5F; x < 60; ++x) pictures[isFlipped].push_back(screen.pixel(content, {x, y}));
        view->removeFromSuperview();
    }
    EXPECT_EQ(pictures[0], pictures[1]);
    EXPECT_THAT(pictures[0], Contains(0x000000u));
}

TEST_F(NSViewTest, ScrollingMovesPixelsAndDrawsOnlyWhatComes) {
    auto view = add(content, {{0, 0}, {200, 100}}, nullptr, true);
    int pass = 0;
    view->whenDrawn = [&] {
        (pass ? NSColor::greenColor() : NSColor::redColor())->set();
        NSRectFill(view->drawn.back());
    };
    screen.turn();
    pass = 1;
    view->drawn.clear();
    view->scrollRect_by({{0, 0}, {200, 100}}, {0, -30});
    screen.turn();
    EXPECT_THAT(view->drawn, ElementsAre(NSRect{{0, 70}, {200, 30}}));
    EXPECT_EQ(screen.pixel(view, {5, 69}), 0xFF0000u);
    EXPECT_EQ(screen.pixel(view, {5, 71}), 0x00FF00u);
}

TEST_F(NSViewTest, FrameChangesArePostedOnce) {
    auto view = add(content, {{0, 0}, {10, 10}});
    int frames = 0, bounds = 0;
    auto observer = TestObserver::doing([&](NSNotification* notice) {
        ++(notice->name()->isEqual(NSViewFrameDidChangeNotification) ? frames : bounds);
    });
    for (NSString* name : {NSViewFrameDidChangeNotification, NSViewBoundsDidChangeNotification})
        NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(observer, "hear:"_sel, name,
                                                                                view);
    view->setFrame({{1, 2}, {30, 40}});
    view->setFrame({{1, 2}, {30, 40}});
    view->setBounds({{5, 5}, {60, 80}});
    EXPECT_EQ(frames, 1);
    EXPECT_EQ(bounds, 1);
    view->setPostsFrameChangedNotifications(false);
    view->setFrameOrigin({9, 9});
    EXPECT_EQ(frames, 1);
    NSNotificationCenter::defaultCenter()->removeObserver(observer);
}

TEST_F(NSViewTest, TheTreeRefusesCirclesAndKeepsItsOrder) {
    auto a = add(content, {{0, 0}, {10, 10}}), b = add(content, {{0, 0}, {10, 10}});
    auto inner = add(a, {{0, 0}, {5, 5}});
    EXPECT_THAT(reasonOf(NSInvalidArgumentException, [&] { inner->addSubview(a); }),
                StartsWith("addSubview: "));
    EXPECT_THAT(reasonOf(NSInvalidArgumentException, [&] { a->addSubview(nullptr); }),
                HasSubstr("the view is null"));
    content->addSubview_positioned_relativeTo(b, NSWindowBelow, a);
    EXPECT_EQ(content->subviews()->objectAtIndex(0), b.get());
    content->replaceSubview_with(a, inner);
    EXPECT_EQ(content->subviews()->count(), 2u);
    EXPECT_EQ(content->subviews()->objectAtIndex(1), inner.get());
    EXPECT_EQ(a->window(), nullptr);
    EXPECT_EQ(inner->ancestorSharedWithView(b), content);
}

TEST_F(NSViewTest, ViewsMayEndWhileTheyDrawOrTakeAPress) {
    auto first = add(content, {{0, 0}, {50, 50}}), second = add(content, {{0, 0}, {50, 50}});
    first->opaque = second->opaque = false;
    bool raises = true;
    first->whenDrawn = [&] {
        if (second) second->removeFromSuperview();
        second = nullptr;
        if (std::exchange(raises, false)) throw NSException(NSGenericException, "no ink");
    };
    screen.turn();
    first->whenPressed = [&] {
        first->removeFromSuperview();
        first = nullptr;
        window->setContentView(nullptr);
    };
    screen.click(first, {5, 5});
    EXPECT_EQ(window->firstResponder(), window.get());
    EXPECT_EQ(first, nullptr);
}

TEST_F(NSViewTest, TabWalksThroughKeyViewsLineByLine) {
    auto right = add(content, {{100, 80}, {50, 15}}), left = add(content, {{0, 78}, {50, 15}});
    auto below = add(content, {{50, 10}, {50, 15}});
    auto mute = add(content, {{10, 40}, {10, 10}});
    mute->takesKeys = false;
    for (TestView* view : {left.get(), right.get(), below.get(), left.get()}) {
        window->selectNextKeyView(nullptr);
        EXPECT_EQ(window->firstResponder(), view);
    }
    window->selectPreviousKeyView(nullptr);
    EXPECT_EQ(window->firstResponder(), below.get());
    right->setNextKeyView(left);
    window->makeFirstResponder(right);
    window->selectNextKeyView(nullptr);
    EXPECT_EQ(window->firstResponder(), left.get());
    left->setHidden(true);
    EXPECT_EQ(window->firstResponder(), window.get());
}

TEST_F(NSViewTest, CursorsAndTrackingFollowThePointerAndTheViews) {
    auto view = TestCursorView::make({{10, 10}, {50, 50}});
    content->addSubview(view);
    const NSTrackingRectTag tag =
        view->addTrackingRect_owner_userData_assumeInside(view->bounds(), view, nullptr, false);
    const BackendWindow number = screen.number(window);
    screen.moveTo(view, {5, 5});
    EXPECT_EQ(screen.backend->cursor(number), BackendCursor::crosshair);
    EXPECT_THAT(view->log, ElementsAre("entered"));
    view->setFrameOrigin({100, 10});
    screen.turn();
    EXPECT_EQ(screen.backend->cursor(number), BackendCursor::arrow);
    EXPECT_THAT(view->log, ElementsAre("entered", "exited"));
    view->removeTrackingRect(tag);
    screen.moveTo(view, {5, 5});
    EXPECT_EQ(view->log.size(), 2u);
    NSCursor::setHiddenUntilMouseMoves(true);
    EXPECT_EQ(screen.backend->cursor(number), BackendCursor::hidden);
    screen.moveTo(view, {6, 6});
    EXPECT_EQ(screen.backend->cursor(number), BackendCursor::crosshair);
}

TEST_F(NSViewTest, ATipComesWhenThePointerRestsAndGoesWithAPress) {
    auto view = add(content, {{10, 10}, {50, 50}});
    auto inner = add(view, {{0, 0}, {20, 20}});
    view->setToolTip(u"Save the document"_ns);
    auto shown = [&] { return screen.app->orderedWindows()->count() - 1; };
    screen.moveTo(inner, {5, 5});
    screen.wait(0.5);
    screen.moveTo(inner, {6, 5});
    screen.wait(0.5);
    EXPECT_EQ(shown(), 0u);
    screen.wait(0.2);
    ASSERT_EQ(shown(), 1u);
    auto* tip = static_cast<NSWindow*>(screen.app->orderedWindows()->objectAtIndex(0));
    EXPECT_LT(NSMaxY(tip->frame()), window->convertBaseToScreen({0, 15}).y);
    EXPECT_TRUE(window->isKeyWindow());
    screen.moveTo(inner, {7, 5});
    EXPECT_EQ(shown(), 1u);
    screen.click(inner, {7, 5});
    EXPECT_EQ(shown(), 0u);
    auto menu = NSWindow::initWithContentRect_styleMask_backing_defer(window->frame(), NSBorderlessWindowMask,
                                                                      NSBackingStoreBuffered, false);
    menu->orderFront(nullptr);
    screen.moveTo(inner, {7, 5});
    menu->close();
    screen.moveTo(inner, {7, 5});
    screen.wait(1);
    EXPECT_EQ(shown(), 0u) << "another window came and went, but the pointer rested";
    screen.moveTo(inner, {8, 5});
    screen.wait(0.4);
    view->removeFromSuperview();
    view = inner = nullptr;
    screen.wait(1);
    EXPECT_EQ(shown(), 0u);
}

}  // namespace
