// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRPageView.h"

#include "FormatScope.h"
#include "Interface/NSClipView.h"
#include "Writer/Windows/WRZoomView.h"

namespace {

constexpr float kMargin = 20;

struct PageViewTest : ::testing::Test {
    PageViewTest() {
        registerLibrary(windowsLibrary);
        window = screen.window({{100, 100}, {300, 300}});
        scrollView = NSScrollView::initWithFrame({{0, 0}, {300, 300}});
        scrollView->setHasVerticalScroller(true);
        window->setContentView(scrollView);
        view = WRPageView::create(NSTextStorage::initWithString(FormatScope::numberedLines(500).get()),
                                  FormatScope::smallPages(kMargin));
        zoomView = WRZoomView::create(view);
        scrollView->setDocumentView(zoomView);
    }
    void findAllPages() {
        while (!view->isComplete()) screen.turn();
    }

    InterfaceScope screen;
    Retained<NSWindow> window;
    Retained<NSScrollView> scrollView;
    Retained<WRPageView> view;
    Retained<WRZoomView> zoomView;
};

TEST_F(PageViewTest, FindsPagesWhenNothingElseIsToBeDone) {
    EXPECT_EQ(view->pageCount(), 1u);
    EXPECT_FALSE(view->isComplete());
    findAllPages();
    const NSUInteger count = view->pageCount();
    EXPECT_GT(count, 30u);
    const NSRect last = view->frameOfPage(count - 1);
    EXPECT_GT(NSMaxY(view->frame()), NSMaxY(last));
    EXPECT_LT(NSMaxY(view->frame()), NSMaxY(last) + NSHeight(last));
    for (NSUInteger page : {NSUInteger{0}, count / 2, count - 1})
        EXPECT_EQ(view->pageAtHeight(NSMidY(view->frameOfPage(page))), page);
    EXPECT_EQ(view->pageAtHeight(-100), 0u);
    EXPECT_EQ(view->pageAtHeight(1e7F), count - 1);
    EXPECT_FALSE(WRPageView::create(NSTextStorage::init(), FormatScope::smallPages(100)));
}

TEST_F(PageViewTest, SelectsOnEveryPage) {
    findAllPages();
    const NSRect page = view->frameOfPage(2);
    view->scrollPoint({0, page.origin.y});
    screen.turn();
    screen.click(view, {page.origin.x + kMargin + 2, page.origin.y + kMargin + 8}, 2);
    const NSRange word = view->selectedRange();
    const NSRect shown = view->rectForCharacterRange(word);
    EXPECT_GT(word.length, 1u);
    EXPECT_TRUE(NSContainsRect(NSInsetRect(page, kMargin - 1, kMargin - 1), shown)) << shown;
}

// There is no caret to move in a text that is only read.
TEST_F(PageViewTest, ScrollsByKeys) {
    findAllPages();
    view->setEditable(false);
    window->makeFirstResponder(view);
    const auto place = [&] { return NSMinY(view->visibleRect()); };
    screen.press(NSDownArrowFunctionKey);
    const float line = place();
    EXPECT_GT(line, 0);
    EXPECT_LT(line, 50);
    screen.press(NSUpArrowFunctionKey);
    EXPECT_EQ(place(), 0);
    screen.press(u' ');
    EXPECT_GT(place(), 150);
    screen.press(NSEndFunctionKey, NSCommandKeyMask);
    EXPECT_EQ(NSMaxY(view->visibleRect()), NSMaxY(view->bounds()));
    screen.press(NSHomeFunctionKey, NSCommandKeyMask);
    EXPECT_EQ(place(), 0);
    EXPECT_EQ(view->selectedRange(), (NSRange{0, 0}));
}

TEST_F(PageViewTest, ShowsTheMarginAboveTheBeginning) {
    window->makeFirstResponder(view);
    for (const auto& [height, modifiers] :
         {std::pair{300.0F, 0U}, {300.0F, unsigned{NSShiftKeyMask}}, {40.0F, 0U}}) {
        window->setContentSize({300, height});
        screen.press(NSEndFunctionKey, NSCommandKeyMask);
        screen.press(NSHomeFunctionKey, NSCommandKeyMask | modifiers);
        screen.turn();
        const NSRect seen = view->visibleRect(), caret = view->caretRectForCharacterAtIndex(0);
        EXPECT_EQ(NSMinY(seen) == 0, height > 40) << height;
        EXPECT_TRUE(NSPointInRect({NSMinX(caret), NSMidY(caret)}, seen)) << height;
    }
}

TEST_F(PageViewTest, EditsOnEveryPage) {
    window->setContentSize({300, 100});  // less than a page
    findAllPages();
    const NSUInteger count = view->pageCount(), length = view->string()->length();
    window->makeFirstResponder(view);
    screen.press(NSEndFunctionKey, NSCommandKeyMask);
    screen.turn();
    EXPECT_TRUE(NSIntersectsRect(view->visibleRect(), view->frameOfPage(count - 1)));
    for (int i = 0; i < 30; ++i) screen.type(u"x\n");
    EXPECT_GT(view->pageCount(), count) << "at once, where the caret is";
    EXPECT_TRUE(NSPointInRect(view->caretRectForCharacterAtIndex(length + 60).origin, view->visibleRect()));
    // A line more on the first page moves lines through all others, when there is time.
    const NSUInteger last = view->pages()->pages()[count - 2].range.location;
    view->setSelectedRange({0, 0});
    screen.type(u"\n");
    findAllPages();
    EXPECT_LT(view->pages()->pages()[count - 2].range.location, last + 1);
    screen.press(NSEndFunctionKey, NSCommandKeyMask);
    send(view.get(), "selectAll:"_sel, id(nullptr));
    screen.press(NSDeleteFunctionKey);
    EXPECT_EQ(view->pageCount(), 1u);
    screen.turn();
    EXPECT_TRUE(NSPointInRect(view->caretRectForCharacterAtIndex(0).origin, view->visibleRect()));
    send(view.get(), "undo:"_sel, id(nullptr));
    findAllPages();
    EXPECT_EQ(view->string()->length(), length + 61);
    EXPECT_GT(view->pageCount(), count);
}

TEST_F(PageViewTest, KeepsWhatIsSeenInPlaceWhenPagesAreSetAgain) {
    findAllPages();
    view->scrollPoint({0, 1000});
    screen.turn();
    const NSRect seen = view->visibleRect();
    const NSUInteger index = view->characterIndexForInsertionAtPoint({NSMidX(seen), NSMinY(seen) + 10});
    const auto height = [&](NSUInteger place) {
        findAllPages();
        screen.turn();
        return NSMinY(view->caretRectForCharacterAtIndex(place)) - NSMinY(view->visibleRect());
    };
    const float before = height(index);
    view->textStorage()->replaceCharactersInRange_withString({0, 0}, u"A\nB\nC\n"_ns);
    EXPECT_NEAR(height(index + 6), before, 1);
    EXPECT_NE(NSMinY(view->visibleRect()), NSMinY(seen));
    // Lines may be other ones when the words of a language can be divided.
    NSNotificationCenter::defaultCenter()->postNotificationName_object(
        NSHyphenationPatternsDidLoadNotification, u"de"_ns);
    EXPECT_NEAR(height(index + 6), before, 1);
}

TEST_F(PageViewTest, IsShownLargerAndSmaller) {
    findAllPages();
    view->scrollPoint({0, 1000});
    const float middle = NSMidY(view->visibleRect());
    zoomView->setZoom(2);
    EXPECT_EQ(zoomFactor(view), 2.0);
    EXPECT_NEAR(NSMidY(view->visibleRect()), middle, 1);
    EXPECT_NEAR(NSHeight(view->visibleRect()), 150, 10);
    zoomView->setZoom(0);
    EXPECT_EQ(zoomView->zoom(), 0.1);
    EXPECT_GT(NSHeight(view->visibleRect()), 2000);
    // In the middle of the room that is left.
    const NSRect frame = view->convertRect_toView(view->bounds(), scrollView->contentView());
    EXPECT_NEAR(NSMidX(frame), NSMidX(scrollView->contentView()->bounds()), 1);
}

}  // namespace
