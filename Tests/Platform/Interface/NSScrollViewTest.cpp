// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSScrollView.h"

#include "Foundation/NSNotificationCenter.h"
#include "Interface/InterfaceLibrary.h"
#include "InterfaceScope.h"
#include "Text/NSColor.h"

namespace {

extern Library stripesLibrary;

/// Stripes, ten points each, whose shade tells their place; notes what it draws.
class Stripes : public NSView {
    PELVOR_CLASS(Stripes, NSView);
    PELVOR_INHERITED_CREATORS(initWithFrame);

  public:
    bool isFlipped() override { return flips; }
    bool isOpaque() override { return true; }
    void drawRect(NSRect dirty) override {
        drawn += NSHeight(dirty);
        for (float y = 0; y < NSHeight(bounds()); y += 10) {
            NSColor::colorWithCalibratedWhite_alpha(y / NSHeight(bounds()), 1)->set();
            NSRectFill(NSIntersectionRect({{0, y}, {NSWidth(bounds()), 10}}, dirty));
        }
    }
    NSView* headerView() { return header; }
    Retained<NSView> header;
    float drawn = 0;
    bool flips = true;
};
PELVOR_DEFINE_CLASS(Stripes, stripesLibrary) { methods.instance<"headerView", &Stripes::headerView>(); }
constexpr Library* kDependencies[] = {&interfaceLibrary};
constinit Library stripesLibrary{"TestStripes", kDependencies, kClassesOf<Stripes>, {}};

struct NSScrollViewTest : ::testing::Test {
    NSScrollViewTest() {
        scrollView->setHasVerticalScroller(true);
        scrollView->setHasHorizontalScroller(true);
        scrollView->setDocumentView(document);
        window->contentView()->addSubview(scrollView);
        screen.turn();
        document->drawn = 0;
    }
    NSPoint origin() { return scrollView->contentView()->bounds().origin; }
    /// What is seen has to be what a full drawing shows.
    bool looksRight() {
        const auto picture = [&] {
            const BackendImage* image = screen.backend->picture(screen.number(window));
            return std::string(reinterpret_cast<const char*>(image->pixels),
                               static_cast<std::size_t>(image->bytesPerRow * image->height));
        };
        const std::string seen = picture();
        window->display();
        return seen == picture();
    }

    InterfaceScope screen;
    Retained<NSWindow> window = screen.window({{50, 50}, {212, 112}});
    Retained<NSScrollView> scrollView = NSScrollView::initWithFrame({{0, 0}, {212, 112}});
    Retained<Stripes> document = Stripes::initWithFrame({{0, 0}, {400, 1000}});
};

TEST_F(NSScrollViewTest, PlacesItsParts) {
    EXPECT_EQ(scrollView->contentSize(), (NSSize{200, 100}));
    EXPECT_EQ(scrollView->documentVisibleRect(), (NSRect{{0, 0}, {200, 100}}));
    EXPECT_EQ(scrollView->verticalScroller()->knobProportion(), 0.1F);
    scrollView->setBorderType(NSLineBorder);
    EXPECT_EQ(scrollView->contentSize(), (NSSize{198, 98}));
    EXPECT_EQ(NSScrollView::contentSizeForFrameSize_hasHorizontalScroller_hasVerticalScroller_borderType(
                  {212, 112}, true, true, NSLineBorder),
              scrollView->contentSize());
    scrollView->setBorderType(NSNoBorder);
    scrollView->setAutohidesScrollers(true);
    for (const auto& [size, width, height] : {std::tuple<NSSize, float, float>{{200, 100}, 212, 112},
                                              {{213, 100}, 212, 100},
                                              {{205, 113}, 200, 100},
                                              {{200, 113}, 200, 112}}) {
        document->setFrameSize(size);
        EXPECT_EQ(scrollView->contentSize(), (NSSize{width, height})) << size;
    }
    document->header = NSView::initWithFrame({{0, 0}, {400, 20}});
    scrollView->tile();
    EXPECT_EQ(scrollView->contentSize().height, 92);
}

TEST_F(NSScrollViewTest, ScrollsByWheelScrollersAndProgram) {
    screen.scroll(document, {5, 5}, 0, 3);
    EXPECT_EQ(origin(), (NSPoint{0, 48}));
    screen.scroll(document, {5, 55}, 0, -9);
    EXPECT_EQ(origin(), (NSPoint{0, 0}));
    NSScroller* scroller = scrollView->verticalScroller();
    screen.click(scroller, {6, 90});
    EXPECT_EQ(origin(), (NSPoint{0, 84}));
    screen.drag(scroller, {6, 10}, {6, 40});
    EXPECT_NEAR(origin().y, 84 + 30 * 900 / 76.0, 6);
    document->scrollPoint({30, 2000});
    EXPECT_EQ(origin(), (NSPoint{30, 900}));
    EXPECT_EQ(scroller->floatValue(), 1);
    EXPECT_TRUE(document->scrollRectToVisible({{0, 890}, {10, 5}}));
    EXPECT_EQ(origin(), (NSPoint{0, 890}));
    EXPECT_FALSE(document->scrollRectToVisible({{0, 950}, {10, 5}}));
    document->setFrameSize({400, 300});
    EXPECT_EQ(origin(), (NSPoint{0, 200})) << "what is shown stays inside the document";
}

TEST_F(NSScrollViewTest, PagesOnWhileTheButtonIsHeld) {
    NSScroller* scroller = scrollView->verticalScroller();
    screen.moveTo(scroller, {6, 60});
    screen.down();
    screen.turn();
    screen.wait(5);
    const NSRect knob = scroller->rectForPart(NSScrollerKnob);
    EXPECT_TRUE(NSMinY(knob) <= 60 && NSMaxY(knob) > 60) << knob;
    screen.up();
    const NSPoint place = origin();
    screen.wait(1);
    EXPECT_EQ(origin(), place);
}

TEST_F(NSScrollViewTest, DrawsOnlyWhatComesIntoSight) {
    for (const bool flips : {true, false}) {
        document->removeFromSuperview();
        document->flips = flips;
        scrollView->setDocumentView(document);
        document->scrollPoint({0, 400});
        screen.turn();
        for (const NSPoint& by : {NSPoint{0, 7}, {0, -30}, {5, 0}, {-3, 20}, {0, 99}}) {
            document->drawn = 0;
            document->scrollPoint({origin().x + by.x, origin().y + by.y});
            screen.turn();
            const float strip = by.x == 0 ? std::abs(by.y) : 100;
            EXPECT_LE(document->drawn, strip + 2) << by;
            EXPECT_TRUE(looksRight()) << flips << by;
        }
    }
}

TEST_F(NSScrollViewTest, OutlivesItsParts) {
    scrollView->contentView()->setDocumentView(nullptr);
    EXPECT_EQ(scrollView->documentView(), nullptr);
    scrollView->setHasVerticalScroller(false);
    scrollView->setDocumentView(document);
    scrollView = nullptr;
    EXPECT_EQ(window->contentView()->subviews()->count(), 1u);
    document->superview()->superview()->removeFromSuperview();
    document->setFrameSize({1, 1});
    EXPECT_THAT(RAISED(NSScrollView::initWithFrame({})->setContentView(nullptr)),
                HasSubstr("clip view is null"));
}

}  // namespace
