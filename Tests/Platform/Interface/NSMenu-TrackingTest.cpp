// SPDX-License-Identifier: Apache-2.0
// Open menus, and a user who goes through them.
#include "EnvironmentScope.h"
#include "Foundation/NSObject-DelayedPerforming.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSTimer.h"
#include "Interface/Events/ApplicationState.h"
#include "Interface/Menus/MenuKeys.h"
#include "Interface/NSAlert.h"
#include "Interface/NSInputManager.h"
#include "Interface/NSMenu.h"
#include "Interface/NSMenuBarView.h"
#include "Interface/NSPopUpButton.h"
#include "Interface/NSScreen.h"
#include "Interface/NSTextView.h"
#include "Interface/NSView.h"
#include "InterfaceScope.h"
#include "RandomSteps.h"
#include "Text/NSFont.h"
#include "Text/TextAttributes.h"

namespace {

extern Library menuTrackingLibrary;

// Takes every command of the test's menus, and is the delegate of its menus.
class MTTaker : public NSObject {
    PELVOR_CLASS(MTTaker, NSObject);

  public:
    void take(NSMenuItem* item) {
        log.push_back(item->title()->toUTF8());
        if (whenTaken) whenTaken();
    }
    void choose(NSPopUpButton* button) { log.push_back("chose " + button->titleOfSelectedItem()->toUTF8()); }
    void menuWillOpen(NSMenu* menu) { tell("open " + menu->title()->toUTF8()); }
    void menuDidClose(NSMenu* menu) { tell("close " + menu->title()->toUTF8()); }
    void tell(std::string what) {
        log.push_back(what);
        if (whenTold) whenTold(what);
    }

    std::vector<std::string> log;
    std::function<void()> whenTaken;
    std::function<void(const std::string&)> whenTold;
};

PELVOR_DEFINE_CLASS(MTTaker, menuTrackingLibrary) {
    methods.instance<"take:", &MTTaker::take>();
    methods.instance<"choose:", &MTTaker::choose>();
    methods.instance<"menuWillOpen:", &MTTaker::menuWillOpen>();
    methods.instance<"menuDidClose:", &MTTaker::menuDidClose>();
}

Library menuTrackingLibrary{"MenuTrackingTest", {}, kClassesOf<MTTaker>, {}};

NSMenuItem* add(NSMenu* menu, const char* title, id target) {
    NSMenuItem* item =
        menu->addItemWithTitle_action_keyEquivalent(NSString::ofUTF8(title), "take:"_sel, u""_ns);
    item->setTarget(target);
    return item;
}

class MenuTracking : public ::testing::Test {
  protected:
    MenuTracking() {
        for (NSMenu* menu : {file.get(), edit.get(), recent.get()}) menu->setDelegate(taker);
        add(file, "New", taker);
        add(file, "Recent", taker)->setSubmenu(recent);
        file->addItem(NSMenuItem::separatorItem());
        add(file, "Disabled", nullptr)->setAction("nobody:"_sel);
        add(file, "Quit", taker)->setKeyEquivalent(u"q"_ns);
        for (const char* title : {"Anna", "Berta", "Bruno"}) add(recent, title, taker);
        add(edit, "Copy", taker);
        add(bar, "File", nullptr)->setSubmenu(file);
        add(bar, "Edit", nullptr)->setSubmenu(edit);
        screen.app->setMainMenu(bar);
        window = screen.window({{100, 100}, {400, 300}});
        for (NSMenu* menu : {file.get(), edit.get(), recent.get()})
            menu->setTitle(NSString::ofUTF8(menu == file ? "file" : menu == edit ? "edit" : "recent"));
    }

    ~MenuTracking() {
        if (timer) timer->invalidate();
    }

