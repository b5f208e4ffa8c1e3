// SPDX-License-Identifier: Apache-2.0
// Tests of shaping, measuring and of fonts that stand in for others.
#include "Text/Fonts/Shaping.h"

#include "Foundation/NSDictionary.h"
#include "Prelude.h"
#include "Text/NSFont.h"
#include "Text/NSFontDescriptor.h"

namespace {

NSFont* fontNamed(const char* name, float size = 12) {
    return NSFont::fontWithName_size(NSString::stringWithUTF8String(name), size);
}

ShapingRun runOf(std::u16string_view text, NSFont* font, const char (&script)[5] = "Latn",
                 bool isRightToLeft = false) {
    const auto length = static_cast<NSUInteger>(text.size());
    return {text.data(), length, 0, length, font, scriptTag(script), nullptr, isRightToLeft, 1};
}

std::vector<PlacedGlyph> shaped(const ShapingRun& run) {
    std::vector<PlacedGlyph> glyphs;
    shape(run, glyphs);
    return glyphs;
}

std::vector<std::int32_t> measured(const ShapingRun& run) {
    std::vector<std::int32_t> advances(run.length, -1);
    measureAdvances(run, advances);
    return advances;
}

// What measuring is to find.
std::vector<std::int32_t> summed(const ShapingRun& run) {
    std::vector<std::int32_t> advances(run.length, 0);
    for (const PlacedGlyph& glyph : shaped(run)) advances[glyph.unit - run.start] += glyph.advance;
    return advances;
}

NSFont* withFeature(NSFont* font, int type, int selector) {
    NSDictionary* setting =
        NSDictionary::of({{NSFontFeatureTypeIdentifierKey, NSNumber::numberWithInt(type)},
                          {NSFontFeatureSelectorIdentifierKey, NSNumber::numberWithInt(selector)}});
    NSDictionary* attributes = NSDictionary::of({{NSFontFeatureSettingsAttribute, NSArray::of({setting})}});
    return NSFont::fontWithDescriptor_size(
        font->fontDescriptor()->fontDescriptorByAddingAttributes(attributes), 0);
}

TEST(ShapingTest, PlacesGlyphsInSixtyFourthsOfAPoint) {
    NSFont* font = fontNamed("DejaVuSans", 64);
    auto glyphs = shaped(runOf(u"AV", font));
    ASSERT_EQ(glyphs.size(), 2u);
    EXPECT_EQ(glyphs[0].glyph, font->glyphForCharacter('A'));
    EXPECT_EQ(glyphs[1].unit, 1u);
    // 1401 and 1401 of 2048 units, the first with a kern of -131.
    EXPECT_EQ(glyphs[0].advance, (1401 - 131) * 2);
    EXPECT_EQ(glyphs[1].advance, 1401 * 2);
    EXPECT_TRUE(shaped(runOf(u"", font)).empty());
    EXPECT_EQ(scriptTagOfCode(25), scriptTag("Latn"));
}

TEST(ShapingTest, OrdersGlyphsFromTheLeftAndJoinsWithTheContext) {
    NSFont* font = fontNamed("NotoSansArabic-Regular");
    const std::u16string_view word = u"\u0628\u0628\u0628";
    auto glyphs = shaped(runOf(word, font, "Arab", true));
    ASSERT_GE(glyphs.size(), 3u);
    EXPECT_EQ(glyphs.front().unit, 2u);
    EXPECT_EQ(glyphs.back().unit, 0u);
    ShapingRun middle = runOf(word, font, "Arab", true);
    middle.start = middle.length = 1;
    const auto joined = shaped(middle), alone = shaped(runOf(u"\u0628", font, "Arab", true));
    EXPECT_NE(joined.back().glyph, alone.back().glyph);
    EXPECT_EQ(joined.back().unit, 1u);
    EXPECT_EQ(measured(middle), summed(middle));
}

TEST(ShapingTest, SwitchesLigaturesByLevelAndFeaturesBySetting) {
    auto countOf = [](NSFont* font, int ligatures) {
        ShapingRun run = runOf(u"ffi", font);
        run.ligatures = ligatures;
        return shaped(run).size();
    };
    NSFont* font = fontNamed("DejaVuSans");
    EXPECT_EQ(countOf(font, 0), 3u);
    EXPECT_EQ(countOf(font, 1), 1u);
    EXPECT_EQ(countOf(withFeature(font, 1, 3), 1), 3u);
    // Small capitals and old-style figures are glyphs of their own, an unknown setting does nothing.
    NSFont* noto = fontNamed("NotoSans-Regular");
    auto firstGlyph = [](NSFont* of, std::u16string_view text) { return shaped(runOf(text, of))[0].glyph; };
    EXPECT_NE(firstGlyph(withFeature(noto, 37, 1), u"a"), firstGlyph(noto, u"a"));
    EXPECT_NE(firstGlyph(withFeature(noto, 21, 0), u"3"), firstGlyph(noto, u"3"));
    EXPECT_EQ(firstGlyph(withFeature(noto, 4711, 1), u"a"), firstGlyph(noto, u"a"));
}

TEST(ShapingTest, MeasuresAsItShapes) {
    struct {
        const char* font;
        const char16_t* text;
        char script[5];
        bool isRightToLeft;
    } rows[] = {
        {"DejaVuSans", u"The AV office ffi fjord, fill million ffffi \u201CWAVE\u201D To  Ty. ", "Latn",
         false},
        {"DejaVuSans", u" e\u0301te\u0301 i\u0300j\u030C na\u00EFve co\u00ADop \U0001D400\U0001D401 \xD800x",
         "Latn", false},
        {"DejaVuSerif", u"\u0427\u0435\u043B\u043E\u0432\u0435\u043A \u0438 \u0413\u0410\u0423", "Cyrl",
         false},
        {"NotoSans-Regular",
         u"\u039F \u039B\u03CC\u03B3\u03BF\u03C2 \u1F04\u03BD\u03B8\u03C1\u03C9\u03C0\u03BF\u03C2", "Grek",
         false},
        {"NotoSansArabic-Regular", u"\u0644\u0627 \u0625\u0644\u0647 \u0643\u062A\u0627\u0628 \u0644\u0627",
         "Arab", true},
        {"NotoNastaliqUrdu-Regular", u"\u06CC\u06C1 \u0627\u0631\u062F\u0648 \u06C1\u06D2 \u06CC\u06C1",
         "Arab", true},
        {"NotoSansHebrew-Regular", u"\u05E9\u05B8\u05C1\u05DC\u05D5\u05B9\u05DD \u05E2\u05D5\u05DC\u05DD",
         "Hebr", true},
        {"NotoSansDevanagari-Regular",
         u"\u0915\u094D\u0937\u0947\u0924\u094D\u0930 \u0939\u093F\u0928\u094D\u0926\u0940 \u093F", "Deva",
         false},
        {"NotoSansThai-Regular", u"\u0E20\u0E32\u0E29\u0E32\u0E44\u0E17\u0E22 \u0E19\u0E49\u0E33", "Thai",
         false},
        {"NotoSansCJKsc-Regular", u"\u6C49\u5B57\u3001\uFF21", "Hani", false},
        {"NotoColorEmoji", u"\U0001F468\u200D\U0001F469\u200D\U0001F467 \U0001F44D\U0001F3FD", "Zyyy",
         false}};
    for (const auto& row : rows)
        for (float size : {1.0f, 11.7f, 400.0f}) {
            NSFont* font = fontNamed(row.font, size);
            ASSERT_TRUE(font) << row.font;
            const ShapingRun run = runOf(row.text, font, row.script, row.isRightToLeft);
            EXPECT_EQ(measured(run), summed(run)) << row.font << " " << size;
            EXPECT_EQ(measured(run), summed(run)) << row.font << " " << size << " again";
        }
}

// All runs of a text, however it is cut, and from several threads.
TEST(ShapingTest, MeasuresEveryStretchOfATextAsItShapes) {
    const std::u16string_view text = u"a fi \u0301x  AV. ffijl ";
    NSFont* font = fontNamed("DejaVuSans", 13);
    onThreads(3, [&](int) {
        for (NSUInteger start = 0; start < text.size(); ++start)
            for (NSUInteger end = start + 1; end <= text.size(); ++end) {
                ShapingRun run = runOf(text, font);
                run.start = start;
                run.length = end - start;
                ASSERT_EQ(measured(run), summed(run)) << start << " to " << end;
            }
    });
}

// More words than are remembered.
TEST(ShapingTest, GoesOnMeasuringWhenItForgetsWords) {
    std::mt19937 random(3);
    NSFont* font = fontNamed("NotoSansArabic-Regular");
    for (int paragraph = 0; paragraph < 1000; ++paragraph) {
        std::u16string text;
        for (int i = 0; i < 600; ++i) text += i % 6 ? static_cast<char16_t>(0x627 + random() % 20) : u' ';
        const ShapingRun run = runOf(text, font, "Arab", true);
        if (paragraph % 100)
            measured(run);
        else
            EXPECT_EQ(measured(run), summed(run));
    }
}

// The shaper leaves out the circle under a mark without a letter if as many syllables as it can count stand
// between the mark and the last one of its kind.
TEST(ShapingTest, MeasuresMarksWithoutLetters) {
    NSFont* font = fontNamed("NotoSansDevanagari-Regular", 10);
    for (int i = 0; i < 100; ++i) measured(runOf(u"\u0928\u092E \u0938", font, "Deva"));  // no more checks
    for (std::size_t syllables = 5; syllables < 20; ++syllables) {
        const std::u16string text = u"\u094D " + std::u16string(syllables, u'\u0915') + u" \u094D";
        const ShapingRun run = runOf(text, font, "Deva");
        EXPECT_EQ(measured(run), summed(run)) << syllables;
    }
}

TEST(ShapingTest, FindsFontsThatStandIn) {
    NSFont* font = fontNamed("DejaVuSans", 14);
    auto substitute = [&](std::u16string_view cluster) {
        return substituteFont(font, cluster)->familyName()->toUTF8();
    };
    EXPECT_EQ(substituteFont(font, u"e\u0301"), font);
    EXPECT_EQ(substituteFont(font, u"\U0010FFFD"), font);  // no font has it
    EXPECT_EQ(substituteFont(font, u"\u0915")->pointSize(), 14);
    EXPECT_THAT(substitute(u"\u0915\u094D\u0937"), HasSubstr("Devanagari"));
    EXPECT_THAT(substitute(u"\u0E20"), HasSubstr("Thai"));
    EXPECT_THAT(substitute(u"\u6C49"), HasSubstr("CJK"));
    EXPECT_EQ(substitute(u"\U0001F600"), "Noto Color Emoji");
    EXPECT_EQ(substitute(u"\u2764\uFE0F"), "Noto Color Emoji");
    EXPECT_EQ(substitute(u"\u2764\uFE0E"), "DejaVu Sans");
    EXPECT_EQ(substitute(u"\u2764"), "DejaVu Sans");
    EXPECT_THAT(substituteFont(fontNamed("DejaVuSans-Bold"), u"\u0E20")->fontName()->toUTF8(),
                HasSubstr("Bold"));
}

TEST(ShapingTest, CutsTextWhereTheFontChanges) {
    NSFont* font = fontNamed("DejaVuSans");
    const std::u16string_view text = u"ab \u0915\u093E, \u0916 x\U0001F468\u200D\U0001F469y";
    const auto cutsOf = [](NSFont* given, std::u16string_view all) {
        std::string cuts;
        for (NSUInteger place = 0; place < all.size();) {
            const FontStretch stretch = fontStretchAt(given, all, place);
            cuts += stretch.font->familyName()->toUTF8() + " " + std::to_string(stretch.end) + "; ";
            place = stretch.end;
        }
        return cuts;
    };
    const std::string cuts = cutsOf(font, text);
    EXPECT_THAT(cuts, StartsWith("DejaVu Sans 3; Noto "));
    EXPECT_THAT(cuts, EndsWith(" 9; DejaVu Sans 10; Noto Color Emoji 15; DejaVu Sans 16; "));
    EXPECT_EQ(cutsOf(fontNamed("NotoSerif-Regular"), u"(\u05D0 [12] \u05D1)"),
              "Noto Serif 1; DejaVu Sans 3; Noto Serif 8; DejaVu Sans 9; Noto Serif 10; ")
        << "digits and brackets are the text's own";
    // Asking in the middle of a stretch, where marks of all scripts stand, gives the rest of it.
    EXPECT_EQ(fontStretchAt(font, text, 5).end, 9u);
    EXPECT_EQ(fontStretchAt(font, u"", 0).font, font);
}

TEST(ShapingTest, TakesLettersOfChineseOriginInTheShapesOfTheLanguage) {
    NSFont* font = fontNamed("DejaVuSans");
    const auto family = [font](const char* tag, std::u16string_view text) {
        return fontStretchAt(font, text, 0, eastAsianLanguage(tag)).font->familyName()->toUTF8();
    };
    const std::u16string_view bone = u"\u9AA8\u3002";
    for (const auto& [tag, end] : {std::pair{"zh", " SC"},
                                   {"zh-Hant", " TC"},
                                   {"zh-TW", " TC"},
                                   {"zh-HK", " HK"},
                                   {"ja-JP", " JP"},
                                   {"ko", " KR"}})
        EXPECT_THAT(family(tag, bone), EndsWith(end)) << tag;
    EXPECT_EQ(family("zh", u"\u0916"), family("", u"\u0916"));
}

// The stretches of random text are those of its clusters one by one.
TEST(ShapingTest, TakesClustersOfOneFontTogether) {
    NSFont* font = fontNamed("DejaVuSans");
    const std::vector<std::u16string> shared = {u" ", u",", u"\u00B7", u",\u0331"};
    const std::vector<std::u16string> others = {u"a",
                                                u"1",
                                                u")\u0331",
                                                u"e\u0301",
                                                u"a\u094D",
                                                u"\u0915",
                                                u"\u0915\u094D",
                                                u"\u0916\u0301",
                                                u"\u6C49",
                                                u"\u0E01\u0E47",
                                                u"\u05D0\u05B8",
                                                u"\u2764",
                                                u"\u2764\uFE0F",
                                                u"\U0001F600",
                                                u"\U0001F468\u200D\U0001F469"};
    std::mt19937 random(5);
    for (int round = 0; round < 300; ++round) {
        std::u16string text;
        std::vector<std::pair<std::size_t, NSFont*>> expected;  // where stretches end, and their fonts
        for (int i = 0; i < 12; ++i) {
            const bool isShared = random() % 2;
            const auto& choice = isShared ? shared : others;
            const std::u16string& cluster = choice[random() % choice.size()];
            NSFont* before = expected.empty() ? font : expected.back().second;
            const bool stays = isShared && before->familyName()->toUTF8() != "Noto Color Emoji" &&
                               substituteFont(before, cluster) == before;
            NSFont* wanted = stays ? before : substituteFont(font, cluster);
            text += cluster;
            if (expected.empty() || before != wanted) expected.emplace_back(0, wanted);
            expected.back().first = text.size();
        }
        std::vector<std::pair<std::size_t, NSFont*>> found;
        for (NSUInteger place = 0; place < text.size(); place = static_cast<NSUInteger>(found.back().first)) {
            const FontStretch stretch = fontStretchAt(font, text, place);
            found.emplace_back(stretch.end, stretch.font);
        }
        ASSERT_EQ(found, expected) << testing::PrintToString(text);
    }
}

}  // namespace
