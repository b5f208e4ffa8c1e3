// SPDX-License-Identifier: Apache-2.0
// Languages of text, keyboards and characters in a document's window.
#include "Writer/Windows/WRLanguageCommands.h"

#include <filesystem>

#include "../TestProfiles.h"
#include "Foundation/NSMutableString.h"
#include "Foundation/NSUndoManager.h"
#include "Foundation/NSUserDefaults.h"
#include "Interface/KeyboardLayouts.h"
#include "Interface/NSMenu.h"
#include "Interface/NSMenuItem.h"
#include "Interface/NSTableView.h"
#include "InterfaceScope.h"
#include "NSAttributedString-PelvorAdditions.h"
#include "PBPostLoader.h"
#include "TestClasses.h"
#include "Text/NSTextStorage.h"
#include "Writer/Pages/TextLanguage.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/WRDocument.h"
#include "Writer/Windows/Preferences.h"
#include "Writer/Windows/WRCharactersPanel.h"
#include "Writer/Windows/WRDocumentWindow.h"
#include "Writer/Windows/WRPageView.h"
#include "Writer/Windows/WRPalette.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace {

NSString* languageOf(NSObject*, NSString* text) { return text->hasPrefix(u"das"_ns) ? u"de"_ns : u"en"_ns; }

class LanguageCommandsTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        registerLibrary(windowsLibrary);
        PBPostLoader::processClassesStartingRegistry(false);
        std::filesystem::current_path(WRITER_PAGES);
        makeClass<"languageOfText:", &languageOf>("WRTestLanguageFinder");
        PBRegistry* registry = PBRegistry::sharedRegistry();
        addProfile(registry, "finder", PBProfileDocumentServiceType, {}, 0, u"WRTestLanguageFinder"_ns);
        for (const char* name : {"en", "de", "fr"})
            registry->addProfile(PBProfile::profileWithIdentifier_dictionary_bundle(
                NSString::ofUTF8(name),
                NSDictionary::of(
                    {{PBProfileTypeKey, PBProfileLanguageType}, {u"code"_ns, NSString::ofUTF8(name)}}),
                nullptr));
        registry->addProfile(PBProfile::profileWithIdentifier_dictionary_bundle(
            u"dashes"_ns,
            NSDictionary::of({{PBProfileTypeKey, PBProfilePaletteType},
                              {u"characters"_ns, NSArray::of({u"–"_ns, u"—"_ns})}}),
            nullptr));
    }
    LanguageCommandsTest() {
        screen.backend->setLayouts(
            {{0, "us", "English", "eng", "us", true}, {1, "de", "German", "deu", "de"}});
    }
    ~LanguageCommandsTest() override {
        NSUserDefaults::standardUserDefaults()->removeObjectForKey(WRKeyboardFollowsLanguagePreference);
    }
    void open(NSString* text) {
        document = WRDocument::initWithPath_reader_answer(u"/a/b.txt"_ns, nullptr,
                                                          NSDictionary::of({{WRTextKey, text}}));
        NSString* problem = nullptr;
        window = WRDocumentWindow::create(document, NSDictionary::dictionary(), &problem);
        window->show();
        view = window->pageView();
    }
    /// Chooses the language in the menu; returns the marks that the items had before.
    std::string choose(NSString* name) {
        auto menu = NSMenu::initWithTitle(u""_ns);
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

    InterfaceScope screen;
    Retained<WRDocument> document;
    Retained<WRDocumentWindow> window;
    WRPageView* view = nullptr;
};

TEST_F(LanguageCommandsTest, SetsTheLanguageOfTheSelectionInOneStep) {
    open(u"the sea das Meer"_ns);
    view->setSelectedRange({8, 8});
    EXPECT_EQ(choose(u"de"_ns), " en");
    EXPECT_EQ(languageAt(8) + languageAt(0), "deen");
    EXPECT_EQ(keyboard(), "de");
    EXPECT_FALSE(document->hasFormats()) << "a language is no format";
    view->setSelectedRange({0, 16});
    EXPECT_EQ(choose(u"fr"_ns), " -en") << "of the first of several languages";
    EXPECT_EQ(keyboard(), "de") << "no layout for the language";
    send(view, "undo:"_sel, static_cast<id>(nullptr));
    EXPECT_EQ(languageAt(8) + languageAt(0), "deen");
    view->setSelectedRange({16, 0});
    EXPECT_EQ(choose(u"fr"_ns), " de");
    screen.type(u"x");
    EXPECT_EQ(languageAt(15) + languageAt(16), "defr");
    view->setEditable(false);
    EXPECT_FALSE(view->isEditable());
    view->setSelectedRange({0, 16});
    choose(u"de"_ns);
    EXPECT_EQ(languageAt(0), "en");
}

TEST_F(LanguageCommandsTest, SwitchesTheKeyboardWithTheCaretIfAsked) {
    open(u"the sea\ndas Meer"_ns);
    EXPECT_EQ(languageAt(8), "de");
    view->setSelectedRange({10, 0});
    EXPECT_EQ(keyboard(), "en");
    NSUserDefaults::standardUserDefaults()->setObject_forKey(NSNumber::numberWithBool(true),
                                                             WRKeyboardFollowsLanguagePreference);
    view->setSelectedRange({11, 0});
    EXPECT_EQ(keyboard(), "de");
    view->setSelectedRange({2, 0});
    EXPECT_EQ(keyboard(), "en");
    screen.backend->setLayout(1);
    view->setSelectedRange({3, 0});
    EXPECT_EQ(keyboard(), "de") << "the user's choice, in text of the same language";
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
    send(view, "undo:"_sel, static_cast<id>(nullptr));
    EXPECT_TRUE(view->string()->isEqualToString(text));
    EXPECT_FALSE(view->undoManager()->canUndo());
    EXPECT_EQ(languageAt(last), "de");
}

TEST_F(LanguageCommandsTest, TypesSpecialCharacters) {
    open(u"ab"_ns);
    view->setSelectedRange({1, 0});
    auto panel = WRCharactersPanel::init();
    panel->window()->showBeside(window->window());
    screen.turn();
    screen.type(u"U+2014");
    screen.press(NSCarriageReturnCharacter);
    EXPECT_EQ(view->string()->toUTF8(), "a—b");
    send(view, "undo:"_sel, static_cast<id>(nullptr));
    EXPECT_EQ(view->string()->toUTF8(), "ab");
}

}  // namespace
