// SPDX-License-Identifier: Apache-2.0
// Menus by keys: arrows, letters, Alt, typed titles.
#include "EnvironmentScope.h"
#include "Interface/Menus/MenuKeys.h"
#include "Interface/NSInputManager.h"
#include "MenuTracking.h"

namespace {

TEST_F(MenuTracking, GoesThroughMenusByKeys) {
    plan({pressing(NSDownArrowFunctionKey), pressing(NSRightArrowFunctionKey),
          [&] { EXPECT_EQ(highlighted(file) + " " + highlighted(recent), "Recent Anna"); },
          pressing(NSUpArrowFunctionKey), pressing(u'\r')});
    screen.press(NSF10FunctionKey);
    EXPECT_EQ(takeLog(), "open file, open recent, close recent, close file, Bruno");
    EXPECT_FALSE(screen.backend->isTracking());
    // To the next menu and back, past items that cannot be chosen, and out again.
    plan({pressing(NSRightArrowFunctionKey), pressing(NSLeftArrowFunctionKey), pressing(NSUpArrowFunctionKey),
          pressing(NSUpArrowFunctionKey), [&] { EXPECT_EQ(highlighted(file), "Recent"); }, pressing(0x1b)});
    screen.press(NSF10FunctionKey);
    EXPECT_EQ(takeLog(), "open file, close file, open edit, close edit, open file, close file");
}

TEST_F(MenuTracking, RunsFromRightToLeft) {
    LanguageScope language("he");
    plan({pressing(NSDownArrowFunctionKey), pressing(NSDownArrowFunctionKey),
          [&] { EXPECT_FLOAT_EQ(NSMaxX(menuWindow()->frame()), 496); }, pressing(NSLeftArrowFunctionKey),
          [&] {
              EXPECT_EQ(highlighted(recent), "Anna");
              EXPECT_LT(NSMaxX(menuWindow()->frame()), 450);
          },
          pressing(NSRightArrowFunctionKey), pressing(NSLeftArrowFunctionKey), pressing(0x1b),
          pressing(0x1b)});
    screen.backend->movePointer(placeOfTitle(380));  // the first title
    screen.backend->pressButton(1);
    screen.backend->releaseButton(1);
    screen.turn();
    EXPECT_EQ(takeLog(), "open file, open recent, close recent, open recent, close recent, close file");
}

// By the item at the end of the bar, which opens a menu of what does not fit.
TEST_F(MenuTracking, ReachesTitlesWithoutRoom) {
    const auto narrow = [&](float width) {
        window->setContentSize({width, 300});
        screen.turn();
    };
    const auto press = [&](float x) {
        screen.backend->movePointer(placeOfTitle(x));
        clicking()();
        screen.turn();
        return takeLog();
    };
    narrow(80);
    plan({pressing(NSRightArrowFunctionKey), [&] { EXPECT_EQ(highlighted(bar), "Edit"); },
          pressing(NSRightArrowFunctionKey), pressing(u'\r')});
    screen.press(NSF10FunctionKey);
    EXPECT_EQ(takeLog(), "open file, close file, open edit, close edit, Copy");
    plan({pointing(0), pointing(0), clicking()}, 0.5);
    EXPECT_EQ(press(65), "open edit, close edit, Copy");
    plan({[&] { EXPECT_EQ(highlighted(bar) + " " + highlighted(edit), "Edit Copy"); }, pressing(u'\r')});
    screen.press(u'e', NSAlternateKeyMask);
    EXPECT_EQ(takeLog(), "open edit, close edit, Copy");
    narrow(40);
    plan({[&] { EXPECT_EQ(highlighted(bar), "File"); }});
    screen.press(NSF10FunctionKey);
    LanguageScope language("he");
    narrow(80);
    plan({pointing(0), [&] { EXPECT_EQ(highlighted(bar), "Edit"); }}, 0.5);
    EXPECT_EQ(press(15), "open edit, close edit");
}

TEST_F(MenuTracking, OpensMenusByTheirLetters) {
    const struct {
        std::vector<std::string> titles;
        const char* letters;
    } rows[] = {{{"File", "Edit", "Format", "View", "Services", "Window", "Help"}, "f e o v s w h"},
                {{"Fichier", "Édition", "Format", "Affichage", "Fenêtre"}, "f d o a e"},
                {{"Datei", "Bearbeiten", "Ansicht", "Dienste", "Fenster"}, "d b a i f"},
                {{"Αρχείο", "Ff", "Ff"}, "- f -"}};
    for (const auto& row : rows) {
        auto menu = NSMenu::init();
        std::string letters;
        for (const std::string& title : row.titles)
            add(menu, title.c_str(), nullptr)->setSubmenu(NSMenu::init().get());
        const auto found = titleLetters(menu);
        for (const auto& item : menu->items()) {
            const auto letter = std::ranges::find(found, item.get(), &TitleLetter::item);
            letters += letter == found.end() ? "- " : std::string(1, static_cast<char>(letter->letter)) + " ";
        }
        EXPECT_EQ(letters, std::string(row.letters) + " ");
    }
    plan({pressing(u'f', kBackendOption), pressing(u'\r')});
    screen.press(u'e', NSAlternateKeyMask);
    EXPECT_EQ(takeLog(), "open edit, close edit, open file, close file, New");
    // What Alt chooses already keeps its keys.
    file->itemAtIndex(0)->setKeyEquivalent(u"e"_ns);
    file->itemAtIndex(0)->setKeyEquivalentModifierMask(NSAlternateKeyMask);
    screen.press(u'e', NSAlternateKeyMask);
    NSInputManager::setKeyBindings(NSDictionary::of({{u"~f"_ns, u"selectAll:"_ns}}));
    screen.press(u'f', NSAlternateKeyMask);
    NSInputManager::setKeyBindings(nullptr);
    EXPECT_EQ(takeLog(), "New");
    plan({});
    screen.press(u'd', NSAlternateKeyMask);
    EXPECT_EQ(takeLog(), "open edit, close edit");
}

TEST_F(MenuTracking, GoesToTheBarByAltAlone) {
    const auto hold = [&](std::uint32_t modifiers) {
        screen.backend->setModifiers(modifiers);
        screen.turn();
    };
    const struct {
        const char* name;
        std::function<void()> meanwhile;
        const char* log;
    } rows[] = {{"nothing else", [] {}, "open file, close file"},
                {"a second", [&] { screen.clock.advance(1); }, ""},
                {"another modifier",
                 [&] {
                     hold(kBackendOption | kBackendShift);
                     hold(kBackendOption);
                 },
                 ""},
                {"a key of the window manager",
                 [] { static_cast<BackendSink&>(DisplayConnection::shared()).keysTaken(); }, ""},
                {"a key", [&] { key(u'x', kBackendOption); }, ""},
                {"a window that is moved",
                 [&] {
                     screen.backend->movePointer({50, 50});
                 },
                 ""}};
    for (const auto& row : rows) {
        plan({});
        hold(kBackendOption);
        row.meanwhile();
        hold(0);
        EXPECT_EQ(takeLog(), row.log) << row.name;
    }
    plan({[&] { screen.backend->setModifiers(kBackendOption); }, [&] { screen.backend->setModifiers(0); }});
    screen.press(NSF10FunctionKey);
    EXPECT_EQ(takeLog() + std::to_string(next), "open file, close file2");
    // The letters are underlined meanwhile.
    const auto bar = [&] {
        std::string pixels;
        NSView* view = window->contentView();
        for (float x = 0; x < 90; ++x)
            for (float y = 1; y < 22; ++y)
                pixels += std::to_string(screen.pixel(view, {x, NSMaxY(view->frame()) + y}));
        return pixels;
    };
    const std::string plain = bar();
    hold(kBackendOption);
    EXPECT_NE(bar(), plain);
    hold(kBackendOption | kBackendShift);
    EXPECT_EQ(bar(), plain);
    hold(0);
}

TEST_F(MenuTracking, SelectsByTyping) {
    plan({pressing(u'r'), pressing(u'\r'), pressing(u'b'), pressing(u'r'),
          [&] { EXPECT_EQ(highlighted(recent), "Bruno"); }, pressing(u'\r')});
    screen.press(NSF10FunctionKey);
    EXPECT_EQ(takeLog(), "open file, open recent, close recent, close file, Bruno");
    // The same letter again and again goes round; an unknown one changes nothing.
    plan({pressing(u'r'), pressing(u'\r'), pressing(u'b'), pressing(u'b'),
          [&] { EXPECT_EQ(highlighted(recent), "Bruno"); }, pressing(u'x'),
          [&] { EXPECT_EQ(highlighted(recent), "Bruno"); }, pressing(NSF10FunctionKey)},
         1.5);
    screen.press(NSF10FunctionKey);
}

TEST_F(MenuTracking, TakesShortcutsWhileOpen) {
    plan({pressing(u'q', kBackendCommand)});
    screen.press(NSF10FunctionKey);
    EXPECT_EQ(takeLog(), "open file, close file, Quit");
    screen.press(u'q', NSCommandKeyMask);  // and while closed
    EXPECT_EQ(takeLog(), "Quit");
    file->itemWithTitle(u"Quit"_ns)->setHidden(true);
    screen.press(u'q', NSCommandKeyMask);
    EXPECT_EQ(takeLog(), "");
}

}  // namespace
