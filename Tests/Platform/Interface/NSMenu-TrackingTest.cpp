// SPDX-License-Identifier: Apache-2.0
// Open menus, and a user who goes through them with the mouse.
#include "Interface/NSMenu.h"
#include "Interface/NSPopUpButton.h"
#include "Interface/NSScreen.h"
#include "Interface/NSTextView.h"
#include "Interface/NSView.h"
#include "MenuTracking.h"
#include "RandomSteps.h"
#include "Text/NSFont.h"

namespace {

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

}  // namespace
