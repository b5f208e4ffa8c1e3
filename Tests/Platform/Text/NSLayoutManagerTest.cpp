// SPDX-License-Identifier: Apache-2.0
#include "Text/NSLayoutManager.h"

#include "LaidOutText.h"
#include "Prelude.h"
#include "Text/NSTextAttachment.h"
#include "Text/NSTextAttachmentCell.h"
#include "Text/NSTextTab.h"
#include "Text/TextLibrary.h"

namespace {

class NSLayoutManagerTest : public testing::Test {
    AutoreleasePool _pool;
};

using Style = NSMutableParagraphStyle*;

const NSString* const kFox = u"The quick brown fox jumps over the lazy dog and runs away from all of it."_ns;
NSString* fox() { return const_cast<NSString*>(kFox); }

// MARK: Lines

TEST_F(NSLayoutManagerTest, BreaksLinesBetweenWords) {
    LaidOutText text(u"one two three\nfour"_ns, plain(), {{60, 1.0e7F}});
    EXPECT_THAT(text.lines(), ElementsAre("one two ", "three\n", "four"));
    const NSRect first = text.lineRect(0), second = text.lineRect(8);
    EXPECT_EQ(first.size.width, 60);
    EXPECT_EQ(NSMaxY(first), NSMinY(second)) << "fragments stand below each other without gaps";
    EXPECT_NEAR(first.size.height,
                NSFont::fontWithName_size(u"DejaVuSans"_ns, 12)->defaultLineHeightForFont(), 0.1);
}

TEST_F(NSLayoutManagerTest, BreaksWhatFitsNowhere) {
    EXPECT_THAT(LaidOutText(u"abcdef"_ns, plain(), {{20, 1.0e7F}}).lines(), ElementsAre("ab", "cd", "ef"));
    EXPECT_THAT(LaidOutText(u"abc d"_ns, plain(), {{0, 1.0e7F}}).lines(), ElementsAre("a", "b", "c ", "d"));
    EXPECT_THAT(LaidOutText(u"ae\u0301\U0001F1E9\U0001F1EAx"_ns, plain(), {{1, 1.0e7F}}).lines(),
                ElementsAre("a", "e\u0301", "\U0001F1E9\U0001F1EA", "x"));
}

TEST_F(NSLayoutManagerTest, LetsBlanksHangOver) {
    LaidOutText text(u"ab          cd"_ns, plain(), {{30, 1.0e7F}});
    EXPECT_THAT(text.lines(), ElementsAre("ab          ", "cd"));
    EXPECT_LT(text.layoutManager->lineFragmentUsedRectForGlyphAtIndex_effectiveRange(0, nullptr).size.width,
              20);
}

TEST_F(NSLayoutManagerTest, BreaksAsTheLineBreakModeSays) {
    const auto lines = [](NSLineBreakMode mode) {
        return LaidOutText(u"aaa bbbbbb"_ns, styled([&](Style style) { style->setLineBreakMode(mode); }),
                           {{52, 1.0e7F}})
            .lines();
    };
    EXPECT_THAT(lines(NSLineBreakByWordWrapping), ElementsAre("aaa ", "bbbbbb"));
    EXPECT_THAT(lines(NSLineBreakByCharWrapping), ElementsAre("aaa bbb", "bbb"));
    for (auto mode : {NSLineBreakByClipping, NSLineBreakByTruncatingHead, NSLineBreakByTruncatingTail,
                      NSLineBreakByTruncatingMiddle})
        EXPECT_THAT(lines(mode), ElementsAre("aaa bbbbbb"));
}

TEST_F(NSLayoutManagerTest, TruncatesWhereTheModeSays) {
    const auto hidden = [](NSLineBreakMode mode) {
        LaidOutText text(u"abcdefghijklmnop"_ns, styled([&](Style style) { style->setLineBreakMode(mode); }),
                         {{60, 1.0e7F}});
        std::string shown;
        for (NSUInteger unit = 0; unit < 16; ++unit)
            if (text.layoutManager->boundingRectForGlyphRange_inTextContainer({unit, 1}, text.containers[0])
                    .size.width > 0)
                shown += static_cast<char>('a' + unit);
        return shown;
    };
    EXPECT_EQ(hidden(NSLineBreakByTruncatingTail), "abcdef");
    EXPECT_EQ(hidden(NSLineBreakByTruncatingHead), "jklmnop");
    EXPECT_EQ(hidden(NSLineBreakByTruncatingMiddle), "abcnop");
}

// MARK: Paragraphs

TEST_F(NSLayoutManagerTest, IndentsAndSpacesParagraphs) {
    LaidOutText text(u"aa bb\ncc"_ns, styled([](Style style) {
                         style->setFirstLineHeadIndent(20);
                         style->setHeadIndent(10);
                         style->setTailIndent(-5);
                         style->setLineSpacing(3);
                         style->setParagraphSpacing(7);
                         style->setParagraphSpacingBefore(11);
                     }),
                     {{45, 1.0e7F}});
    ASSERT_THAT(text.lines(), ElementsAre("aa ", "bb\n", "cc"));
    EXPECT_EQ(text.x(0), 20);
    EXPECT_EQ(text.x(3), 10);
    const float height = text.lineRect(0).size.height - 3;
    EXPECT_EQ(text.lineRect(3).size.height, height + 7);
    EXPECT_EQ(text.lineRect(6).size.height, height + 11 + 7);
    EXPECT_EQ(NSMinY(text.lineRect(0)), 0) << "no space above the first paragraph";
}

TEST_F(NSLayoutManagerTest, LimitsLineHeights) {
    const auto height = [](auto setUp) {
        return LaidOutText(u"a"_ns, styled(setUp)).lineRect(0).size.height;
    };
    const float plainHeight = height([](Style) {});
    EXPECT_NEAR(height([](Style style) { style->setLineHeightMultiple(2); }), 2 * plainHeight, 0.05);
    EXPECT_EQ(height([](Style style) { style->setMinimumLineHeight(40); }), 40);
    EXPECT_EQ(height([](Style style) { style->setMaximumLineHeight(5); }), 5);
}

TEST_F(NSLayoutManagerTest, AlignsLines) {
    const auto place = [](NSTextAlignment alignment, NSString* string) {
        LaidOutText text(string, styled([&](Style style) { style->setAlignment(alignment); }),
                         {{100, 1.0e7F}});
        return text.layoutManager->lineFragmentUsedRectForGlyphAtIndex_effectiveRange(0, nullptr);
    };
    const float width = place(NSLeftTextAlignment, u"abc"_ns).size.width;
    EXPECT_EQ(place(NSLeftTextAlignment, u"abc"_ns).origin.x, 0);
    EXPECT_EQ(place(NSRightTextAlignment, u"abc"_ns).origin.x, 100 - width);
    EXPECT_NEAR(place(NSCenterTextAlignment, u"abc"_ns).origin.x, 50 - width / 2, 0.02);
    EXPECT_EQ(place(NSNaturalTextAlignment, u"\u05D0\u05D1"_ns).origin.x +
                  place(NSNaturalTextAlignment, u"\u05D0\u05D1"_ns).size.width,
              100);
    EXPECT_EQ(place(NSJustifiedTextAlignment, u"abc"_ns).size.width, width) << "a last line stays as it is";
    EXPECT_EQ(place(NSJustifiedTextAlignment, u"abc def ghijklmnop qr"_ns).size.width, 100);
    EXPECT_EQ(place(NSJustifiedTextAlignment, u"abc abcdefghijklmn"_ns).size.width, width)
        << "nothing can be spread";
    EXPECT_EQ(place(NSJustifiedTextAlignment, u"abc\tdef ghijklmnopq"_ns).size.width,
              place(NSLeftTextAlignment, u"abc\tdef ghijklmnopq"_ns).size.width);
    EXPECT_EQ(place(NSJustifiedTextAlignment, u"\u4E2D\u4E2D\u4E2D abcdefghijkl"_ns).size.width, 100);
    EXPECT_GT(NSMinX(place(NSJustifiedTextAlignment, u"\u05D0\u05D1 abcdefghijklmn"_ns)), 50);
}

TEST_F(NSLayoutManagerTest, JustifiesAtBlanks) {
    LaidOutText text(u"ab cd ef ghijklmnopqrst"_ns,
                     styled([](Style style) { style->setAlignment(NSJustifiedTextAlignment); }),
                     {{100, 1.0e7F}});
    LaidOutText natural(u"ab cd ef ghijklmnopqrst"_ns, plain(), {{100, 1.0e7F}});
    const float first = text.x(3) - natural.x(3), second = text.x(6) - natural.x(6);
    EXPECT_GT(first, 1);
    EXPECT_NEAR(second, 2 * first, 0.05);
    EXPECT_NEAR(text.layoutManager->caretRectForCharacterAtIndex(8).origin.x, 100, 0.02);
}

// MARK: Tabs

TEST_F(NSLayoutManagerTest, SetsTabsOfAllKinds) {
    const auto tabbed = [](NSTextTabType type, NSString* string) {
        auto tab = NSTextTab::initWithType_location(type, 100);
        return LaidOutText(string, styled([&](Style style) { style->addTabStop(tab); }), {{400, 1.0e7F}});
    };
    EXPECT_EQ(tabbed(NSLeftTabStopType, u"a\tbc"_ns).x(2), 100);
    auto right = tabbed(NSRightTabStopType, u"a\tbc"_ns);
    EXPECT_NEAR(right.layoutManager->caretRectForCharacterAtIndex(4).origin.x, 100, 0.02);
    auto centre = tabbed(NSCenterTabStopType, u"a\tbc"_ns);
    EXPECT_NEAR((centre.x(2) + centre.layoutManager->caretRectForCharacterAtIndex(4).origin.x) / 2, 100,
                0.02);
    EXPECT_NEAR(tabbed(NSDecimalTabStopType, u"a\t12.75"_ns).x(4), 100, 0.02);
    // From right to left the points stand below each other too, and what has no point ends where they stand.
    for (auto [string, end] : {std::pair{u"\u05D0\t12.50"_ns, 4u},
                               {u"\u05D0\t7.255 \u05D1"_ns, 3u},
                               {u"\u05D0\t125\t1"_ns, 5u},
                               {u"\u05D0\t\u05D1 7.5"_ns, 5u}}) {
        auto text = tabbed(NSDecimalTabStopType, string);
        const NSRect digit =
            text.layoutManager->boundingRectForGlyphRange_inTextContainer({end - 1, 1}, text.containers[0]);
        EXPECT_NEAR(NSMaxX(digit), 300, 0.02) << string->toUTF8();
    }
    // Text that is too long for its room pushes on.
    auto pushed = tabbed(NSRightTabStopType, u"aaaaaaaaaaaaa\tbcdefgh"_ns);
    EXPECT_NEAR(pushed.x(14), pushed.x(13), 0.02);
    // Behind the last stop there are stops at the default interval.
    EXPECT_EQ(tabbed(NSLeftTabStopType, u"a\tb\tc"_ns).x(4), 108);
}

TEST_F(NSLayoutManagerTest, MovesATabWithoutAStopToTheNextLine) {
    LaidOutText text(u"abcdefgh\tij"_ns, plain(), {{60, 1.0e7F}});
    EXPECT_THAT(text.lines(), ElementsAre("abcdefgh", "\tij"));
    EXPECT_EQ(text.x(9), 36);
}

// MARK: Characters

TEST_F(NSLayoutManagerTest, ShiftsKernsAndWidens) {
    const auto with = [](NSString* key, double value) {
        auto attributes = plain()->mutableCopy();
        attributes->setObject_forKey(NSNumber::numberWithDouble(value), key);
        return LaidOutText(u"ab"_ns, attributes);
    };
    LaidOutText natural(u"ab"_ns, plain());
    EXPECT_EQ(with(NSKernAttributeName, 5).x(1), natural.x(1) + 5);
    EXPECT_NEAR(with(NSExpansionAttributeName, std::log(2.0)).x(1), 2 * natural.x(1), 0.02);
    EXPECT_NEAR(with(NSBaselineOffsetAttributeName, 4).lineRect(0).size.height,
                natural.lineRect(0).size.height + 4, 0.02);
    EXPECT_LT(with(NSSuperscriptAttributeName, -1).x(1), 0.7F * natural.x(1)) << "small letters";
    for (const int level : {1, -1}) {
        LaidOutText mixed(u"ab"_ns, plain());
        mixed.storage->addAttribute_value_range(NSSuperscriptAttributeName, NSNumber::numberWithInt(level),
                                                {1, 1});
        EXPECT_GT(mixed.lineRect(0).size.height, natural.lineRect(0).size.height) << level;
    }
}

TEST_F(NSLayoutManagerTest, HyphenatesInTheLanguageOfTheText) {
    const auto lines = [](const char* language, float factor, float width = 90) {
        auto attributes = plain()->mutableCopy();
        attributes->setObject_forKey(NSString::ofUTF8(language), NSLanguageAttributeName);
        LaidOutText text(u"an incomprehensibility"_ns, attributes, {{width, 1.0e7F}});
        if (width > 90)
            text.containers[0]->setExclusionRects(
                NSArray::of({NSValue::valueWithRect({{90, 0}, {width - 180, 60}})}));
        text.layoutManager->setHyphenationFactor(factor);
        return text.lines();
    };
    EXPECT_THAT(lines("en-US", 0), ElementsAre("an ", "incomprehensi", "bility"));
    EXPECT_THAT(lines("en-US", 1), ElementsAre("an incompre", "hensibility"));
    EXPECT_THAT(lines("en-US", 1, 200), ElementsAre("an incompre", "hensibility")) << "beside an exclusion";
    EXPECT_THAT(lines("tlh", 1), ElementsAre("an ", "incomprehensi", "bility"));
}

TEST_F(NSLayoutManagerTest, ShowsSoftHyphensWhereLinesEnd) {
    LaidOutText text(u"aaa\u00ADbbb\u00ADccc"_ns, plain(), {{58, 1.0e7F}});
    EXPECT_THAT(text.lines(), ElementsAre("aaa\u00ADbbb\u00AD", "ccc"));
    LaidOutText whole(u"aaabbb"_ns, plain());
    const auto width = [](LaidOutText& each) {
        return each.layoutManager->lineFragmentUsedRectForGlyphAtIndex_effectiveRange(0, nullptr).size.width;
    };
    EXPECT_NEAR(
        width(text) - width(whole),
        NSFont::fontWithName_size(u"DejaVuSans"_ns, 12)
            ->advancementForGlyph(NSFont::fontWithName_size(u"DejaVuSans"_ns, 12)->glyphForCharacter('-'))
            .width,
        0.05);
}

TEST_F(NSLayoutManagerTest, TakesRoomForAttachments) {
    auto attachment = NSTextAttachment::init();
    attachment->setBounds({{0, -10}, {40, 50}});
    LaidOutText text(u"a\uFFFCb"_ns, plain());
    text.storage->addAttribute_value_range(NSAttachmentAttributeName, attachment, {1, 1});
    const float before = text.x(1);
    EXPECT_EQ(text.x(2), before + 40);
    EXPECT_EQ(text.layoutManager->attachmentSizeForGlyphAtIndex(1), (NSSize{40, 50}));
    EXPECT_EQ(text.layoutManager->attachmentSizeForGlyphAtIndex(0), (NSSize{-1, -1}));
    const NSRect frame = text.layoutManager->attachmentRectForGlyphAtIndex(1);
    EXPECT_EQ(NSMaxY(frame), text.layoutManager->locationForGlyphAtIndex(1).y + 10);
    attachment->setAttachmentCell(nullptr);
    text.layoutManager->invalidateLayoutForCharacterRange_isSoft_actualCharacterRange({1, 1}, false, nullptr);
    EXPECT_EQ(text.x(2), before + 40) << "without a cell the bounds count";
}

TEST_F(NSLayoutManagerTest, OrdersTextOfTwoDirections) {
    // The numbers are the units in the order of their places.
    const auto order = [](NSString* string) {
        LaidOutText text(string, plain());
        std::vector<std::pair<float, int>> places;
        for (NSUInteger i = 0; i < string->length(); ++i) places.emplace_back(text.x(i), static_cast<int>(i));
        std::sort(places.begin(), places.end());
        std::string all;
        for (auto [x, unit] : places) all += std::to_string(unit);
        return all;
    };
    EXPECT_EQ(order(u"ab\u05D0\u05D1cd"_ns), "013245");
    EXPECT_EQ(order(u"\u05D0\u05D1 ab"_ns), "34210");
    EXPECT_EQ(order(u"\u05D0\u05D1 12"_ns), "34210");
}

// MARK: Pieces, places and carets

TEST_F(NSLayoutManagerTest, TakesPiecesAsWhole) {
    LaidOutText text(u"ae\u0301x"_ns, plain());
    NSLayoutManager* layout = text.layoutManager;
    NSRange actual;
    EXPECT_EQ(layout->glyphRangeForCharacterRange_actualCharacterRange({2, 1}, &actual), (NSRange{1, 2}));
    EXPECT_EQ(actual, (NSRange{1, 2}));
    EXPECT_EQ(layout->characterRangeForGlyphRange_actualGlyphRange({1, 1}, nullptr), (NSRange{1, 2}));
    EXPECT_NE(layout->glyphAtIndex(1), NSNullGlyph);
    EXPECT_EQ(layout->glyphAtIndex(2), NSNullGlyph);
    EXPECT_EQ(layout->numberOfGlyphs(), 4u);
    EXPECT_EQ(RAISED(layout->glyphAtIndex(4)), "NSRangeException: glyphAtIndex: index (4) beyond bounds (4)");
}

TEST_F(NSLayoutManagerTest, PutsCaretsInsideLigatures) {
    LaidOutText text(u"ffix"_ns, inFont("NotoSerif-Regular", 24));
    NSLayoutManager* layout = text.layoutManager;
    ASSERT_EQ(layout->glyphRangeForCharacterRange_actualCharacterRange({0, 1}, nullptr), (NSRange{0, 3}))
        << "the font has a ligature";
    const float third = text.x(3) / 3;
    EXPECT_NEAR(layout->caretRectForCharacterAtIndex(1).origin.x, third, 0.05);
    EXPECT_NEAR(layout->caretRectForCharacterAtIndex(2).origin.x, 2 * third, 0.05);
    float fraction = 0;
    NSTextContainer* container = text.containers[0];
    EXPECT_EQ(layout->glyphIndexForPoint_inTextContainer_fractionOfDistanceThroughGlyph({third * 1.5F, 5},
                                                                                        container, &fraction),
              0u);
    EXPECT_NEAR(fraction, 0.5, 0.01);
    EXPECT_EQ(layout->characterIndexForPoint_inTextContainer_fractionOfDistanceBetweenInsertionPoints(
                  {third * 1.25F, 5}, container, &fraction),
              1u);
    EXPECT_NEAR(fraction, 0.25, 0.01);
}

TEST_F(NSLayoutManagerTest, FindsTextAtPoints) {
    LaidOutText text(u"abc\ndef \u05D0\u05D1"_ns, plain());
    NSLayoutManager* layout = text.layoutManager;
    NSTextContainer* container = text.containers[0];
    const float y = NSMidY(text.lineRect(4));
    const auto at = [&](float x, float height) {
        float fraction = 0;
        const NSUInteger glyph = layout->glyphIndexForPoint_inTextContainer_fractionOfDistanceThroughGlyph(
            {x, height}, container, &fraction);
        return shown(glyph, fraction > 0.5F ? "behind" : "before");
    };
    EXPECT_EQ(at(-5, -5), "0 before");
    EXPECT_EQ(at(text.x(5) + 1, y), "5 before");
    EXPECT_EQ(at(text.x(6) - 1, y), "5 behind");
    EXPECT_EQ(at(text.x(9) + 1, y), "9 behind") << "from right to left";
    EXPECT_EQ(at(1000, 1000), "8 before");
    const auto characterAt = [&](float x, float height) {
        float fraction = 0;
        const NSUInteger character =
            layout->characterIndexForPoint_inTextContainer_fractionOfDistanceBetweenInsertionPoints(
                {x, height}, container, &fraction);
        return shown(character, fraction > 0.5F ? "behind" : "before");
    };
    EXPECT_EQ(characterAt(200, 3), "3 before") << "before the line's end";
    EXPECT_EQ(characterAt(text.x(7) + 1, y), "7 before");
    EXPECT_EQ(characterAt(text.x(9) + 1, y), "9 behind") << "from right to left, inside the line";
    EXPECT_EQ(characterAt(text.x(8) + 1, y), "8 behind");
}

TEST_F(NSLayoutManagerTest, CoversSelectionsWithRectangles) {
    LaidOutText text(u"one two threeee four"_ns, plain(), {{60, 1.0e7F}});
    ASSERT_THAT(text.lines(), ElementsAre("one two ", "threeee ", "four"));
    NSUInteger count = 0;
    const NSRect* rects =
        text.layoutManager->rectArrayForCharacterRange_withinSelectedCharacterRange_inTextContainer_rectCount(
            {4, 14}, {4, 14}, text.containers[0], &count);
    ASSERT_EQ(count, 3u);
    EXPECT_EQ(NSMinX(rects[0]), text.x(4));
    EXPECT_EQ(NSMaxX(rects[0]), 60) << "to the edge, where the selection goes on";
    EXPECT_EQ(rects[1], text.lineRect(8)) << "a whole line from edge to edge";
    EXPECT_NEAR(NSMaxX(rects[2]), text.x(18), 0.02);
    rects =
        text.layoutManager->rectArrayForCharacterRange_withinSelectedCharacterRange_inTextContainer_rectCount(
            {14, 6}, {NSNotFound, 0}, text.containers[0], &count);
    ASSERT_EQ(count, 2u);
    EXPECT_LT(NSMaxX(rects[1]), 60) << "nothing is selected: to the end of the last line only";
    LaidOutText mixed(u"ab\u05D0\u05D1cd"_ns, plain());
    mixed.layoutManager->rectArrayForCharacterRange_withinSelectedCharacterRange_inTextContainer_rectCount(
        {1, 2}, {1, 2}, mixed.containers[0], &count);
    EXPECT_EQ(count, 2u) << "what is selected stands apart";
    LaidOutText leftwards(u"\u05D0\u05D1\n\u05D2"_ns, plain());
    rects = leftwards.layoutManager
                ->rectArrayForCharacterRange_withinSelectedCharacterRange_inTextContainer_rectCount(
                    {1, 3}, {1, 3}, leftwards.containers[0], &count);
    EXPECT_EQ(NSMinX(rects[0]), 0);
    // Each cluster was compared with each place of a caret, which took minutes.
    constexpr NSUInteger kMany = 300'000;
    LaidOutText line(NSString::of(std::u16string(kMany, u'i')), plain(), {{1.0e7F, 100}});
    rects =
        line.layoutManager->rectArrayForCharacterRange_withinSelectedCharacterRange_inTextContainer_rectCount(
            {1, kMany - 2}, {1, kMany - 2}, line.containers[0], &count);
    ASSERT_EQ(count, 1u);
    EXPECT_EQ(NSMinX(rects[0]), line.x(1));
    EXPECT_NEAR(NSMaxX(rects[0]), line.x(kMany - 1), 1);
}

// MARK: Containers

TEST_F(NSLayoutManagerTest, FlowsFromContainerToContainer) {
    LaidOutText text(u"a\nb\nc\nd\ne"_ns, plain(), {{100, 30}, {100, 30}});
    NSLayoutManager* layout = text.layoutManager;
    EXPECT_EQ(layout->glyphRangeForTextContainer(text.containers[0]), (NSRange{0, 4}));
    EXPECT_EQ(layout->glyphRangeForTextContainer(text.containers[1]), (NSRange{4, 4}));
    EXPECT_EQ(NSMinY(text.lineRect(4)), 0);
    EXPECT_EQ(layout->textContainerForGlyphAtIndex_effectiveRange(8, nullptr), nullptr);
    EXPECT_EQ(layout->firstUnlaidCharacterIndex(), 8u);
    text.addContainer({100, 30});
    EXPECT_EQ(layout->textContainerForGlyphAtIndex_effectiveRange(8, nullptr), text.containers[2].get());
    EXPECT_EQ(layout->firstUnlaidCharacterIndex(), 9u);
    layout->removeTextContainerAtIndex(0);
    EXPECT_EQ(layout->textContainerForGlyphAtIndex_effectiveRange(0, nullptr), text.containers[1].get());
}

TEST_F(NSLayoutManagerTest, BeginsAContainerBehindAFormFeed) {
    LaidOutText text(u"a\fb"_ns, plain(), {{100, 300}, {100, 300}});
    EXPECT_EQ(text.layoutManager->glyphRangeForTextContainer(text.containers[1]), (NSRange{2, 1}));
    text.storage->replaceCharactersInRange_withString({2, 1}, u"bc"_ns);
    EXPECT_EQ(text.layoutManager->glyphRangeForTextContainer(text.containers[1]), (NSRange{2, 2}));
    text.containers[0]->setExclusionRects(NSArray::of({NSValue::valueWithRect({{40, 0}, {20, 20}})}));
    text.set(u"aaaa bbb\fc"_ns, plain());
    ASSERT_EQ(text.lineRange(5), (NSRange{5, 4})) << "the form feed is in a further fragment";
    EXPECT_EQ(text.layoutManager->glyphRangeForTextContainer(text.containers[1]), (NSRange{9, 1}));
}

// A long paragraph is kept in pieces, of which one line may need several.
TEST_F(NSLayoutManagerTest, SetsALineOfSeveralPiecesWhereItBegins) {
    NSString* letters = u""_ns->stringByPaddingToLength_withString_startingAtIndex(9000, u"x"_ns, 0);
    LaidOutText text(letters, plain(), {{1.0e6F, 20}, {9.0e5F, 100}});
    EXPECT_EQ(text.layoutManager->glyphRangeForTextContainer(text.containers[0]), (NSRange{0, 9000}));
}

TEST_F(NSLayoutManagerTest, SetsALineThatIsTooHighByItself) {
    LaidOutText text(u"a\nb"_ns, plain(), {{100, 0}, {100, 5}});
    EXPECT_EQ(text.layoutManager->glyphRangeForTextContainer(text.containers[0]), (NSRange{0, 2}));
    EXPECT_EQ(text.layoutManager->glyphRangeForTextContainer(text.containers[1]), (NSRange{2, 1}));
}

TEST_F(NSLayoutManagerTest, GoesAroundExclusions) {
    LaidOutText text(fox(), plain(), {{300, 1.0e7F}});
    text.containers[0]->setExclusionRects(NSArray::of(
        {NSValue::valueWithRect({{100, 0}, {100, 20}}), NSValue::valueWithRect({{0, 45}, {300, 30}})}));
    const NSRect left = text.lineRect(0), right = text.lineRect(NSMaxRange(text.lineRange(0)));
    EXPECT_EQ(left, (NSRect{{0, 0}, {100, left.size.height}}));
    EXPECT_EQ(right, (NSRect{{200, 0}, {100, left.size.height}}));
    for (NSUInteger unit = 0; unit < text.storage->length(); unit = NSMaxRange(text.lineRange(unit)))
        for (const NSRect& exclusion : text.containers[0]->exclusions())
            EXPECT_FALSE(NSIntersectsRect(text.lineRect(unit), exclusion)) << unit;
    text.containers[0]->setExclusionRects(nullptr);
    EXPECT_EQ(text.account(), LaidOutText(fox(), plain(), {{300, 1.0e7F}}).account());
}

extern Library pageMakerLibrary;

class PageMaker : public NSObject {
    PELVOR_CLASS(PageMaker, NSObject);