    // What the user does while a menu is open: one step after the other, with time between them.
    void plan(std::vector<std::function<void()>> itsSteps, double seconds = 0.25,
              NSString* mode = NSEventTrackingRunLoopMode) {
        steps = std::move(itsSteps);
        next = 0;
        if (timer) timer->invalidate();
        auto user = Listener::doing([this](id) { next < steps.size() ? steps[next++]() : key(0x1b); });
        timer.set(NSTimer::timerWithTimeInterval_target_selector_userInfo_repeats(seconds, user, "hear:"_sel,
                                                                                  nullptr, true));
        NSRunLoop::mainRunLoop()->addTimer_forMode(timer, mode);
    }
    void key(char16_t unit, std::uint32_t modifiers = 0) {
        BackendKey key;
        key.characters = key.charactersIgnoringModifiers = key.shortcutCharacters = std::u16string(1, unit);
        key.modifiers = modifiers;
        screen.backend->key(key);
    }
    std::function<void()> pressing(char16_t unit, std::uint32_t modifiers = 0) {
        return [=, this] { key(unit, modifiers); };
    }
    // The window of the menu that was opened last, and a place in its line.
    NSWindow* menuWindow() { return static_cast<NSWindow*>(screen.app->orderedWindows()->objectAtIndex(0)); }
    std::function<void()> pointing(int line) {
        return [=, this] { screen.backend->movePointer(placeOfLine(line)); };
    }
    PixelPoint placeOfLine(int line) {
        return screen.placeOf(menuWindow()->contentView(), {40, 5 + 22 * static_cast<float>(line) + 11});
    }
    PixelPoint placeOfTitle(float x) {
        NSView* view = window->contentView();
        return screen.placeOf(view, {x, NSMaxY(view->frame()) + 10});
    }
    std::function<void()> clicking() {
        return [this] {
            screen.backend->pressButton(1);
            screen.backend->releaseButton(1);
        };
    }
    std::string highlighted(NSMenu* menu) {
        return menu->highlightedItem() ? menu->highlightedItem()->title()->toUTF8() : "-";
    }
    void openContextMenu() { screen.click(window->contentView(), {50, 50}, 1, 0, 2); }
    std::string takeLog() { return joined(std::exchange(taker->log, {})); }

