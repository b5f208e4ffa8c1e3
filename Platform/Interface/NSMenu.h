// SPDX-License-Identifier: Apache-2.0
// NSMenu: a list of commands.
#pragma once

#include <memory>
#include <vector>

#include "Foundation/NSArray.h"
#include "Foundation/NSGeometry.h"
#include "Interface/NSMenuItem.h"

namespace pelvor {

class MenuLayout;
class MenuObserver;
class NSEvent;
class NSView;

/// The handle of a menu whose title stands in the menu bar, and its number, which is never 0.
using MenuID = std::int16_t;
struct OpaqueMenuRef {
    MenuID number = 0;
};
using MenuRef = OpaqueMenuRef*;

/// Posted by a menu right before and right after it sends the action of an item, which stands in the user
/// info under "MenuItem".
extern PELVOR_EXPORT NSString* const NSMenuWillSendActionNotification;
extern PELVOR_EXPORT NSString* const NSMenuDidSendActionNotification;
/// Posted by the menu that the user opens first, when it opens and when it and its submenus have closed.
extern PELVOR_EXPORT NSString* const NSMenuDidBeginTrackingNotification;
extern PELVOR_EXPORT NSString* const NSMenuDidEndTrackingNotification;

/// A list of items, which are commands and further menus.
///
///     auto file = NSMenu::initWithTitle(u"File"_ns);
///     file->addItemWithTitle_action_keyEquivalent(u"Save"_ns, "save:"_sel, u"s"_ns);
///     NSMenuItem* title = bar->addItemWithTitle_action_keyEquivalent(u"File"_ns, SEL(), u""_ns);
///     bar->setSubmenu_forItem(file, title);
///
/// A menu retains its items. Unless told otherwise, it enables and disables them whenever it is shown: an
/// item with an action is enabled if somebody takes the action and does not refuse the item. Whoever takes
/// the action is asked by `validateMenuItem:` with the item, or by `validateUserInterfaceItem:`; who has
/// neither refuses nothing. Items without an action are disabled, those with a submenu stay as they were set.
/// An item whose taker raises while it is asked is disabled, and the exception is reported.
///
/// A delegate, which is not retained, implements what it wants of these:
///
///     menuNeedsUpdate:           the menu is going to be shown or searched for a key; its items may change
///     menuWillOpen:              the menu opens
///     menuDidClose:              the menu has closed
///     menu:willHighlightItem:    the highlight moves to the item, or to null
///
/// Main thread. Items, delegates and targets may be removed and end at any time, also by what they are asked.
class PELVOR_EXPORT NSMenu : public NSObject {
    PELVOR_CLASS(NSMenu, NSObject);
    PELVOR_CREATORS(init, initWithTitle);

  public:
    static Retained<NSMenu> init(Class* cls = classObject());
    /// Raises NSInvalidArgumentException if the title is null.
    static Retained<NSMenu> initWithTitle(NSString* title, Class* cls = classObject());

    NSString* title() { return _title; }
    /// Copies the title. Raises NSInvalidArgumentException for null.
    void setTitle(NSString* title);

    // Items. An index that is not below the count raises NSRangeException.

    NSInteger numberOfItems() { return static_cast<NSInteger>(_items.size()); }
    NSMenuItem* itemAtIndex(NSInteger index);
    /// A new array.
    NSArray* itemArray();
    /// Removes all items and adds those of the array. Raises NSInvalidArgumentException, and changes nothing,
    /// if one of them is no menu item, or is in another menu.
    void setItemArray(NSArray* items);

    /// Raises NSInvalidArgumentException if the item is null, or is in a menu already.
    void addItem(NSMenuItem* item);
    /// The index may be the count. Raises as `addItem` does.
    void insertItem_atIndex(NSMenuItem* item, NSInteger index);
    /// Adds a new item, and returns it.
    NSMenuItem* addItemWithTitle_action_keyEquivalent(NSString* title, SEL action, NSString* keyEquivalent);
    NSMenuItem* insertItemWithTitle_action_keyEquivalent_atIndex(NSString* title, SEL action,
                                                                 NSString* keyEquivalent, NSInteger index);
    /// Raises NSInvalidArgumentException if the item is not in this menu.
    void removeItem(NSMenuItem* item);
    void removeItemAtIndex(NSInteger index);
    void removeAllItems();
    /// Raises NSInvalidArgumentException if the item is null or not in this menu, and as
    /// `NSMenuItem::setSubmenu` does.
    void setSubmenu_forItem(NSMenu* submenu, NSMenuItem* item);

    // Searches. They return an index, -1 if there is none, or the first such item, or null.

    NSInteger indexOfItem(NSMenuItem* item);
    NSInteger indexOfItemWithTitle(NSString* title);
    NSInteger indexOfItemWithTag(NSInteger tag);
    NSInteger indexOfItemWithRepresentedObject(id object);
    NSInteger indexOfItemWithSubmenu(NSMenu* submenu);
    /// A null selector stands for any action.
    NSInteger indexOfItemWithTarget_andAction(id target, SEL action);
    NSMenuItem* itemWithTitle(NSString* title);
    NSMenuItem* itemWithTag(NSInteger tag);

