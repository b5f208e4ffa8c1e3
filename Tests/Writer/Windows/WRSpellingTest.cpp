// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRSpelling.h"

#include "DictionaryScope.h"
#include "Foundation/NSUserDefaults.h"
#include "Interface/NSMenu.h"
#include "Interface/NSMenuItem.h"
#include "InterfaceScope.h"
#include "PBPostLoader.h"
#include "Text/NSTextStorage.h"
#include "Text/TextAttributes.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/WRDocument.h"
#include "Writer/Windows/Preferences.h"
#include "Writer/Windows/WRDocumentWindow.h"
#include "Writer/Windows/WRPageView.h"
#include "Writer/Windows/WRSpellingMarks.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace {

bool isReddish(std::uint32_t colour) { return (colour >> 16) > (colour >> 8 & 0xFF) + 80; }

// A document in a window, with small dictionaries of English and German.
class SpellingTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        registerLibrary(windowsLibrary);
        PBPostLoader::processClassesStartingRegistry(false);
        std::filesystem::current_path(WRITER_PAGES);
    }
    SpellingTest() {
        dictionaries.add("en_GB", "the\nsea\nblue\n");
        dictionaries.add("de_DE", "das\nMeer\nblau\n");
        dictionaries.checker();
    }
    ~SpellingTest() override {
        NSUserDefaults::standardUserDefaults()->removeObjectForKey(WRMarksMisspellingsPreference);
    }
    void open(NSString* text) {
        auto document = WRDocument::initWithPath_reader_answer(u"/a/b.txt"_ns, nullptr,
                                                               NSDictionary::of({{WRTextKey, text}}));
        NSString* problem = nullptr;
        window = WRDocumentWindow::create(document, NSDictionary::dictionary(), &problem);
        window->show();
        view = window->pageView();
        settle();
    }
    // Until dictionaries are read and words are checked.
    void settle() {
        for (int i = 0; i < 4; ++i) {
            for (NSString* name : {u"en_GB"_ns, u"de_DE"_ns})
                while (!NSSpellChecker::sharedSpellChecker()->prepareLanguage(name)) screen.turn();
            screen.turn();
        }
    }
    std::string marked() {
        std::string words;
        NSResponder* spelling = window;
        while (!cast<WRSpelling>(spelling)) spelling = spelling->nextResponder();
        auto* marks = cast<WRSpelling>(spelling)->marks();
        for (const NSRange word : marks->marksInRange({0, view->string()->length()}))
            words += " " + view->string()->substringWithRange(word)->toUTF8();
        return words;
    }
    void setLanguage(NSString* name, NSRange range) {
        view->textStorage()->addAttribute_value_range(NSLanguageAttributeName, name, range);
        settle();
    }
    bool isUnderlined(NSRange word) {
        screen.turn();
        const NSRect rect = view->rectForCharacterRange(word);
        for (float y = NSMinY(rect); y < NSMaxY(rect); ++y)
            for (float x = NSMinX(rect); x < NSMaxX(rect); ++x)
                if (isReddish(screen.pixel(view, {x, y}))) return true;
        return false;
    }

    DictionaryScope dictionaries;
    InterfaceScope screen;
    Retained<WRDocumentWindow> window;
    WRPageView* view = nullptr;
};

TEST_F(SpellingTest, MarksWordsInTheLanguageOfTheText) {
    open(u"the sae das Mer el mar"_ns);
    EXPECT_EQ(marked(), " sae das Mer el mar");
    setLanguage(u"de"_ns, {8, 7});
    setLanguage(u"es"_ns, {16, 6});
    EXPECT_EQ(marked(), " sae Mer");
    EXPECT_TRUE(isUnderlined({4, 3}));
    EXPECT_FALSE(isUnderlined({0, 3}));
    // Letters in other formats are no other word.
    view->textStorage()->addAttribute_value_range(NSUnderlineStyleAttributeName, NSNumber::numberWithInt(1),
                                                  {0, 2});
    settle();
    EXPECT_EQ(marked(), " sae Mer");
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
    EXPECT_TRUE(isUnderlined({4, 3}));
    screen.press(u'z', NSCommandKeyMask);
}

TEST_F(SpellingTest, OffersWhatMayHaveBeenMeant) {
    open(u"the sae sae"_ns);
    view->setSelectedRange({5, 0});
    NSMenu* menu = view->menu();
    menu->update();
    EXPECT_EQ(menu->itemAtIndex(0)->title()->toUTF8(), "_Looking for suggestions …");
    while (!menu->itemAtIndex(0)->action()) screen.turn();
    EXPECT_EQ(menu->itemAtIndex(0)->title()->toUTF8(), "sea");
    menu->performActionForItemAtIndex(0);
    settle();
    EXPECT_EQ(view->string()->toUTF8(), "the sea sae");
    EXPECT_EQ(marked(), " sae");
    send(view, "undo:"_sel, static_cast<id>(nullptr));
    settle();
    EXPECT_EQ(view->string()->toUTF8(), "the sae sae");
    const auto choose = [&](SEL action) {
        view->setSelectedRange({5, 0});
        menu->update();
        menu->performActionForItemAtIndex(menu->indexOfItemWithTarget_andAction(nullptr, action));
        settle();
    };
    choose("ignoreMisspelling:"_sel);
    EXPECT_EQ(marked(), "");
    open(u"the sae"_ns);
    EXPECT_EQ(marked(), " sae") << "ignored in one document only";
    menu = view->menu();
    choose("learnMisspelling:"_sel);
    EXPECT_EQ(marked(), "");
    EXPECT_TRUE(dictionaries.checker()->hasLearnedWord_language(u"sae"_ns, u"en_GB"_ns));
}

TEST_F(SpellingTest, GoesToTheNextMisspelling) {
    open(u"the sae, the blau"_ns);
    for (const NSRange& expected : {NSRange{4, 3}, {13, 4}, {4, 3}}) {
        NSApplication::sharedApplication()->sendAction_to_from("showNextMisspelling:"_sel, nullptr, nullptr);
        EXPECT_EQ(view->selectedRange(), expected);
    }
    NSApplication::sharedApplication()->sendAction_to_from("toggleSpellingMarks:"_sel, nullptr, nullptr);
    EXPECT_EQ(marked(), "");
    EXPECT_FALSE(isUnderlined({4, 3}));
    open(u"sae"_ns);
    EXPECT_EQ(marked(), "") << "the choice is remembered";
}

}  // namespace