  public:
    void layoutManager_didCompleteLayoutForTextContainer_atEnd(NSLayoutManager* layout,
                                                               NSTextContainer* container, bool isEnd) {
        told += container ? isEnd ? "end " : "full " : "more ";
        if (--messagesToFailure == 0) throw NSException(NSGenericException, "no paper");
        if (container) return;
        auto page = NSTextContainer::initWithContainerSize({width, 30});
        page->setLineFragmentPadding(0);
        layout->addTextContainer(page);
    }
    std::string told;
    float width = 100;
    int messagesToFailure = 0;
};
PELVOR_DEFINE_CLASS(PageMaker, pageMakerLibrary) {
    methods.instance<"layoutManager:didCompleteLayoutForTextContainer:atEnd:",
                     &PageMaker::layoutManager_didCompleteLayoutForTextContainer_atEnd>();
}
constexpr Library* kDependencies[] = {&textLibrary};
constinit Library pageMakerLibrary{"TestPageMaker", kDependencies, kClassesOf<PageMaker>, {}};

TEST_F(NSLayoutManagerTest, AsksItsDelegateForContainers) {
    for (float width : {100.0F, 90.0F}) {
        auto maker = make<PageMaker>();
        maker->width = width;
        LaidOutText text(u"a\nb\nc\nd\ne"_ns, plain(), {{100, 30}});
        text.layoutManager->setDelegate(maker);
        text.layoutManager->ensureLayoutForCharacterRange({8, 1});
        EXPECT_EQ(maker->told, "full more full more end ") << width;
        EXPECT_EQ(text.layoutManager->textContainers()->count(), 3u);
        maker = nullptr;  // a delegate that ended is told nothing
        text.storage->replaceCharactersInRange_withString({0, 0}, u"a\nb\nc\nd\n"_ns);
        text.layoutManager->ensureLayoutForCharacterRange({0, text.storage->length()});
    }
}

TEST_F(NSLayoutManagerTest, GoesOnBehindADelegateThatThrows) {
    for (float width : {100.0F, 90.0F}) {
        const NSSize page{width, 30};
        LaidOutText text(fox(), plain(), {{100, 30}, page}),
            whole(fox(), plain(), {{100, 30}, page, page, page, page, page});
        auto maker = make<PageMaker>();
        maker->width = width;
        text.layoutManager->setDelegate(maker);
        for (int asked = 0; asked < 3; ++asked) {
            maker->messagesToFailure = 1;
            EXPECT_EQ(RAISED(text.lines()), "NSGenericException: no paper") << maker->told;
        }
        EXPECT_EQ(text.lines(), whole.lines());
        EXPECT_EQ(maker->told, "full full more more end ") << width;
    }
}

TEST_F(NSLayoutManagerTest, RefusesQuestionsBeforeItHearsOfAnEdit) {
    LaidOutText text(fox(), plain(), {{100, 1.0e7F}});
    text.account();
    text.storage->beginEditing();
    text.storage->addAttribute_value_range(NSKernAttributeName, NSNumber::numberWithInt(1), {0, 1});
    EXPECT_EQ(RAISED(text.layoutManager->caretRectForCharacterAtIndex(20)), "");
    text.storage->replaceCharactersInRange_withString({0, 0}, u"Some words that move all others. "_ns);
    EXPECT_THAT(RAISED(text.layoutManager->caretRectForCharacterAtIndex(20)),
                StartsWith("NSInternalInconsistencyException"));
    text.storage->deleteCharactersInRange({5, text.storage->length() - 5});
    EXPECT_EQ(text.layoutManager->glyphRangeForLaidLineFragmentContainingGlyphAtIndex(3).length > 0, true);
    text.storage->endEditing();
    EXPECT_EQ(text.lines(), std::vector<std::string>{"Some "});
}

// What a text view has to know

struct EditListener;
extern Library editListenerLibrary;

struct EditListener : NSObject {
    PELVOR_CLASS(EditListener, NSObject);

