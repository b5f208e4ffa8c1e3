// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRTextFinder.h"

#include "FormatScope.h"
#include "Writer/TextEscapes.h"

namespace {

TextQuery queryOf(std::u16string_view text, bool matchesCase = false, bool isWholeWords = false) {
    return {NSString::of(text)->copy(), matchesCase, isWholeWords};
}

TEST(TextQueryTest, FindsAllPlaces) {
    struct Row {
        const char* name;
        const char16_t *text, *query;
        bool matchesCase, isWholeWords;
        std::vector<NSRange> places;
    };
    const Row kRows[] = {
        {"any case", u"Cat cAT", u"cat", false, false, {{0, 3}, {4, 3}}},
        {"one case", u"Cat cat", u"cat", true, false, {{4, 3}}},
        {"no overlaps", u"aaaaa", u"aa", false, false, {{0, 2}, {2, 2}}},
        {"words", u"cat category Cat's cat-like concat", u"cat", false, true, {{0, 3}, {19, 3}}},
        {"a word behind a part of one", u"aab aa", u"aa", false, true, {{4, 2}}},
        {"several words", u"to be or not to be, to bear", u"to be", false, true, {{0, 5}, {13, 5}}},
        {"whole characters", u"e\u0301e caf\u00E9", u"e", false, false, {{2, 1}}},
        {"equal characters", u"e\u0301e caf\u00E9", u"\u00E9", false, false, {{0, 2}, {7, 1}}},
        {"line ends and tabs", u"a\n\n\tb\n\n", u"\n\n\t", false, false, {{1, 3}}},
        {"nothing", u"", u"a", false, false, {}},
    };
    for (const Row& row : kRows)
        EXPECT_EQ(placesOfQuery(row.text, queryOf(row.query, row.matchesCase, row.isWholeWords)), row.places)
            << row.name;
}

TEST(TextQueryTest, ReadsAndWritesEscapes) {
    NSString* text = u"a\nb\tc\\n\\"_ns;
    EXPECT_EQ(shown(escapedText(text)), "a\\nb\\tc\\\\n\\\\");
    EXPECT_EQ(shown(textFromEscapes(escapedText(text))), shown(text));
    EXPECT_EQ(shown(textFromEscapes(u"\\x\\"_ns)), "\\x\\");
}

struct TextFinderTest : ::testing::Test, FormatScope {
    TextFinderTest() : FormatScope(u"one two one three one"_ns) {}

    void setText(NSString* text) {
        view->textStorage()->setAttributedString(NSAttributedString::initWithString(text).get());
    }
    // How the search ended, with the number of the place, and where the selection begins then.
    std::string find(bool isBackwards = false) {
        static constexpr const char* kEnds[] = {"no query", "not found", "no more", "found", "wrapped"};
        const FindResult result = finder->find(view, isBackwards);
        return shown(kEnds[static_cast<int>(result.kind)], result.number, "at",
                     view->selectedRange().location);
    }

    Retained<WRTextFinder> finder = WRTextFinder::init();
};

TEST_F(TextFinderTest, GoesFromPlaceToPlace) {
    EXPECT_EQ(find(), "no query 0 at 0");
    finder->setQuery(queryOf(u"one"));
    view->setSelectedRange({1, 0});
    EXPECT_EQ(find(), "found 2 at 8");
    EXPECT_EQ(find(), "found 3 at 18");
    EXPECT_EQ(find(), "wrapped 1 at 0");
    EXPECT_EQ(find(true), "wrapped 3 at 18");
    EXPECT_EQ(find(true), "found 2 at 8");
    finder->setWraps(false);
    EXPECT_EQ(find(true), "found 1 at 0");
    EXPECT_EQ(find(true), "no more 0 at 0") << "the selection stays";
    // The text may change in between.
    view->insertText(u"One, one and "_ns);
    EXPECT_EQ(find(), "found 3 at 18");
    finder->setQuery(queryOf(u"four"));
    EXPECT_EQ(find(), "not found 0 at 18");
}

TEST_F(TextFinderTest, ReplacesThePlaceThatIsSelected) {
    setText(u"a b a"_ns);
    finder->setQuery(queryOf(u"a"));
    finder->setReplacement(u"long"_ns);
    view->setSelectedRange({0, 0});
    EXPECT_EQ(finder->replace(view).kind, FindResult::Kind::found) << "selects it first";
    EXPECT_EQ(finder->replace(view).kind, FindResult::Kind::replaced);
    EXPECT_EQ(shown(view->string(), view->selectedRange()), "long b a {4, 0}");
    screen.turn();
    undo();
    EXPECT_EQ(shown(view->string(), view->selectedRange()), "a b a {0, 1}");
    view->setEditable(false);
    EXPECT_EQ(finder->replaceAll(view).kind, FindResult::Kind::readOnly);
    EXPECT_EQ(shown(view->string()), "a b a");
}

// Replacing all is the same as replacing one after the other from behind, and one change to undo.
TEST_F(TextFinderTest, ReplacesAllWithTheirFormats) {
    std::mt19937 random(7);
    const auto any = [&](unsigned count) { return static_cast<NSUInteger>(random() % count); };
    for (int round = 0; round < 60; ++round) {
        std::u16string units;
        for (NSUInteger i = 1 + any(60); i > 0; --i) units += u"aab\n"[any(4)];
        setText(NSString::of(units));
        const auto length = static_cast<NSUInteger>(units.size());
        for (NSUInteger i = any(6); i > 0; --i) {
            const NSUInteger start = any(length), count = 1 + any(length - start);
            view->textStorage()->addAttribute_value_range(u"mark"_ns, NSNumber::numberWithUnsignedInt(i),
                                                          {start, count});
        }
        const TextQuery query = queryOf(any(2) ? u"a" : u"ab");
        NSString* replacement = any(2) ? (any(2) ? u"xyz"_ns : u"abab"_ns) : u""_ns;
        const NSUInteger caret = any(length + 1);
        view->setSelectedRange({caret, 0});
        screen.turn();
        view->undoManager()->removeAllActions();

        auto expected = view->textStorage()->mutableCopy();
        const auto before = view->textStorage()->copy();
        const auto places = placesOfQuery(units, query);
        NSUInteger moved = caret;  // behind what comes in where it was inside of what goes
        for (auto place = places.rbegin(); place != places.rend(); ++place) {
            expected->replaceCharactersInRange_withString(*place, replacement);
            if (place->location < moved)
                moved = std::max(moved, NSMaxRange(*place)) - place->length + replacement->length();
        }
        finder->setQuery(query);
        finder->setReplacement(replacement);
        const FindResult result = finder->replaceAll(view);
        EXPECT_EQ(result.count, places.size());
        EXPECT_TRUE(view->textStorage()->isEqual(expected)) << view->textStorage() << expected;
        screen.turn();
        if (places.empty()) continue;
        EXPECT_EQ(view->selectedRange(), (NSRange{moved, 0}));
        undo();
        EXPECT_TRUE(view->textStorage()->isEqual(before));
        EXPECT_EQ(view->selectedRange(), (NSRange{caret, 0}));
        EXPECT_FALSE(view->undoManager()->canUndo());
        redo();
        EXPECT_TRUE(view->textStorage()->isEqual(expected));
    }
}

}  // namespace
