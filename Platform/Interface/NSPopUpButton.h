// SPDX-License-Identifier: Apache-2.0
// NSPopUpButton: a button that opens a menu and shows the chosen item.
#pragma once

#include "Interface/NSButton.h"
#include "Interface/NSPopUpButtonCell.h"

namespace pelvor {

/// A control with an NSPopUpButtonCell:
///
///     auto paper = NSPopUpButton::initWithFrame_pullsDown({{20, 20}, {120, 26}}, false);
///     paper->addItemsWithTitles(NSArray::of({u"A4"_ns, u"Letter"_ns}));
///     paper->setTarget(controller);
///     paper->setAction("changePaper:"_sel);              // which asks for titleOfSelectedItem()
///
/// Indexes are those of the menu; -1 stands for no item. Main thread.
class PELVOR_EXPORT NSPopUpButton : public NSButton {
    PELVOR_CLASS(NSPopUpButton, NSButton);
    PELVOR_CREATORS(initWithFrame_pullsDown);
    PELVOR_INHERITED_CREATORS(initWithFrame);

  public:
    static Retained<NSPopUpButton> initWithFrame_pullsDown(NSRect frame, bool pullsDown,
                                                           Class* cls = classObject());
    static Class* cellClass() { return NSPopUpButtonCell::classObject(); }

    NSMenu* menu() override;
    void setMenu(NSMenu* menu) override;
    bool pullsDown();
    void setPullsDown(bool pullsDown);

    /// An item of that title that was there before goes. The first item that an empty menu gets is selected.
    /// Raises NSInvalidArgumentException for null.
    void addItemWithTitle(NSString* title);
    void addItemsWithTitles(NSArray* titles);
    /// Replaces all items by items with these titles, and selects the first; for interface files. Raises
    /// NSInvalidArgumentException for an object that is no string. Null stands for no titles.
    void setItemTitles(NSArray* titles);
    void insertItemWithTitle_atIndex(NSString* title, NSInteger index);
    void removeItemWithTitle(NSString* title);
    void removeItemAtIndex(NSInteger index);
    void removeAllItems();
    NSArray* itemArray();
    /// The titles of all items, in order.
    NSArray* itemTitles();
    NSInteger numberOfItems();
    NSMenuItem* itemAtIndex(NSInteger index);
    NSMenuItem* itemWithTitle(NSString* title);
    NSMenuItem* lastItem();
    NSString* itemTitleAtIndex(NSInteger index);
    NSInteger indexOfItemWithTitle(NSString* title);

    NSMenuItem* selectedItem();
    NSInteger indexOfSelectedItem();
    /// "" if nothing is selected.
    NSString* titleOfSelectedItem();
    void selectItem(NSMenuItem* item);
    void selectItemAtIndex(NSInteger index);
    void selectItemWithTitle(NSString* title);
    /// Returns whether there is such an item.
    bool selectItemWithTag(NSInteger tag);

    void keyDown(NSEvent* event) override;

  protected:
    NSPopUpButton() = default;
    ~NSPopUpButton() = default;

  private:
    NSPopUpButtonCell* popUpCell();
};

}  // namespace pelvor