    /// The menu that has an item with this one as the submenu, or null.
    NSMenu* supermenu();

    // Enabling

    bool autoenablesItems() { return _autoenablesItems; }
    void setAutoenablesItems(bool flag);
    /// Asks the delegate for changes, and then enables and disables the items, if the menu does that itself.
    void update();

    // Choosing

    /// Chooses the item that the key event means, in this menu or in a submenu. Returns false if there is no
    /// such item that is enabled.
    bool performKeyEquivalent(NSEvent* event);
    /// Sends the item's action, if the item is enabled and has one.
    void performActionForItemAtIndex(NSInteger index);

    // Opening. These return when the menu is closed again and the action of the chosen item has been sent.

    /// Opens the menu where the event happened, in the event's window or else the view's.
    static void popUpContextMenu_withEvent_forView(NSMenu* menu, NSEvent* event, NSView* view);
    /// Opens the menu at the place in the view, or on the screen if the view is null: the upper left corner
    /// of the menu, or the middle of the item's left edge if the item is not null. Returns whether an item
    /// was chosen.
    bool popUpMenuPositioningItem_atLocation_inView(NSMenuItem* item, NSPoint place, NSView* view);
    /// Closes the menu, and those that it was opened from, if it is open.
    void cancelTracking();
    /// The item under the pointer, or that the arrow keys have reached, while the menu is open; else null.
    NSMenuItem* highlightedItem() { return _highlightedItem; }

    id delegate();
    void setDelegate(id delegate);

    NSString* description() override;

    // C++ only
    /// Enables or disables the item as `update` does.
    void validateItem(NSMenuItem* item);
    /// The enabled item that the key event means, in this menu or in a submenu; null if there is none.
    Retained<NSMenuItem> itemForKeyEvent(NSEvent* event);
    /// As performActionForItemAtIndex does it.
    void performItem(NSMenuItem* item);
    /// The items where they stand, for walks that change nothing.
    const std::vector<Retained<NSMenuItem>>& items() { return _items; }
    /// A number that grows with every change of the menu or of one of its items.
    std::uint32_t changeCount() { return _changeCount; }
    /// Where the lines stand, kept by who shows the menu until something changes.
    const std::shared_ptr<const MenuLayout>& layout() { return _layout; }
    void setLayout(std::shared_ptr<const MenuLayout> layout) { _layout = std::move(layout); }
    /// Moves the highlight, and tells the delegate.
    void setHighlightedItem(NSMenuItem* item);
    /// Tells the delegate, if it wants to know.
    void tellDelegate(SEL message);
    /// Who is told of changes. It removes itself before it ends.
    void addObserver(MenuObserver* observer) { _observers.push_back(observer); }
    void removeObserver(MenuObserver* observer);

  protected:
    NSMenu();
    ~NSMenu();

  private:
    friend class NSMenuItem;
    friend PELVOR_EXPORT MenuRef _NSGetCarbonMenu(NSMenu* menu);
    friend PELVOR_EXPORT void HiliteMenu(MenuID number);
    /// The number that was highlighted last; 0 for none.
    PELVOR_EXPORT MenuID highlightedMenu();
    void didChange();
    void tellObservers();
    bool contains(NSMenu* menu);
    Retained<NSMenuItem> findKey(NSString* characters, NSUInteger modifiers);
    template <class Matches>
    NSInteger findIndex(Matches matches);
    NSMenuItem* itemAtFound(NSInteger index);

    std::vector<Retained<NSMenuItem>> _items;
    std::vector<MenuObserver*> _observers;
    std::shared_ptr<const MenuLayout> _layout;
    Retained<NSString> _title;
    Retained<NSMenuItem> _highlightedItem;
    WeakHandle _delegate;
    Unretained<NSMenuItem> _superitem = nullptr;  // the item that retains this menu
    OpaqueMenuRef _handle;
    std::uint32_t _changeCount = 0;
    bool _autoenablesItems = true;
};

/// The handle of a menu that is a submenu of the application's main menu, valid while it is; null for others
/// and for null.
PELVOR_EXPORT MenuRef _NSGetCarbonMenu(NSMenu* menu);
/// 0 for null.
PELVOR_EXPORT MenuID GetMenuID(MenuRef menu);
/// Highlights the title of the menu with this number in the menu bar, and takes the highlight from any other;
/// 0 highlights none.
PELVOR_EXPORT void HiliteMenu(MenuID number);
/// The number that was highlighted last; 0 for none.
PELVOR_EXPORT MenuID highlightedMenu();

/// Something that shows a menu.
class PELVOR_EXPORT MenuObserver {
  public:
    virtual void menuDidChange(NSMenu* menu) = 0;

  protected:
    ~MenuObserver() = default;
};

}  // namespace pelvor
