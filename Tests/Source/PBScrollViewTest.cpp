// SPDX-License-Identifier: Apache-2.0
#include "PBScrollView.h"

#include "BaseInterfaceLibrary.h"
#include "Foundation/NSNotificationCenter.h"
#include "PBNotificationCenter.h"
#include "Prelude.h"
#include "Text/NSColor.h"

namespace {

extern Library scrollTrailsLibrary;

class TrailingView : public NSView {
    PELVOR_CLASS(TrailingView, NSView);
    PELVOR_INHERITED_CREATORS(initWithFrame);

  public:
    void scheduleRemoveScrollingTrails() { ++cleanings; }
    int cleanings = 0;
};
PELVOR_DEFINE_CLASS(TrailingView, scrollTrailsLibrary) {
    methods.instance<"scheduleRemoveScrollingTrails", &TrailingView::scheduleRemoveScrollingTrails>();
}
class FocusListener : public NSObject {
    PELVOR_CLASS(FocusListener, NSObject);

  public:
    void hear(id) { ++heard; }
    int heard = 0;
};
PELVOR_DEFINE_CLASS(FocusListener, scrollTrailsLibrary) { methods.instance<"hear:", &FocusListener::hear>(); }

// A clip view that tells of focus as it scrolls, and may refuse to scroll.
class TellingClipView : public NSClipView {
    PELVOR_CLASS(TellingClipView, NSClipView);
    PELVOR_INHERITED_CREATORS(initWithFrame);

  public:
    NSPoint constrainScrollPoint(NSPoint point) override {
        NSNotificationCenter::defaultCenter()->postNotificationName_object(NSViewFocusDidChangeNotification,
                                                                           this);
        if (refuses) throw NSException(NSGenericException, "stuck");
        return NSClipView::constrainScrollPoint(point);
    }
    bool refuses = false;
};
PELVOR_DEFINE_CLASS(TellingClipView, scrollTrailsLibrary) {}

constexpr Library* kDependencies[] = {&baseInterfaceLibrary};
constinit Library scrollTrailsLibrary{
    "TestScrollTrails", kDependencies, kClassesOf<TrailingView, FocusListener, TellingClipView>, {}};

struct PBScrollViewTest : ::testing::Test {
    PBScrollViewTest() {
        registerLibrary(scrollTrailsLibrary);
        PBScrollView::load();
        PBScrollView::didLoad();
        PBScrollView::didLoad();
        scrollView = NSScrollView::initWithFrame({{0, 0}, {100, 100}});
        scrollView->setContentView(clip);
        scrollView->setDocumentView(document);
        NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
            listener, "hear:"_sel, NSViewFocusDidChangeNotification, nullptr);
        listener->heard = 0;
    }
    ~PBScrollViewTest() override { NSNotificationCenter::defaultCenter()->removeObserver(listener); }
    void tell() {
        NSNotificationCenter::defaultCenter()->postNotificationName_object(NSViewFocusDidChangeNotification,
                                                                           clip);
    }

    AutoreleasePool pool;
    Retained<FocusListener> listener = make<FocusListener>();
    Retained<TrailingView> document = TrailingView::initWithFrame({{0, 0}, {100, 1000}});
    Retained<TellingClipView> clip = TellingClipView::initWithFrame({});
    Retained<NSScrollView> scrollView;
};

TEST_F(PBScrollViewTest, TakesThePlaceOfEveryScrollView) {
    EXPECT_TRUE(cast<PBScrollView>(scrollView.get()));
    EXPECT_TRUE(scrollView->contentView());
}

TEST_F(PBScrollViewTest, ScrollsWithoutTellingOfFocus) {
    scrollView->scrollClipView_toPoint(clip, {0, 300});
    EXPECT_EQ(clip->bounds().origin, (NSPoint{0, 300}));
    EXPECT_EQ(listener->heard, 0);
    EXPECT_EQ(document->cleanings, 1);
    tell();
    EXPECT_EQ(listener->heard, 1);
}

TEST_F(PBScrollViewTest, LeavesTheSilenceOfOthersInForce) {
    using Centre = NSNotificationCenter_PelvorAdditions;
    Centre::disableNotificationName(NSViewFocusDidChangeNotification);
    scrollView->scrollClipView_toPoint(clip, {0, 20});
    tell();
    EXPECT_EQ(listener->heard, 0);
    Centre::enableNotificationName(NSViewFocusDidChangeNotification);
}

TEST_F(PBScrollViewTest, TellsAgainAfterAScrollThatRaises) {
    clip->refuses = true;
    EXPECT_THAT(RAISED(scrollView->scrollClipView_toPoint(clip, {0, 20})), HasSubstr("stuck"));
    EXPECT_EQ(document->cleanings, 0);
    tell();
    EXPECT_EQ(listener->heard, 1);
}

}  // namespace
