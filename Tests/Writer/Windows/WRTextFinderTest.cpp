// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRTextFinder.h"

#include <random>

#include "Foundation/NSUndoManager.h"
#include "Interface/NSPasteboard.h"
#include "Interface/NSTextView.h"
#include "InterfaceScope.h"
#include "Text/NSTextStorage.h"
#include "Writer/TextEscapes.h"
#include "Writer/Windows/WRFindPanel.h"
#include "Writer/Windows/WindowsLibrary.h"

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

class TextFinderTest : public ::testing::Test {
  protected:
    void SetUp() override {
        registerLibrary(windowsLibrary);
        window = screen.window({{100, 100}, {300, 300}});
        view = NSTextView::initWithFrame({{0, 0}, {300, 300}});
        window->contentView()->addSubview(view);
        finder = WRTextFinder::init();
    }
    void setText(NSString* text) {
        view->textStorage()->setAttributedString(NSAttributedString::initWithString(text).get());
    }
    void command(SEL command) {
        send(view.get(), command, id(nullptr));
        screen.turn();
    }
    std::string find(bool isBackwards = false) {
        const FindResult result = finder->find(view, isBackwards);
        switch (result.kind) {
            case FindResult::Kind::found:
                return std::to_string(result.number) + " at " +
                       std::to_string(view->selectedRange().location);
            case FindResult::Kind::wrapped:
                return "wrapped to " + std::to_string(result.number);
            case FindResult::Kind::noMore:
                return "no more";
            default:
                return "not found";
        }
    }

    InterfaceScope screen;
    Retained<NSWindow> window;
    Retained<NSTextView> view;
    Retained<WRTextFinder> finder;
};

TEST_F(TextFinderTest, GoesFromPlaceToPlace) {
    setText(u"one two one three one"_ns);
    EXPECT_EQ(finder->find(view, false).kind, FindResult::Kind::noQuery);
    finder->setQuery(queryOf(u"one"));
    view->setSelectedRange({1, 0});
    EXPECT_EQ(find(), "2 at 8");
    EXPECT_EQ(find(), "3 at 18");
    EXPECT_EQ(find(), "wrapped to 1");
    EXPECT_EQ(find(true), "wrapped to 3");
    EXPECT_EQ(find(true), "2 at 8");
    finder->setWraps(false);
    EXPECT_EQ(find(true), "1 at 0");
    EXPECT_EQ(find(true), "no more");
    EXPECT_EQ(view->selectedRange(), (NSRange{0, 3})) << "stays";
    // The text may change in between.
    view->insertText(u"One, one and "_ns);
    EXPECT_EQ(find(), "3 at 18");
    finder->setQuery(queryOf(u"four"));
    EXPECT_EQ(find(), "not found");
}

TEST_F(TextFinderTest, ReplacesThePlaceThatIsSelected) {
    setText(u"a b a"_ns);
    finder->setQuery(queryOf(u"a"));
    finder->setReplacement(u"long"_ns);
    view->setSelectedRange({0, 0});
    EXPECT_EQ(finder->replace(view).kind, FindResult::Kind::found) << "selects it first";
    EXPECT_EQ(finder->replace(view).kind, FindResult::Kind::replaced);
    EXPECT_EQ(shown(view->string()), "long b a");
    EXPECT_EQ(view->selectedRange(), (NSRange{4, 0}));
    screen.turn();
    command("undo:"_sel);
    EXPECT_EQ(shown(view->string()), "a b a");
    EXPECT_EQ(view->selectedRange(), (NSRange{0, 1}));
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
        command("undo:"_sel);
        EXPECT_TRUE(view->textStorage()->isEqual(before));
        EXPECT_EQ(view->selectedRange(), (NSRange{caret, 0}));
        EXPECT_FALSE(view->undoManager()->canUndo());
        command("redo:"_sel);
        EXPECT_TRUE(view->textStorage()->isEqual(expected));
    }
}

}  // namespace
