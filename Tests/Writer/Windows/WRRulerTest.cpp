// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRRuler.h"

#include "FormatScope.h"
#include "Text/NSTextTab.h"
#include "Writer/Windows/WRRulerGuide.h"

namespace {

constexpr float kCentimetre = 28.3464567F;

struct RulerTest : ::testing::Test, FormatScope {
    RulerTest() : FormatScope(u"one\ttwo\nthree\n\u05D0\u05D1\u05D2"_ns) {
        defaults->setObject_forKey(u"cm"_ns, WRRulerUnitPreference);
    }
    WRRuler* ruler() { return partOf<WRRuler>(window); }
    void drag(float from, float to, float y, float toY) {
        screen.drag(ruler(), {ruler()->xOfPlace(from), y}, {ruler()->xOfPlace(to), toY});
    }
    void drag(float from, float to, float y = kLower) { drag(from, to, y, y); }
    std::string tabs(NSUInteger place = 0) {
        std::string text;
        for (id tab : styleAt(place)->tabStops()) text += shown(tab->description()) + " ";
        return text;
    }
    static constexpr float kUpper = 5, kLower = 19;
};

TEST_F(RulerTest, MovesIndentsOfAllSelectedParagraphsInOneStep) {
    select(5, 6);
    drag(0, 2 * kCentimetre + 1, kUpper);
    drag(0, kCentimetre);
    const float width = view->pages()->frame().width();
    drag(width, width - kCentimetre);
    for (const NSUInteger place : {0u, 9u}) {
        EXPECT_NEAR(styleAt(place)->firstLineHeadIndent(), 2 * kCentimetre, 0.1) << "at a line of the ruler";
        EXPECT_NEAR(styleAt(place)->headIndent(), kCentimetre, 0.1);
        EXPECT_NEAR(styleAt(place)->tailIndent(), -kCentimetre, kCentimetre / 5);
    }
    EXPECT_FLOAT_EQ(styleAt(14)->headIndent(), 0);
    EXPECT_TRUE(document->hasFormats());
    undo();
    EXPECT_FLOAT_EQ(styleAt(9)->tailIndent(), 0);
    EXPECT_NEAR(styleAt(9)->headIndent(), kCentimetre, 0.1);
}

TEST_F(RulerTest, SetsMovesChangesAndRemovesTabStops) {
    const float place = 4 * kCentimetre;
    screen.click(ruler(), {ruler()->xOfPlace(place), kLower});
    EXPECT_EQ(tabs(), "113.386L ");
    EXPECT_EQ(shown(view->undoManager()->undoActionName()), "_Tab Stop");
    for (const char* kind : {"C", "R", "D", "L"}) {
        screen.wait(2);
        screen.click(ruler(), {ruler()->xOfPlace(place), kLower}, 2);
        EXPECT_THAT(tabs(), HasSubstr(kind));
    }
    drag(place, place + kCentimetre);
    EXPECT_EQ(tabs(), "141.732L ");
    drag(place + kCentimetre, place, kLower, -80);
    EXPECT_EQ(tabs(), "");
    undo();
    EXPECT_EQ(tabs(), "141.732L ");
    view->setEditable(false);
    drag(place + kCentimetre, place);
    EXPECT_EQ(tabs(), "141.732L ");
}

TEST_F(RulerTest, ShowsThePlaceOfAMarkInThePagesWhileItIsDragged) {
    const auto guide = [&] { return partOf<WRRulerGuide>(window); };
    for (const NSUInteger place : {0u, 15u}) {  // the last paragraph runs from right to left
        select(place);
        screen.moveTo(ruler(), {ruler()->xOfPlace(0), kLower});
        screen.down();
        EXPECT_FALSE(guide()) << "nothing moves yet";
        screen.moveTo(ruler(), {ruler()->xOfPlace(3 * kCentimetre), kLower});
        ASSERT_TRUE(guide());
        EXPECT_NEAR(NSMinX(guide()->frame()), ruler()->xOfPlace(3 * kCentimetre), 1);
        EXPECT_EQ(NSMaxY(guide()->frame()), NSMaxY(view->enclosingScrollView()->frame()));
        screen.up();
        EXPECT_FALSE(guide());
        EXPECT_NEAR(styleAt(place)->headIndent(), 3 * kCentimetre, 0.1);
    }
}

TEST_F(RulerTest, FollowsZoomAndScrollingAndMirrorsParagraphsFromRightToLeft) {
    const auto edge = [&] {
        return view->convertPoint_toView({view->originOfTextContainer(view->textContainer()).x, 0}, ruler())
            .x;
    };
    const float width = view->pages()->frame().width();
    EXPECT_NEAR(ruler()->xOfPlace(0), edge(), 0.5);
    for (int i = 0; i < 3; ++i) window->zoomIn(nullptr);
    view->scrollPoint({90, 0});
    screen.turn();
    const auto zoom = static_cast<float>(zoomFactor(view));
    EXPECT_NEAR(ruler()->xOfPlace(0), edge(), 0.5);
    EXPECT_NEAR(ruler()->xOfPlace(width), edge() + width * zoom, 0.5);
    window->showWholeWidth(nullptr);
    select(15);
    EXPECT_NEAR(ruler()->xOfPlace(width), edge(), 0.5) << "the lines begin at the right";
    drag(0, kCentimetre);
    EXPECT_NEAR(styleAt(15)->headIndent(), kCentimetre, kCentimetre / 10);
}

TEST_F(RulerTest, IsHiddenAndShownForLaterWindowsToo) {
    const NSRect room = view->enclosingScrollView()->frame();
    choose("toggleRuler:"_sel);
    EXPECT_FALSE(ruler());
    EXPECT_EQ(NSHeight(view->enclosingScrollView()->frame()), NSHeight(room) + WRRuler::kHeight);
    EXPECT_EQ(state("toggleRuler:"_sel), "off");
    choose("toggleRuler:"_sel);
    EXPECT_EQ(view->enclosingScrollView()->frame(), room);
}

}  // namespace
