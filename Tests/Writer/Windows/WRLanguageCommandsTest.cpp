// SPDX-License-Identifier: Apache-2.0
// Languages of text, keyboards and characters in a document's window.
#include "Writer/Windows/WRLanguageCommands.h"

#include "../TestProfiles.h"
#include "FormatScope.h"
#include "Interface/KeyboardLayouts.h"
#include "TestClasses.h"
#include "Writer/Pages/TextLanguage.h"
#include "Writer/WRLanguage.h"
#include "Writer/Windows/WRCharactersPanel.h"

namespace {

// Knows two words.
NSString* languageOf(NSObject*, NSString* text) {
    return text->hasPrefix(u"das"_ns) ? u"de"_ns : text->hasPrefix(u"the"_ns) ? u"en"_ns : nullptr;
}

struct LanguageCommandsTest : ::testing::Test, FormatScope {
    static void SetUpTestSuite() {
        prepareWindows();
        makeClass<"languageOfText:", &languageOf>("WRTestLanguageFinder");
        PBRegistry* registry = PBRegistry::sharedRegistry();
        addProfile(registry, "finder", PBProfileDocumentServiceType, {}, 0, u"WRTestLanguageFinder"_ns);
        const auto add = [registry](NSString* name, NSString* type, NSString* key, id value) {
            registry->addProfile(PBProfile::profileWithIdentifier_dictionary_bundle(
                name, NSDictionary::of({{PBProfileTypeKey, type}, {key, value}}), nullptr));
        };
        for (NSString* name : {u"en"_ns, u"de"_ns, u"fr"_ns})
            add(name, PBProfileLanguageType, u"code"_ns, name);
        add(u"dashes"_ns, PBProfilePaletteType, u"characters"_ns, NSArray::of({u"–"_ns, u"—"_ns}));
    }
    LanguageCommandsTest() : FormatScope(u"the sea das Meer"_ns) {
        screen.backend->setLayouts(
            {{0, "us", "English", "eng", "us", true}, {1, "de", "German", "deu", "de"}});
    }
    /// Chooses the language in the menu; returns the marks that the items had before.
    std::string chooseLanguage(NSString* name) {
        auto menu = NSMenu::init();
        auto filler = WRLanguageMenu::init();
        menu->setDelegate(filler);
        menu->update();
        std::string marks;
        for (const auto& item : menu->items())
            if (item->state()) marks += (item->state() > 0 ? " " : " -") + item->title()->toUTF8();
        menu->performActionForItemAtIndex(menu->indexOfItemWithRepresentedObject(name));
        screen.turn();
        return marks;
    }
    std::string languageAt(NSUInteger index) {
        NSString* name = languageInText(view->textStorage(), index, nullptr, {});
        return name ? name->toUTF8() : "";
    }
    static std::string keyboard() {
        KeyboardLayoutRef layout = nullptr;
        KLGetCurrentKeyboardLayout(&layout);
        return keyboardLayoutLanguage(layout)->toUTF8();
    }
};

TEST_F(LanguageCommandsTest, SetsTheLanguageOfTheSelectionInOneStep) {
    select(8, 8);
    EXPECT_EQ(chooseLanguage(u"de"_ns), " en");
    EXPECT_EQ(languageAt(8) + languageAt(0), "deen");
    EXPECT_EQ(keyboard(), "de");
    EXPECT_FALSE(document->hasFormats()) << "a language is no format";
    select(0, 16);
    EXPECT_EQ(chooseLanguage(u"fr"_ns), " -en") << "of the first of several languages";
    EXPECT_EQ(keyboard(), "de") << "no layout for the language";
    undo();
    EXPECT_EQ(languageAt(8) + languageAt(0), "deen");
    select(16);
    EXPECT_EQ(chooseLanguage(u"fr"_ns), " de");
    screen.type(u"x");
    EXPECT_EQ(languageAt(15) + languageAt(16), "defr");
    view->setEditable(false);
    select(0, 16);
    chooseLanguage(u"de"_ns);
    EXPECT_EQ(languageAt(0), "en");
}

TEST_F(LanguageCommandsTest, SwitchesTheKeyboardWithTheCaretIfAsked) {
    open(u"the sea\ndas Meer"_ns);
    EXPECT_EQ(languageAt(8), "de");
    select(10);
    EXPECT_EQ(keyboard(), "en");
    defaults->setBool_forKey(true, WRKeyboardFollowsLanguagePreference);
    select(11);
    EXPECT_EQ(keyboard(), "de");
    select(2);
    EXPECT_EQ(keyboard(), "en");
    screen.backend->setLayout(1);
    select(3);
    EXPECT_EQ(keyboard(), "de") << "the user's choice, in text of the same language";
}

// Lines that do not tell have the language of the line before, or else of the one behind.
TEST_F(LanguageCommandsTest, FindsTheLanguagesOfLines) {
    expectAll(
        {"the|Anna|das|Anna -> en en de de", "Anna|Bonn|das -> de de de", "the||A|das|B -> en en de de"},
        [&](const std::string& text) {
            NSString* lines = NSString::ofUTF8(text);
            open(lines->stringByReplacingOccurrencesOfString_withString(u"|"_ns, u"\n"_ns));
            std::string found;
            for (NSUInteger i = 0; i < text.size(); ++i)
                if (text[i] != '|' && (i == 0 || text[i - 1] == '|')) found += (i ? " " : "") + languageAt(i);
            return found;
        });
}

TEST_F(LanguageCommandsTest, FindsLanguagesWhileTheDocumentIsShown) {
    auto text = NSMutableString::init();
    for (int i = 0; i < 20'000; ++i) text->appendFormat(u"%@ %d\n"_ns, i % 2 ? u"das"_ns : u"the"_ns, i);
    open(text);
    int told = 0;
    auto listener = Listener::to(WRDocumentDidChangeNotification, document);
    listener->reaction = [&told] { ++told; };
    EXPECT_EQ(languageAt(0) + languageAt(7), "ende");
    EXPECT_NE(languageAt(text->length() - 3), "de");
    EXPECT_EQ(view->pageCount(), 1u);
    view->insertText(u"x"_ns);
    const int typed = std::exchange(told, 0);
    EXPECT_GT(typed, 0);
    const NSUInteger last = text->length() - 2;
    while (languageAt(last) != "de") screen.turn();
    EXPECT_EQ(told, 0) << "nobody else has changed the document";
    undo();
    EXPECT_TRUE(view->string()->isEqualToString(text));
    EXPECT_FALSE(view->undoManager()->canUndo());
    EXPECT_EQ(languageAt(last), "de");
}

TEST_F(LanguageCommandsTest, FindsTheLanguageOfWhatIsWritten) {
    std::string many;
    for (int i = 0; i < 22; ++i) many += "das ";
    struct Row {
        const char* situation;
        std::string typed;
        NSString* chosen;   // the language that the user sets first
        NSUInteger caret;   // where the user goes then
        const char* found;  // of the first and the last letter
    };
    const Row rows[] = {
        {"being written", "das Meer", nullptr, 17, "enen"},
        {"behind its end", "das Meer\n", nullptr, 18, "dede"},
        {"left", "das Meer", nullptr, 2, "dede"},
        {"long enough", many, nullptr, 9 + 88, "dede"},
        {"long, but not clear", "das " + std::string(90, 'x'), nullptr, 9 + 94, "enen"},
        {"that does not tell", "Meer\n", nullptr, 14, "enen"},
        {"set by the user", "das Meer\n", u"fr"_ns, 18, "frfr"},
        {"several", "the\ndas Meer\ndas\n", nullptr, 26, "ende"},
    };
    for (const Row& row : rows) {
        open(u"the sea\n\n"_ns);
        select(0, 9);
        view->textStorage()->addAttribute_value_range(WRLanguageAttributeKey,
                                                      WRLanguage::languageWithIdentifier(u"en"_ns), {0, 9});
        select(9);
        view->undoManager()->removeAllActions();
        if (row.chosen) chooseLanguage(row.chosen);
        view->insertText(NSString::ofUTF8(row.typed));
        select(row.caret);
        for (int i = 0; i < 5; ++i) screen.turn();
        const NSUInteger last = 9 + row.typed.find_last_not_of('\n');
        EXPECT_EQ(languageAt(9) + languageAt(last), row.found) << row.situation;
        undo();
        EXPECT_EQ(shown(view->string()), "the sea\n\n") << row.situation;
        EXPECT_FALSE(view->undoManager()->canUndo()) << row.situation;
    }
    open(u"the sea\n"_ns);
    select(8);
    view->setMarkedText_selectedRange(NSString::ofUTF8(many), {0, 0});
    for (int i = 0; i < 5; ++i) screen.turn();
    EXPECT_NE(languageAt(8), "de") << "is being composed";
}

TEST_F(LanguageCommandsTest, TypesSpecialCharacters) {
    open(u"ab"_ns);
    select(1);
    auto panel = WRCharactersPanel::init();
    panel->window()->showBeside(window->window());
    screen.turn();
    screen.type(u"U+2014");
    screen.press(NSCarriageReturnCharacter);
    EXPECT_EQ(view->string()->toUTF8(), "a—b");
    undo();
    EXPECT_EQ(view->string()->toUTF8(), "ab");
}

}  // namespace