  public:
    void layoutManager_editedRange_changeInLength_invalidatedRange(NSLayoutManager*, NSRange edited,
                                                                   NSInteger change, NSRange invalidated) {
        told << edited << " " << change << " " << invalidated << "\n";
    }
    std::ostringstream told;
};

PELVOR_DEFINE_CLASS(EditListener, editListenerLibrary) {
    methods.instance<"layoutManager:editedRange:changeInLength:invalidatedRange:",
                     &EditListener::layoutManager_editedRange_changeInLength_invalidatedRange>();
}

constinit Library editListenerLibrary{"TestEditListener", kDependencies, kClassesOf<EditListener>, {}};

TEST_F(NSLayoutManagerTest, TellsTextViewsWhatLooksDifferent) {
    LaidOutText text(u"one two\nthree"_ns, plain());
    auto view = make<EditListener>();
    text.containers[0]->setTextView(view);
    const auto toldOf = [&](auto edit) {
        view->told.str("");
        edit();
        return view->told.str();
    };
    EXPECT_EQ(toldOf([&] {
                  text.storage->replaceCharactersInRange_withString({4, 3}, u"2"_ns);
              }),
              "{4, 1} -2 {4, 1}\n");
    EXPECT_EQ(toldOf([&] {
                  text.storage->removeAttribute_range(NSFontAttributeName, {1, 2});
              }),
              "{0, 0} 0 {1, 2}\n");
    EXPECT_EQ(toldOf([&] {
                  text.layoutManager->invalidateLayoutForCharacterRange_isSoft_actualCharacterRange(
                      {2, 3}, false, nullptr);
              }),
              "{0, 0} 0 {2, 3}\n");
    EXPECT_EQ(toldOf([&] { text.containers[0]->setContainerSize({50, 1e7F}); }), "{0, 0} 0 {0, 0}\n");
    // Each view once, whose containers stand in a row, and nobody who has gone.
    auto other = make<EditListener>();
    Retained<NSTextContainer> more[3];
    for (auto& container : more) {
        container = NSTextContainer::initWithContainerSize({50, 20});
        text.layoutManager->addTextContainer(container);
        container->setTextView(&container == more ? view.get() : other.get());
    }
    const auto edit = [&] { text.storage->replaceCharactersInRange_withString({0, 1}, u"O"_ns); };
    const auto toldBoth = [&] {
        other->told.str("");
        const std::string first = toldOf(edit);
        return first + "and " + other->told.str();
    };
    EXPECT_EQ(toldBoth(), "{0, 1} 0 {0, 1}\nand {0, 1} 0 {0, 1}\n");
    for (const NSUInteger index : {0, 0}) text.layoutManager->removeTextContainerAtIndex(index);
    EXPECT_EQ(toldBoth(), "and {0, 1} 0 {0, 1}\n");
    for (const auto& container : more) container->setTextView(nullptr);
}

TEST_F(NSLayoutManagerTest, ListsLinesByTheirHeight) {
    LaidOutText text(fox(), plain(), {{100, 1.0e7F}});
    const float height = NSHeight(text.lineRect(0));
    const auto lines =
        text.layoutManager->linesInRect({{0, height * 1.5F}, {100, height}}, text.containers[0]);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].range, text.lineRange(NSMaxRange(text.lineRange(0))));
    EXPECT_EQ(lines[0].rect, text.lineRect(lines[0].range.location));
    EXPECT_EQ(lines[1].range.location, NSMaxRange(lines[0].range));
    EXPECT_EQ(LaidOutText().layoutManager->linesInRect({{0, 0}, {9, 9}}, nullptr).size(), 0u);
}

