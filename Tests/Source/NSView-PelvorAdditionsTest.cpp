// SPDX-License-Identifier: Apache-2.0
#include "NSView-PelvorAdditions.h"

#include "BaseInterfaceLibrary.h"
#include "Foundation/NSRunLoop.h"
#include "Interface/NSClipView.h"
#include "Interface/NSEvent.h"
#include "NSResponder-PelvorAdditions.h"
#include "Prelude.h"

namespace {

extern Library viewAdditionsTestLibrary;

/// A view that is flipped if it is told so.
class FlippableView : public NSView {
    PELVOR_CLASS(FlippableView, NSView);
    PELVOR_INHERITED_CREATORS(initWithFrame);

  public:
    bool isFlipped() override { return flipped; }
    bool flipped = false;
};
PELVOR_DEFINE_CLASS(FlippableView, viewAdditionsTestLibrary) {}

class ZoomingView : public NSView {
    PELVOR_CLASS(ZoomingView, NSView);
    PELVOR_INHERITED_CREATORS(initWithFrame);

  public:
    double zoom() { return factor; }
    double factor = 2.5;
};
PELVOR_DEFINE_CLASS(ZoomingView, viewAdditionsTestLibrary) { methods.instance<"zoom", &ZoomingView::zoom>(); }

constexpr Library* kDependencies[] = {&baseInterfaceLibrary};
constinit Library viewAdditionsTestLibrary{
    "TestViewAdditions", kDependencies, kClassesOf<FlippableView, ZoomingView>, {}};

struct ViewAdditionsTest : ::testing::Test {
    ViewAdditionsTest() { registerLibrary(viewAdditionsTestLibrary); }
    Retained<NSView> add(NSView* superview, NSRect frame) {
        auto view = NSView::initWithFrame(frame);
        superview->addSubview(view);
        return view;
    }
    static void idle() {
        while (NSRunLoop::currentRunLoop()->runMode_beforeDate(NSDefaultRunLoopMode, NSDate::distantPast()))
            continue;
    }

    AutoreleasePool pool;
    Retained<NSView> outer = NSView::initWithFrame({{0, 0}, {100, 100}});
};

TEST_F(ViewAdditionsTest, RemovesAViewWhenNothingElseIsToDo) {
    auto view = add(outer, {{1, 2}, {3, 4}});
    delayedRemoveFromSuperview(view);
    EXPECT_EQ(view->superview(), outer);
    EXPECT_EQ(view->frame(), (NSRect{{1000000, 1000000}, {3, 4}})) << "out of sight";
    EXPECT_EQ(view->retainCount(), 3u);
    idle();
    EXPECT_EQ(view->superview(), nullptr);
    EXPECT_EQ(view->retainCount(), 1u);

    auto alone = NSView::initWithFrame({{5, 6}, {7, 8}});
    delayedRemoveFromSuperview(alone);
    EXPECT_EQ(alone->frame(), (NSRect{{5, 6}, {7, 8}}));
    EXPECT_EQ(alone->retainCount(), 1u);
}

TEST_F(ViewAdditionsTest, RemovesOnceWhatWasAskedForTwice) {
    auto view = add(outer, {});
    delayedRemoveFromSuperview(view);
    delayedRemoveFromSuperview(view);
    idle();
    EXPECT_EQ(view->superview(), nullptr);
    EXPECT_EQ(view->retainCount(), 2u) << "the second reference is nobody's";
    view->release();
}

TEST_F(ViewAdditionsTest, KnowsTheZoomOfTheViewsAround) {
    auto zooming = ZoomingView::initWithFrame({{0, 0}, {10, 10}});
    outer->addSubview(zooming);
    auto between = add(zooming, {}), inner = add(between, {});
    EXPECT_EQ(zoomFactor(inner), 2.5);
    EXPECT_EQ(zoomFactor(zooming), 1);
    EXPECT_EQ(zoomFactor(outer), 1);
    inner->setFrame({{0, 0}, {30, 20}});
    inner->setBounds({{0, 0}, {10, 40}});
    EXPECT_EQ(horizontalZoomFactor(inner), 3);
    EXPECT_EQ(verticalZoomFactor(inner), 0.5F);
    EXPECT_TRUE(std::isnan(verticalZoomFactor(NSView::initWithFrame({}).get())));
}

TEST_F(ViewAdditionsTest, MeasuresHowFarAViewIsFromWholePixels) {
    auto clip = NSClipView::initWithFrame({{0.5F, 0.5F}, {50, 50}});
    outer->addSubview(clip);
    auto view = add(clip, {{10.25F, 3}, {20, 20}}), inner = add(view, {{1.5F, -2.25F}, {5, 5}});
    EXPECT_EQ(offsetFromWholePixelOnScreenConsiderZoom(view, false), (NSPoint{0.25F, 0}));
    EXPECT_EQ(offsetFromWholePixelOnScreenConsiderZoom(inner, false), (NSPoint{0.75F, 0.75F}));
    EXPECT_EQ(offsetFromWholePixelOnScreenConsiderZoom(view, true), (NSPoint{0.75F, 0.5F}));
    EXPECT_EQ(offsetFromWholePixelOnScreenConsiderZoom(NSClipView::initWithFrame({{10.25F, 3}, {5, 5}}).get(),
                                                       false),
              (NSPoint{0.25F, 0}));

    struct Row {
        const char* name;
        NSPoint frame, wanted, sane;
    };
    for (const Row& row :
         {Row{"near", {0.25F, 0}, {5, 5}, {5.25F, 5}}, Row{"far", {0.75F, 0}, {5, 5}, {5.25F, 5}},
          Row{"fraction", {0.5F, 0.25F}, {5.25F, 5.5F}, {5.5F, 5.25F}},
          Row{"below 0", {-0.25F, 0}, {-5.5F, 0}, {-5.25F, 0}}}) {
        view->setFrameOrigin(row.frame);
        const NSPoint sane = saneSubviewFrameOrigin(view, row.wanted);
        EXPECT_FLOAT_EQ(sane.x, row.sane.x) << row.name;
        EXPECT_FLOAT_EQ(sane.y, row.sane.y) << row.name;
    }
}

TEST_F(ViewAdditionsTest, TakesOverContents) {
    for (const bool flips : {false, true}) {
        auto other = FlippableView::initWithFrame({{0, 0}, {100, 80}});
        other->flipped = flips;
        auto first = add(other, {{1, 10}, {5, 20}}), second = add(other, {{2, 0}, {5, 5}});
        auto old = add(outer, {});
        replaceContentsWithContentsOfView(outer, other);
        EXPECT_EQ(old->superview(), nullptr);
        EXPECT_EQ(other->subviews()->count(), 0u);
        EXPECT_TRUE(outer->subviews()->isEqual(NSArray::of({first, second})));
        EXPECT_EQ(first->frame(), (NSRect{{1, flips ? 50.0F : 10.0F}, {5, 20}}));
        EXPECT_EQ(second->frame(), (NSRect{{2, flips ? 75.0F : 0.0F}, {5, 5}}));
        replaceContentsWithContentsOfView(outer, nullptr);
        EXPECT_EQ(outer->subviews()->count(), 2u);
    }
}

TEST_F(ViewAdditionsTest, LetsMenusSeeShortcutsFirst) {
    EXPECT_FALSE(send<bool>(outer, "allowCapturingKeyboardShortcuts"_sel));
    send(outer, "captureKeyboardShortcut:"_sel, nullptr);
}

}  // namespace
