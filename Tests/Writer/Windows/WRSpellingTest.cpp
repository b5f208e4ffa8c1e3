// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRSpelling.h"

#include "DictionaryScope.h"
#include "FormatScope.h"
#include "Writer/WRLanguage.h"
#include "Writer/Windows/WRSpellingMarks.h"

namespace {

bool isReddish(std::uint32_t colour) { return (colour >> 16) > (colour >> 8 & 0xFF) + 80; }

// Documents in windows, with small dictionaries of three languages.
struct SpellingTest : ::testing::Test, DictionaryScope, FormatScope {
    SpellingTest() : FormatScope(u""_ns) {
        add("en_GB", "the\nsea\nblue\n");
        add("de_DE", "das\nMeer\nblau\n");
        add("fr", "la\nmer\n");
        checker();
    }
    void open(NSString* text) {
        FormatScope::open(text);
        settle();
    }
    // Until dictionaries are read and words are checked.
    void settle() {
        for (int i = 0; i < 4; ++i) {
            for (NSString* name : {u"en_GB"_ns, u"de_DE"_ns, u"fr"_ns})
                while (!checker()->prepareLanguage(name)) screen.turn();
            screen.turn();
        }
    }
    // From the place to the end of the text before it: "de" as the document tells, or "=de" as the user has
    // set it.
    void setLanguage(NSString* name, std::u16string_view before, std::size_t place) {
        if (!name) return;
        const bool isSet = name->hasPrefix(u"="_ns);
        id value =
            isSet ? static_cast<id>(name->substringFromIndex(1)) : WRLanguage::languageWithIdentifier(name);
        view->textStorage()->addAttribute_value_range(
            isSet ? NSLanguageAttributeName : PBLanguageAttributeName, value,
            {static_cast<NSUInteger>(place), static_cast<NSUInteger>(before.size() - place)});
    }
    WRSpellingMarks* marks() {
        NSResponder* spelling = window;
        while (!cast<WRSpelling>(spelling)) spelling = spelling->nextResponder();
        return cast<WRSpelling>(spelling)->marks();
    }
    std::string marked() {
        std::string words;
        for (const NSRange word : marks()->marksInRange({0, view->string()->length()}))
            words += " " + view->string()->substringWithRange(word)->toUTF8();
        return words;
    }
    // Chooses in the context menu; returns the titles of the items before those for all words.
    std::string chooseAt(NSUInteger caret, SEL action = SEL()) {
        select(caret);
        NSMenu* menu = view->menu();
        menu->update();
        while (menu->itemAtIndex(0)->title()->hasPrefix(u"_Looking"_ns)) screen.turn();
        std::string titles;
        for (const auto& item : menu->items()) {
            if (item->action() == "cut:"_sel) break;
            titles += " " + item->title()->toUTF8();
        }
        if (action) menu->performActionForItemAtIndex(menu->indexOfItemWithTarget_andAction(nullptr, action));
        settle();
        return titles;
    }
    // Of how many points the word's underline has pixels.
    int underlined(NSRange word) {
        screen.turn();
        const NSRect rect = view->rectForCharacterRange(word);
        int points = 0;
        for (float y = NSMinY(rect); y < NSMaxY(rect); ++y)
            for (float x = NSMinX(rect); x < NSMaxX(rect); ++x)
                points += isReddish(screen.pixel(view, {x, y}));
        return points;
    }
};

TEST_F(SpellingTest, MarksWordsInTheLanguageOfTheText) {
    struct Row {
        const char* name;
        const char16_t* text;
        NSString *first, *last;  // the languages of the first and the last line, "=" as the user has set it
        const char* marked;
    };
    Row rows[] = {
        {"the user's", u"the sae das", nullptr, nullptr, " sae das"},
        {"set", u"the Mer\nel mar", u"=de"_ns, u"=es"_ns, " the Mer"},
        {"beside a line", u"das Meer\nthe Meer mer", u"de"_ns, u"en"_ns, " mer"},
        {"above a line", u"mer Meer\n\nla mer", u"de"_ns, u"fr"_ns, ""},
        {"the user's in a short line", u"das sea mer", u"de"_ns, nullptr, " mer"},
        {"set in a short line", u"das sea", u"=de"_ns, nullptr, " sea"},
        {"a long line", u"das sea das das das das das das das das das das das", u"de"_ns, nullptr, " sea"},
        {"without a dictionary", u"zzz sae", u"es"_ns, nullptr, ""}};
    for (const Row& row : rows) {
        open(NSString::of(row.text));
        const std::u16string_view text = row.text;
        setLanguage(row.first, text.substr(0, text.find(u'\n')), 0);
        setLanguage(row.last, text, text.rfind(u'\n') + 1);
        settle();
        EXPECT_EQ(marked(), row.marked) << row.name;
    }
    open(u"the sae the"_ns);
    const int points = underlined({4, 3});
    EXPECT_GE(points, static_cast<int>(NSWidth(view->rectForCharacterRange({4, 3})))) << "along the word";
    EXPECT_EQ(underlined({0, 3}), 0);
    view->setSelectedRange({4, 3});
    EXPECT_EQ(underlined({4, 3}), points) << "above the colour of the selection";
    // Letters in other formats are no other word.
    view->textStorage()->addAttribute_value_range(NSUnderlineStyleAttributeName, NSNumber::numberWithInt(1),
                                                  {0, 2});
    settle();
    EXPECT_EQ(marked(), " sae");
}

TEST_F(SpellingTest, FollowsEdits) {
    open(u"the sae is blu"_ns);
    EXPECT_EQ(marked(), " sae is blu");
    view->setSelectedRange({0, 0});
    screen.type(u"th");
    EXPECT_EQ(marked(), " sae is blu") << "what is being typed is not marked";
    screen.press(NSRightArrowFunctionKey);
    EXPECT_EQ(marked(), " sae is blu") << "the caret is still in the word";
    for (int i = 0; i < 4; ++i) screen.press(NSRightArrowFunctionKey);
    EXPECT_EQ(marked(), " ththe sae is blu");
    view->setSelectedRange({0, 2});
    screen.press(NSDeleteFunctionKey);
    EXPECT_EQ(marked(), " sae is blu");
}

TEST_F(SpellingTest, OffersWhatMayHaveBeenMeant) {
    open(u"the sae sae"_ns);
    EXPECT_EQ(chooseAt(5, "replaceMisspelling:"_sel), " sea  _Ignore _Learn Spelling ");
    EXPECT_EQ(view->string()->toUTF8(), "the sea sae");
    EXPECT_EQ(marked(), " sae");
    undo();
    EXPECT_EQ(view->string()->toUTF8(), "the sae sae");
    chooseAt(5, "ignoreMisspelling:"_sel);
    EXPECT_EQ(marked(), "");
    EXPECT_EQ(chooseAt(11, "unignoreWord:"_sel), " _Do Not Ignore ") << "the caret behind the word";
    EXPECT_EQ(marked(), " sae sae");
    chooseAt(5, "ignoreMisspelling:"_sel);
    const auto firstWindow = window;
    WRSpellingMarks* firstMarks = marks();
    open(u"the Qqq qqq sae"_ns);
    EXPECT_EQ(marked(), " Qqq qqq sae") << "ignored in one document only";
    chooseAt(10, "learnMisspelling:"_sel);
    EXPECT_EQ(marked(), " sae");
    EXPECT_EQ(chooseAt(4, "unlearnWord:"_sel), " _Unlearn Spelling ") << "learned in small letters";
    EXPECT_EQ(marked(), " Qqq qqq sae");
    // What is learned in one window is known in the others.
    chooseAt(14, "learnMisspelling:"_sel);
    firstMarks->unignoreWord(u"sae"_ns);
    settle();
    EXPECT_TRUE(firstMarks->marksInRange({0, 11}).empty());
    firstWindow->window()->close();
    EXPECT_EQ(chooseAt(15, "unlearnWord:"_sel), " _Unlearn Spelling ") << "a closed window hears nothing";
}

TEST_F(SpellingTest, GoesToTheNextMisspelling) {
    const auto next = [&] {
        choose("showNextMisspelling:"_sel);
        settle();
        return view->selectedRange();
    };
    open(u"the sae, the blau"_ns);
    for (const NSRange& expected : {NSRange{4, 3}, {13, 4}, {4, 3}}) EXPECT_EQ(next(), expected);
    choose("toggleSpellingMarks:"_sel);
    EXPECT_EQ(marked(), "");
    EXPECT_EQ(underlined({4, 3}), 0);
    open(u"sae"_ns);
    EXPECT_EQ(marked(), "") << "the choice is remembered";
    EXPECT_EQ(next(), (NSRange{0, 3})) << "also where nothing is marked";
    LogLines log;
    open(u"the"_ns);
    next();
    EXPECT_THAT(log.lines, Contains(StartsWith("_No word is misspelled."))) << joined(log.lines);
}

// In a text that is not checked at once, the search leaves the window alive.
TEST_F(SpellingTest, SearchesWhileTheUserGoesOn) {
    std::u16string text;
    while (text.size() < 500'000) text += u"the blue sea\n";
    defaults->setBool_forKey(false, WRMarksMisspellingsPreference);
    open(NSString::of(text + u"sae"));
    const auto search = [&] { screen.app->sendAction_to_from("showNextMisspelling:"_sel, nullptr, nullptr); };
    const auto isSearching = [&] { return marks()->isSearching(); };
    search();
    marks()->workAtIdle();
    EXPECT_FALSE(window->notice()) << "not in the first half second";
    screen.clock.advance(1);
    marks()->workAtIdle();
    ASSERT_TRUE(window->notice());
    EXPECT_THAT(window->notice()->text()->toUTF8(), HasSubstr("Looking"));
    screen.press(0x1B);
    EXPECT_FALSE(isSearching() || window->notice());
    search();
    view->setSelectedRange({1, 0});
    EXPECT_FALSE(isSearching()) << "the user is elsewhere";
    search();
    view->textStorage()->replaceCharactersInRange_withString({13, 13}, u""_ns);
    EXPECT_TRUE(isSearching());
    while (isSearching()) screen.turn();
    EXPECT_EQ(view->selectedRange(), (NSRange{static_cast<NSUInteger>(text.size()) - 13, 3}));
}

}  // namespace