TEST_F(NSLayoutManagerTest, PutsACaretBehindTheLastCharacterOfABrokenLine) {
    LaidOutText text(u"one two three"_ns, plain(), {{60, 1.0e7F}});
    const NSRect behind = text.layoutManager->caretRectBehindCharacterAtIndex(6);  // "two"
    EXPECT_EQ(NSMinY(behind), NSMinY(text.lineRect(0)));
    EXPECT_EQ(behind.origin.x, text.layoutManager->caretRectForCharacterAtIndex(7).origin.x);
    EXPECT_EQ(NSMinY(text.layoutManager->caretRectBehindCharacterAtIndex(7)), NSMinY(text.lineRect(0)));
    EXPECT_EQ(NSMinY(text.layoutManager->caretRectForCharacterAtIndex(8)), NSMinY(text.lineRect(8)));
    EXPECT_THAT(RAISED(text.layoutManager->caretRectBehindCharacterAtIndex(13)), HasSubstr("beyond bounds"));
}

TEST_F(NSLayoutManagerTest, TakesAContainerOnce) {
    LaidOutText text(u"a"_ns, plain());
    auto other = NSLayoutManager::init();
    EXPECT_THAT(RAISED(text.layoutManager->addTextContainer(text.containers[0])), HasSubstr("already"));
    EXPECT_THAT(RAISED(other->insertTextContainer_atIndex(text.containers[0], 0)), HasSubstr("already"));
    text.layoutManager->removeTextContainerAtIndex(0);
    other->addTextContainer(text.containers[0]);
}