    InterfaceScope screen;
    Retained<MTTaker> taker = make<MTTaker>();
    Retained<NSMenu> bar = NSMenu::init(), file = NSMenu::init(), edit = NSMenu::init(),
                     recent = NSMenu::init();
    Retained<NSWindow> window;
    std::vector<std::function<void()>> steps;
    std::size_t next = 0;
    Retained<NSTimer> timer;
};

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

TEST_F(MenuTracking, FollowsAClickAndARest) {
    plan({pointing(1), [&] { EXPECT_EQ(highlighted(file), "Recent"); }, pointing(2),
          [&] { EXPECT_EQ(highlighted(recent), "Bruno"); }, clicking()},
         0.5);
    screen.backend->movePointer(placeOfTitle(20));
    screen.backend->pressButton(1);
    screen.backend->releaseButton(1);
    screen.turn();
    EXPECT_EQ(takeLog(), "open file, open recent, close recent, close file, Bruno");
}

TEST_F(MenuTracking, ASubmenuThatAClickOpensTakesTheKeys) {
    const struct {
        bool isClicked;
        char16_t key;
        const char* chosen;
    } rows[] = {{true, NSDownArrowFunctionKey, "Anna"},
                {true, NSUpArrowFunctionKey, "Bruno"},
                {true, NSRightArrowFunctionKey, "Anna"},
                {true, u'b', "Berta"},
                {false, NSUpArrowFunctionKey, "New"}};
    for (const auto& row : rows) {
        // The pointer rests for long enough to open the submenu.
        plan({pointing(1), row.isClicked ? clicking() : [] {}, pressing(row.key), pressing(u'\r')}, 0.5);
        screen.backend->movePointer(placeOfTitle(20));
        clicking()();
        screen.turn();
        EXPECT_EQ(takeLog(), "open file, open recent, close recent, close file, " + std::string(row.chosen));
    }
}

// A line that is clicked is meant, although the pointer may be on its way to the open submenu.
TEST_F(MenuTracking, TakesAClickOnTheWayToASubmenu) {
    for (const char* title : {"Clara", "Dora", "Erna", "Frieda"}) add(recent, title, taker);
    PixelPoint quit{};  // near the right edge
    plan({[&] {
              NSView* list = menuWindow()->contentView();
              quit = screen.placeOf(list, {NSWidth(list->frame()) - 8, 5 + 22 * 4 - 1});
          },
          pointing(1), [&] { EXPECT_EQ(highlighted(file), "Recent"); },
          [&] {
              screen.backend->movePointer(quit);
              clicking()();
          }},
         0.5);
    screen.backend->movePointer(placeOfTitle(20));
    screen.backend->pressButton(1);
    screen.backend->releaseButton(1);
    screen.turn();
    EXPECT_EQ(takeLog(), "open file, open recent, close recent, close file, Quit");
}

TEST_F(MenuTracking, FollowsADrag) {
    plan({pointing(0), [&] { screen.backend->releaseButton(1); }});
    screen.backend->movePointer(placeOfTitle(20));
    screen.backend->pressButton(1);
    screen.turn();
    EXPECT_EQ(takeLog(), "open file, close file, New");
    // Over to the other title, and released beside everything.
    plan({[&] { screen.backend->movePointer(placeOfTitle(70)); },
          [&] {
              screen.backend->movePointer({700, 700});
          },
          [&] { screen.backend->releaseButton(1); }});
    screen.backend->movePointer(placeOfTitle(20));
    screen.backend->pressButton(1);
    screen.turn();
    EXPECT_EQ(takeLog(), "open file, close file, open edit, close edit");
}

TEST_F(MenuTracking, OpensContextMenusAndClosesThemByAClickBeside) {
    window->contentView()->setMenu(recent);
    plan({pointing(1), clicking()});
    openContextMenu();
    EXPECT_EQ(takeLog(), "open recent, close recent, Berta");
    plan({[&] {
        screen.backend->movePointer({900, 900});
        screen.backend->pressButton(1);
        screen.backend->releaseButton(1);
    }});
    openContextMenu();
    plan({[&] { recent->cancelTracking(); }});
    screen.press(NSMenuFunctionKey);
    EXPECT_EQ(takeLog(), "open recent, close recent, open recent, close recent");
    // Not by a key in a window that waits for another one.
    auto other = screen.window({{500, 100}, {200, 100}});
    NSModalSession session = screen.app->beginModalSessionForWindow(other);
    window->makeKeyWindow();
    plan({[&] { recent->cancelTracking(); }});
    const unichar menuKey = NSMenuFunctionKey;
    NSString* typed = NSString::stringWithCharacters_length(&menuKey, 1);
    screen.app->sendEvent(
        NSEvent::
            keyEventWithType_location_modifierFlags_timestamp_windowNumber_context_characters_charactersIgnoringModifiers_isARepeat_keyCode(
                NSKeyDown, {}, 0, 0, window->windowNumber(), nullptr, typed, typed, false, 0));
    EXPECT_EQ(takeLog(), "");
    screen.app->endModalSession(session);
}

// At the caret where a key asked for the menu; lines that come meanwhile are seen without a further event.
TEST_F(MenuTracking, OpensAtTheCaretAndShowsWhatComes) {
    auto text = NSTextView::initWithFrame({{0, 0}, {300, 200}});
    text->setString(u"One two"_ns);
    text->setSelectedRange({4, 0});
    text->setMenu(recent);
    text->setVerticallyResizable(false);
    window->setContentView(text);
    window->makeFirstResponder(text);
    screen.turn();
    NSRect opened;
    float height = 0;
    plan({[&] { opened = menuWindow()->frame(); },
          [&] { recent->addItemWithTitle_action_keyEquivalent(u"Clara"_ns, SEL(), u""_ns); },
          [&] { height = NSHeight(menuWindow()->frame()); }, [&] { recent->cancelTracking(); }});
    screen.press(NSMenuFunctionKey);
    const NSRect caret = text->convertRect_toView(text->caretRectForCharacterAtIndex(4), nullptr);
    const NSPoint place = window->convertBaseToScreen(caret.origin);
    EXPECT_NEAR(NSMinX(opened), place.x, 3);
    EXPECT_NEAR(NSMaxY(opened), place.y, 3);
    EXPECT_GT(height, NSHeight(opened));
}

TEST_F(MenuTracking, SurvivesWhatItsMenusDo) {
    LogLines log;
    plan({[&] { file->removeItemAtIndex(1); }, [&] { EXPECT_EQ(highlighted(file), "New"); },
          [&] { file->removeAllItems(); }, pressing(NSDownArrowFunctionKey), pressing(u'\r'),
          pressing(0x1b)});
    screen.press(NSF10FunctionKey);
    EXPECT_EQ(takeLog(), "open file, close file");
    // A delegate raises; the item that was chosen is gone, with its menu, when its action is sent.
    taker->whenTold = [&](const std::string& what) {
        if (what == "open edit") throw NSException("Trouble", "opening");
        if (what == "close edit") bar->removeAllItems();
    };
    plan({pressing(NSRightArrowFunctionKey), pressing(u'\r')});
    file->addItem(NSMenuItem::separatorItem());
    screen.press(NSF10FunctionKey);
    EXPECT_THAT(log.lines, Contains(HasSubstr("opening")));
    EXPECT_EQ(taker->log.back(), "Copy");
    // Whoever hears that the menu's window moves raises.
    taker->whenTold = nullptr;
    auto hearer = Listener::to(NSWindowDidMoveNotification);
    hearer->reaction = [] { throw NSException("Trouble", "moving"); };
    window->contentView()->setMenu(recent);
    plan({pressing(0x1b)});
    takeLog();
    openContextMenu();
    EXPECT_EQ(takeLog(), "open recent, close recent");
}

TEST_F(MenuTracking, SurvivesRandomSteps) {
    LogLines log;
    std::mt19937 random(7);
    const auto below = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
    NSMenu* const menus[] = {file, edit, recent};
    const auto change = [&] {
        NSMenu* menu = menus[below(3)];
        const auto count = static_cast<int>(menu->numberOfItems());
        switch (below(8)) {
            case 0:
                return void(add(menu, "More", taker));
            case 1:
                return count ? menu->removeItemAtIndex(below(count)) : void();
            case 2:
                return count ? menu->itemAtIndex(below(count))->setHidden(below(2)) : void();
            case 3:
                return menu->cancelTracking();
            case 4:
                return below(4) ? void() : menu->removeAllItems();
            case 5:
                throw NSException("Trouble", "at random");
            case 6:
                return window->setFrameOrigin({static_cast<float>(below(500)), 100});
            default:
                return;
        }
    };
    taker->whenTold = [&](const std::string&) { below(6) ? void() : change(); };
    taker->whenTaken = [&] { below(3) ? void() : change(); };
    constexpr char16_t kKeys[] = {NSUpArrowFunctionKey,
                                  NSDownArrowFunctionKey,
                                  NSLeftArrowFunctionKey,
                                  NSRightArrowFunctionKey,
                                  NSEndFunctionKey,
                                  u'\r',
                                  u'm',
                                  u'r',
                                  0x1b};
    const auto act = [&] {
        if (const int what = below(10); what < 5)
            key(kKeys[below(std::size(kKeys))]);
        else if (what < 8)
            screen.backend->movePointer({below(400), 500 + below(300)});
        else if (what == 8)
            clicking()();
        else
            change();
    };
    window->contentView()->setMenu(recent);
    for (int round = randomSteps(150); round > 0; --round) {
        for (NSMenu* menu : menus) add(menu, "Middle", taker);
        if (!file->itemWithTitle(u"Recent"_ns) && !recent->supermenu())
            add(file, "Recent", taker)->setSubmenu(recent);
        plan(std::vector<std::function<void()>>(20, act), 0.02 * (1 + below(20)));
        below(3) ? screen.press(NSF10FunctionKey) : openContextMenu();
        EXPECT_FALSE(screen.backend->isTracking());
    }
    EXPECT_THAT(log.lines, Contains(HasSubstr("at random")));
}

TEST_F(MenuTracking, ClosesTheWindowInItsOwnAction) {
    taker->whenTaken = [&] {
        window->close();
        window = nullptr;
        screen.app->setMainMenu(nullptr);
    };
    plan({pressing(u'\r')});
    screen.press(NSF10FunctionKey);
    EXPECT_EQ(takeLog(), "open file, close file, New");
}

TEST_F(MenuTracking, FitsIntoTheScreenAndScrolls) {
    auto menu = NSMenu::init();
    for (int i = 0; i < 1000; ++i) add(menu, ("Line " + std::to_string(i)).c_str(), taker);
    window->contentView()->setMenu(menu);
    const NSRect visible = NSScreen::mainScreen()->visibleFrame();
    plan({[&] { EXPECT_EQ(NSHeight(menuWindow()->frame()), NSHeight(visible)); },
          [&] {
              screen.backend->movePointer(
                  screen.placeOf(menuWindow()->contentView(), {40, NSHeight(visible) - 4}));
          },
          [&] {}, [&] { screen.backend->movePointer(placeOfLine(1)); },
          [&] { EXPECT_GT(menu->indexOfItem(menu->highlightedItem()), 5); }, pressing(NSEndFunctionKey),
          pressing(u'\r')});
    openContextMenu();
    EXPECT_EQ(takeLog(), "Line 999");
}

// Titles with attributes are as large as the others, unless they are in a font of their own.
TEST_F(MenuTracking, HasLinesOfOneHeight) {
    const auto heightWith = [&](NSFont* font) {
        auto menu = NSMenu::init();
        add(menu, "Line", taker)
            ->setAttributedTitle(NSAttributedString::initWithString_attributes(
                                     u"Line\tCtrl+K"_ns, NSDictionary::of({{NSFontAttributeName, font}}))
                                     .get());
        window->contentView()->setMenu(menu);
        float height = 0;
        plan({[&] { height = NSHeight(menuWindow()->frame()); }});
        openContextMenu();
        return height;
    };
    EXPECT_EQ(heightWith(NSFont::systemFontOfSize(40)), heightWith(NSFont::menuFontOfSize(0)));
    EXPECT_GT(heightWith(NSFont::userFixedPitchFontOfSize(40)), 50);
}

TEST_F(MenuTracking, ShowsAllLinesWherePixelsArePartsOfPoints) {
    BackendScreen fine = screen.backend->screens()[0];
    fine.scale = 1.25F;
    screen.backend->setScreens({fine});
    screen.turn();
    auto menu = NSMenu::init();
    for (int i = 0; i < 13; ++i) add(menu, std::to_string(i).c_str(), taker);
    menu->insertItem_atIndex(NSMenuItem::separatorItem(), 1);  // 305 points are 381.25 pixels
    window->contentView()->setMenu(menu);
    plan({[&] {
              NSView* list = menuWindow()->contentView();
              EXPECT_LT(NSHeight(list->frame()), 305);
              screen.backend->movePointer(screen.placeOf(list, {40, NSHeight(list->frame()) - 8}));
          },
          [&] { EXPECT_EQ(highlighted(menu), "12"); }});
    openContextMenu();
}

TEST_F(MenuTracking, HighlightsTitlesByTheirHandles) {
    const MenuRef handle = _NSGetCarbonMenu(edit);
    ASSERT_TRUE(handle && GetMenuID(handle));
    EXPECT_NE(GetMenuID(handle), GetMenuID(_NSGetCarbonMenu(file)));
    EXPECT_EQ(_NSGetCarbonMenu(recent), nullptr);
    const auto seen = [&] {
        screen.turn();
        NSView* view = window->contentView();
        return screen.pixel(view, {70, NSMaxY(view->frame()) + 4});
    };
    const std::uint32_t plain = seen();
    HiliteMenu(GetMenuID(handle));
    EXPECT_NE(seen(), plain);
    HiliteMenu(0);
    EXPECT_EQ(seen(), plain);
}

TEST_F(MenuTracking, SelectsInPopUpButtons) {
    auto button = NSPopUpButton::initWithFrame_pullsDown({{20, 20}, {120, 26}}, false);
    button->addItemsWithTitles(NSArray::of({u"A4"_ns, u"Letter"_ns, u"A5"_ns, u"Letter"_ns}));
    button->setTarget(taker);
    button->setAction("choose:"_sel);
    window->contentView()->addSubview(button);
    EXPECT_EQ(shown(button->numberOfItems(), button->titleOfSelectedItem(),
                    button->indexOfItemWithTitle(u"Letter"_ns), button->itemAtIndex(0)->state()),
              "3 A4 2 1");
    // The selected line opens over the button, so a click in place changes nothing; keys go on from there.
    plan({[&] { EXPECT_NEAR(NSMidY(menuWindow()->frame()) + 22, 100 + 33, 2); },
          pressing(NSDownArrowFunctionKey), pressing(u'\r')});
    screen.click(button, {60, 10});
    EXPECT_EQ(takeLog(), "chose A5");
    EXPECT_EQ(shown(button->indexOfSelectedItem(), button->itemAtIndex(1)->state(),
                    button->itemAtIndex(0)->state()),
              "1 1 0");
    const auto copied = button->cell()->copy();  // shows the same menu, and marks nothing else there
    EXPECT_EQ(shown(copied->title(), button->itemAtIndex(0)->state()), "A5 0");
    button->removeItemAtIndex(1);
    EXPECT_EQ(button->selectedItem(), nullptr);
    plan({pressing(0x1b)});
    screen.click(button, {60, 10});
    EXPECT_EQ(takeLog(), "");
    // A pull-down button keeps its title, and marks nothing.
    button->selectItemAtIndex(0);
    button->setPullsDown(true);
    EXPECT_EQ(shown(button->indexOfSelectedItem(), button->itemAtIndex(0)->state()), "0 0");
    plan({pressing(NSEndFunctionKey), pressing(u'\r')});
    screen.click(button, {60, 10});
    EXPECT_EQ(takeLog() + shown(button->cell()->title()), "chose LetterA4");
    button->setPullsDown(false);
    EXPECT_EQ(button->itemAtIndex(1)->state(), 1);
    button->selectItemAtIndex(-1);
    EXPECT_EQ(shown(button->indexOfSelectedItem(), button->itemAtIndex(1)->state()), "-1 0");
    button->removeAllItems();
    button->addItemWithTitle(u"A3"_ns);
    EXPECT_EQ(shown(button->titleOfSelectedItem(), button->lastItem()->state()), "A3 1");
}

TEST_F(MenuTracking, AsksInAlerts) {
    LogLines log;
    EXPECT_EQ(NSRunAlertPanel(u"Writer"_ns, u"%@ is missing."_ns, nullptr, nullptr, nullptr, u"It"_ns),
              NSAlertErrorReturn);  // nobody is there
    EXPECT_THAT(log.lines, ElementsAre("Writer: It is missing."));
    // Each key answers one alert.
    struct {
        char16_t key;
        NSString* alternate;
        NSInteger answer;
    } rows[] = {{u'\r', u"Cancel"_ns, NSAlertDefaultReturn},
                {0x1b, u"Cancel"_ns, NSAlertAlternateReturn},
                {0x1b, nullptr, NSAlertDefaultReturn}};
    for (const auto& row : rows) {
        NSInteger answer = 0;
        Retained<NSWindow> panel;
        auto asks = Listener::doing([&](id) {
            AutoreleasePool pool;
            plan({[&] {
                      panel.set(menuWindow());
                      EXPECT_EQ(panel->contentView()->superview()->subviews()->count(), 1u);
                  },
                  pressing(row.key)},
                 0.25, NSModalPanelRunLoopMode);  // without a menu bar
            answer =
                NSRunAlertPanel(u"Save?"_ns, u"Changes get lost."_ns, u"Save"_ns, row.alternate, nullptr);
            screen.app->stop(nullptr);
        });
        performSelector_withObject_afterDelay(asks, "hear:"_sel, nullptr, 0);
        screen.app->run();
        EXPECT_EQ(answer, row.answer) << int{row.key};
        EXPECT_FALSE(panel->performKeyEquivalent(screen.app->currentEvent())) << "that alert is gone";
    }
}

// Runs the application until an alert has returned.
NSInteger askWhileRunning(NSApplication* app) {
    NSInteger answer = 0;
    auto asks = Listener::doing([&](id) {
        answer = NSRunAlertPanel(u"Save?"_ns, u"It"_ns, nullptr, nullptr, nullptr);
        app->stop(nullptr);
    });
    performSelector_withObject_afterDelay(asks, "hear:"_sel, nullptr, 0);
    app->run();
    return answer;
}

TEST_F(MenuTracking, AsksNobodyWhoIsGone) {
    plan({[&] { screen.backend->lose("the server closed the connection"); },
          [] { ADD_FAILURE() << "the menu is still open"; }});
    screen.press(NSF10FunctionKey);
    plan({pressing(u'\r')}, 0.25, NSModalPanelRunLoopMode);  // would end an alert that is shown
    LogLines log;
    EXPECT_EQ(askWhileRunning(screen.app), NSAlertErrorReturn);
    EXPECT_THAT(log.lines, ElementsAre("Save?: It"));
}

TEST(NSAlertTest, AsksNobodyWithoutDisplay) {
    EnvironmentScope display("PELVOR_DISPLAY", "none");
    ApplicationState::end();
    AutoreleasePool pool;
    NSApplication* app = NSApplication::sharedApplication();
    app->setTerminatesProcess(false);
    LogLines log;
    EXPECT_EQ(askWhileRunning(app), NSAlertErrorReturn);
    EXPECT_THAT(log.lines, ElementsAre("Save?: It"));
    ApplicationState::end();
}

}  // namespace
