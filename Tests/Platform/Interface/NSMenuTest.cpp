// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSMenu.h"

#include "Interface/InterfaceLibrary.h"
#include "Interface/KeyEquivalents.h"
#include "Interface/NSEvent.h"
#include "Prelude.h"

namespace {

extern Library menuModelLibrary;

// Takes actions, and validates items as the test says.
class MMTaker : public NSObject {
    PELVOR_CLASS(MMTaker, NSObject);

  public:
    void copy_(id sender) { (void)sender, ++copies; }
    bool validateMenuItem(NSMenuItem* item) { return !validator || validator(item); }

    int copies = 0;
    std::function<bool(NSMenuItem*)> validator;
};

PELVOR_DEFINE_CLASS(MMTaker, menuModelLibrary) {
    methods.instanceAs<"copy:", &MMTaker::copy_>();
    methods.instance<"validateMenuItem:", &MMTaker::validateMenuItem>();
}

Library menuModelLibrary{"MenuModelTest", {}, kClassesOf<MMTaker>, {}};

NSMenuItem* add(NSMenu* menu, NSString* title, id target = nullptr) {
    NSMenuItem* item = menu->addItemWithTitle_action_keyEquivalent(title, "copy:"_sel, u""_ns);
    item->setTarget(target);
    return item;
}

TEST(NSMenu, KeepsItemsInOrder) {
    auto menu = NSMenu::initWithTitle(u"Edit"_ns);
    NSMenuItem *copy = add(menu, u"Copy"_ns), *paste = add(menu, u"Paste"_ns);
    menu->insertItem_atIndex(NSMenuItem::separatorItem(), 1);
    paste->setTag(7);
    paste->setRepresentedObject(u"board"_ns);
    EXPECT_EQ(shown(menu->indexOfItem(paste), menu->indexOfItemWithTitle(u"Paste"_ns),
                    menu->indexOfItemWithTag(7), menu->indexOfItemWithRepresentedObject(u"board"_ns),
                    menu->indexOfItemWithTitle(u"Cut"_ns), menu->numberOfItems()),
              "2 2 2 2 -1 3");
    EXPECT_EQ(menu->itemWithTag(7), paste);
    EXPECT_EQ(menu->itemWithTitle(u"Cut"_ns), nullptr);
    EXPECT_EQ(RAISED(menu->itemAtIndex(-1)),
              "NSRangeException: itemAtIndex: index (4294967295) beyond bounds (3)");
    EXPECT_EQ(RAISED(menu->addItem(copy)),
              "NSInvalidArgumentException: addItem: the item is in a menu already");
    auto held = Retained<NSMenuItem>::retaining(copy);
    menu->removeItem(copy);
    EXPECT_EQ(copy->menu(), nullptr);
    EXPECT_EQ(RAISED(menu->removeItem(copy)),
              "NSInvalidArgumentException: removeItem: the item is not in this menu");
    menu->setItemArray(NSArray::of({paste, copy}));
    EXPECT_EQ(shown(menu->indexOfItem(copy), menu->numberOfItems()), "1 2");
    menu = nullptr;
    EXPECT_EQ(copy->menu(), nullptr);
}

TEST(NSMenu, KnowsItsSupermenu) {
    auto bar = NSMenu::init(), edit = NSMenu::init(), find = NSMenu::init();
    NSMenuItem* title = add(bar, u"Edit"_ns);
    bar->setSubmenu_forItem(edit, title);
    NSMenuItem* inside = add(edit, u"Find"_ns);
    inside->setSubmenu(find);
    EXPECT_EQ(find->supermenu(), edit);
    EXPECT_EQ(inside->parentItem(), title);
    EXPECT_EQ(RAISED(add(find, u"Loop"_ns)->setSubmenu(bar)),
              "NSInvalidArgumentException: setSubmenu: the menu contains the item");
    EXPECT_EQ(RAISED(add(bar, u"Twice"_ns)->setSubmenu(find)),
              "NSInvalidArgumentException: setSubmenu: the menu is the submenu of another item");
    auto loop = NSMenuItem::init();
    loop->setSubmenu(bar);
    EXPECT_EQ(RAISED(find->addItem(loop)),
              "NSInvalidArgumentException: insertItem:atIndex: the item's submenu contains this menu");
    bar->removeAllItems();
    EXPECT_EQ(edit->supermenu(), nullptr);
}

TEST(NSMenu, EnablesItemsByTheirTakers) {
    LogLines log;
    auto menu = NSMenu::init();
    auto taker = make<MMTaker>();
    NSMenuItem *copy = add(menu, u"Copy"_ns, taker), *paste = add(menu, u"Paste"_ns, taker);
    paste->setAction("paste:"_sel);
    NSMenuItem* raising = add(menu, u"Raising"_ns, taker);
    taker->validator = [&](NSMenuItem* item) {
        if (item == raising) throw NSException("Trouble", "validating");
        return true;
    };
    menu->update();
    EXPECT_EQ(shown(copy->isEnabled(), paste->isEnabled(), raising->isEnabled()), "1 0 0");
    EXPECT_THAT(log.lines, ElementsAre(HasSubstr("validating")));
    menu->performActionForItemAtIndex(0);
    menu->performActionForItemAtIndex(2);
    EXPECT_EQ(taker->copies, 1);
    // A validator may take items out of the menu; those are left alone.
    auto held = Retained<NSMenuItem>::retaining(raising);
    taker->validator = [&](NSMenuItem*) { return menu->removeAllItems(), false; };
    menu->update();
    EXPECT_EQ(menu->numberOfItems(), 0);
    add(menu, u"Lonely"_ns, taker);
    taker = nullptr;  // items do not keep their targets
    menu->update();
    EXPECT_FALSE(menu->itemAtIndex(0)->isEnabled() || menu->itemAtIndex(0)->target());
}

TEST(NSMenu, CountsChanges) {
    auto menu = NSMenu::init();
    NSMenuItem* item = add(menu, u"Copy"_ns);
    struct Observer : MenuObserver {
        int count = 0;
        void menuDidChange(NSMenu*) override { ++count; }
    } observer;
    menu->addObserver(&observer);
    item->setTitle(u"Copy"_ns);
    item->setState(0);
    EXPECT_EQ(observer.count, 0);
    item->setState(2);
    item->setHidden(true);
    item->setKeyEquivalent(u"c"_ns);
    EXPECT_EQ(shown(observer.count, item->state()), "3 1");
    menu->removeObserver(&observer);
    menu->removeAllItems();
    EXPECT_EQ(observer.count, 3);
}

TEST(KeyEquivalents, MeanKeysWithModifiers) {
    constexpr NSUInteger kCommand = NSCommandKeyMask, kShift = NSShiftKeyMask;
    struct {
        const char* name;
        NSString* equivalent;
        NSUInteger mask;
        NSString* typed;
        NSUInteger modifiers;
        bool isIt;
    } rows[] = {
        {"letter", u"s"_ns, kCommand, u"s"_ns, kCommand, true},
        {"letter without modifier", u"s"_ns, kCommand, u"s"_ns, 0, false},
        {"Caps Lock does not matter", u"s"_ns, kCommand, u"S"_ns, kCommand | NSAlphaShiftKeyMask, true},
        {"unwanted Shift", u"s"_ns, kCommand, u"S"_ns, kCommand | kShift, false},
        {"capital", u"S"_ns, kCommand, u"S"_ns, kCommand | kShift, true},
        {"capital without Shift", u"S"_ns, kCommand, u"s"_ns, kCommand, false},
        {"Shift by the mask", u"s"_ns, kCommand | kShift, u"S"_ns, kCommand | kShift, true},
        {"sign above another", u"+"_ns, kCommand, u"+"_ns, kCommand | kShift, true},
        {"sign of its own key", u"+"_ns, kCommand, u"+"_ns, kCommand, true},
        {"function key", u"\xF708"_ns, 0, u"\xF708"_ns, NSFunctionKeyMask, true},
        {"function key with Shift", u"\xF708"_ns, 0, u"\xF708"_ns, kShift, false},
        {"none", u""_ns, 0, u""_ns, 0, false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(isKeyEquivalent(row.equivalent, row.mask, row.typed, row.modifiers), row.isIt) << row.name;
}

TEST(KeyEquivalents, AreShownAsText) {
    EXPECT_EQ(shown(keyEquivalentText(u"s"_ns, NSCommandKeyMask)), "Ctrl+S");
    EXPECT_EQ(shown(keyEquivalentText(u"S"_ns, NSCommandKeyMask | NSAlternateKeyMask)), "Ctrl+Alt+Shift+S");
    EXPECT_EQ(shown(keyEquivalentText(u"\xF708"_ns, 0)), "F5");
    EXPECT_EQ(shown(keyEquivalentText(u"\xF72C"_ns, NSControlKeyMask)), "Super+Page Up");
    EXPECT_EQ(shown(keyEquivalentText(u""_ns, NSCommandKeyMask)), "");
}

}  // namespace