TEST_F(NSLayoutManagerTest, HasAnExtraLineBehindTheLastLineEnd) {
    EXPECT_TRUE(NSIsEmptyRect(LaidOutText(u"a"_ns, plain()).layoutManager->extraLineFragmentRect()));
    LaidOutText text(u"a\n"_ns, plain());
    const float bottom = NSMaxY(text.lineRect(0));  // laid out first: above what is not, places are estimates
    EXPECT_EQ(NSMinY(text.layoutManager->extraLineFragmentRect()), bottom);
    EXPECT_EQ(NSMinY(text.layoutManager->caretRectForCharacterAtIndex(2)), NSMaxY(text.lineRect(0)));
    LaidOutText empty;
    EXPECT_GT(empty.layoutManager->extraLineFragmentRect().size.height, 10);
    EXPECT_EQ(empty.layoutManager->extraLineFragmentTextContainer(), empty.containers[0].get());
}

// MARK: Laziness

TEST_F(NSLayoutManagerTest, LaysOutWhatIsAskedFor) {
    auto text = NSMutableString::init();
    for (int i = 0; i < 3000; ++i) text->appendString(u"Some words to fill a line and more of them.\n"_ns);
    LaidOutText laid(text, plain());
    NSLayoutManager* layout = laid.layoutManager;
    EXPECT_EQ(layout->firstUnlaidCharacterIndex(), 0u);
    EXPECT_EQ(layout->containerRunTable()->count(), 0u);
    layout->lineFragmentRectForGlyphAtIndex_effectiveRange(30000, nullptr);
    EXPECT_EQ(layout->firstUnlaidCharacterIndex(), 0u) << "the middle alone";
    layout->lineFragmentRectForGlyphAtIndex_effectiveRange(0, nullptr);
    EXPECT_EQ(layout->firstUnlaidCharacterIndex(), 44u);
    const auto height = [&] { return layout->usedRectForTextContainer(laid.containers[0]).size.height; };
    const float estimate = height();
    laid.lineRect(text->length() - 1);
    EXPECT_NEAR(height(), estimate, estimate / 50) << "with the last paragraph, without the line behind it";
    while (layout->layOutSome(1000)) {
    }
    EXPECT_EQ(layout->firstUnlaidCharacterIndex(), text->length());
    EXPECT_NEAR(height(), estimate, estimate / 10);
    laid.storage->replaceCharactersInRange_withString({20000, 0}, u"x"_ns);
    EXPECT_EQ(layout->firstUnlaidCharacterIndex(), 20000u - 20000u % 44);
}

}  // namespace
