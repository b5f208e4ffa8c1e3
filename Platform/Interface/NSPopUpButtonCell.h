// SPDX-License-Identifier: Apache-2.0
// NSPopUpButtonCell: a button that opens a menu and shows the chosen item.
#pragma once

#include "Interface/NSButtonCell.h"
#include "Interface/NSMenu.h"

namespace pelvor {

/// A button that opens its menu: a pop-up button shows the selected item, which lies over the button when the
/// menu opens; a pull-down button always shows the first item, with the menu below. Choosing an item selects
/// it, and sends the item's action or, if it has none, the cell's. Arrow keys up and down open the menu.
/// Main thread.
class PELVOR_EXPORT NSPopUpButtonCell : public NSButtonCell, private MenuObserver {
    PELVOR_CLASS(NSPopUpButtonCell, NSButtonCell);
    PELVOR_CREATORS(initTextCell_pullsDown);
    PELVOR_INHERITED_CREATORS(init, initTextCell, initImageCell);

  public:
    /// A cell with one item of that title, unless it is null or "".
    static Retained<NSPopUpButtonCell> initTextCell_pullsDown(NSString* title, bool pullsDown,
                                                              Class* cls = classObject());

    /// Never null. The items of the first menu are not enabled and disabled by takers of actions.
    NSMenu* menu();
    /// Null takes an empty menu. Selects the first item.
    void setMenu(NSMenu* menu);
    bool pullsDown() { return _pullsDown; }
    void setPullsDown(bool pullsDown);
    /// Null if nothing is selected, or the item is no longer in the menu.
    NSMenuItem* selectedItem();
    /// Selects the item, which gets a mark unless the menu is pulled down; null, or an item of another menu,
    /// selects nothing.
    void selectItem(NSMenuItem* item);

    /// Opens the menu at the frame in the view, and does what the chosen item says.
    void popUpInFrame_ofView(NSRect frame, NSView* view);

    NSString* title() override;
    /// Adds an item of that title, unless there is one, and selects it.
    void setTitle(NSString* title) override;
    NSSize cellSizeForBounds(NSRect bounds) override;
    void drawInteriorWithFrame_inView(NSRect frame, NSView* view) override;
    bool trackMouse_inRect_ofView_untilMouseUp(NSEvent* event, NSRect frame, NSView* view,
                                               bool untilMouseUp) override;
    void performClick(id sender) override;

  protected:
    NSPopUpButtonCell();
    ~NSPopUpButtonCell();

    void takeProperties(NSCell* other) override;

  private:
    void menuDidChange(NSMenu* menu) override;
    NSMenuItem* shownItem();

    Retained<NSMenu> _menu;
    Retained<NSMenuItem> _selectedItem;
    bool _pullsDown = false;
    bool _isEmpty = true;  // the menu, when it was last seen
};

}  // namespace pelvor
