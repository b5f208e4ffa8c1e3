// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSPopUpButtonCell.h"

#include <algorithm>
#include <cmath>

#include "Interface/Drawing/Direction.h"
#include "Interface/Drawing/Shapes.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/Menus/MenuTracker.h"
#include "Interface/NSApplication.h"
#include "Interface/NSControl.h"
#include "Interface/NSEvent.h"
#include "Interface/NSWindow.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSPopUpButtonCell, interfaceLibrary) {
    methods.creator<"initTextCell:pullsDown:", &NSPopUpButtonCell::initTextCell_pullsDown>();
    methods.instance<"menu", &NSPopUpButtonCell::menu>();
    methods.instance<"setMenu:", &NSPopUpButtonCell::setMenu>();
    methods.instance<"pullsDown", &NSPopUpButtonCell::pullsDown>();
    methods.instance<"setPullsDown:", &NSPopUpButtonCell::setPullsDown>();
    methods.instance<"selectedItem", &NSPopUpButtonCell::selectedItem>();
    methods.instance<"selectItem:", &NSPopUpButtonCell::selectItem>();
    methods.instance<"popUpInFrame:ofView:", &NSPopUpButtonCell::popUpInFrame_ofView>();
}

namespace {

constexpr float kArrowWidth = 18;

}  // namespace

NSPopUpButtonCell::NSPopUpButtonCell() { _values.alignment = NSNaturalTextAlignment; }

NSPopUpButtonCell::~NSPopUpButtonCell() {
    if (_menu) _menu->removeObserver(this);
}

Retained<NSPopUpButtonCell> NSPopUpButtonCell::initTextCell_pullsDown(NSString* title, bool pullsDown,
                                                                      Class* cls) {
    auto cell = cast<NSPopUpButtonCell>(NSButtonCell::initTextCell(u""_ns, cls));
    cell->_pullsDown = pullsDown;
    if (title && title->length() > 0) cell->setTitle(title);
    return cell;
}

// A copy shows the same menu.
void NSPopUpButtonCell::takeProperties(NSCell* other) {
    NSButtonCell::takeProperties(other);
    auto* button = static_cast<NSPopUpButtonCell*>(other);
    _pullsDown = button->_pullsDown;
    _menu = button->_menu;
    if (_menu) _menu->addObserver(this);
    _isEmpty = button->_isEmpty;
    _selectedItem = button->_selectedItem;
}

// MARK: Items

NSMenu* NSPopUpButtonCell::menu() {
    if (!_menu) {
        _menu = NSMenu::init();
        _menu->setAutoenablesItems(false);
        _menu->addObserver(this);
    }
    return _menu;
}

void NSPopUpButtonCell::setMenu(NSMenu* menu) {
    if (_menu == menu && menu) return;
    const auto former = std::exchange(_menu, Retained<NSMenu>::retaining(menu));
    if (former) former->removeObserver(this);
    if (menu) menu->addObserver(this);
    _isEmpty = !menu || menu->numberOfItems() == 0;
    selectItem(_isEmpty ? nullptr : menu->itemAtIndex(0));
}

void NSPopUpButtonCell::menuDidChange(NSMenu* menu) {
    // The first item that an empty menu gets is selected.
    const bool wasEmpty = std::exchange(_isEmpty, menu->numberOfItems() == 0);
    if (_isEmpty)
        _selectedItem = nullptr;
    else if (wasEmpty)
        selectItem(menu->itemAtIndex(0));
    changed();
}

// Menus that are pulled down mark no item.
void NSPopUpButtonCell::setPullsDown(bool pullsDown) {
    const auto selected = Retained<NSMenuItem>::retaining(selectedItem());
    selectItem(nullptr);
    _pullsDown = pullsDown;
    selectItem(selected);
}

NSMenuItem* NSPopUpButtonCell::selectedItem() {
    return _selectedItem && _selectedItem->menu() == menu() ? _selectedItem.get() : nullptr;
}

void NSPopUpButtonCell::selectItem(NSMenuItem* item) {
    if (item && item->menu() != menu()) item = nullptr;
    const auto former = std::exchange(_selectedItem, Retained<NSMenuItem>::retaining(item));
    if (!_pullsDown) {
        if (former) former->setState(0);
        if (item) item->setState(1);
    }
    changed();
}

NSMenuItem* NSPopUpButtonCell::shownItem() {
    if (!_pullsDown) return selectedItem();
    return menu()->numberOfItems() > 0 ? menu()->itemAtIndex(0) : nullptr;
}

NSString* NSPopUpButtonCell::title() { return shownItem() ? shownItem()->title() : u""_ns; }

void NSPopUpButtonCell::setTitle(NSString* title) {
    if (!title) title = u""_ns;
    NSMenuItem* item = menu()->itemWithTitle(title);
    if (!item) item = menu()->addItemWithTitle_action_keyEquivalent(title, SEL(), u""_ns);
    selectItem(item);
}

// MARK: Showing

NSSize NSPopUpButtonCell::cellSizeForBounds(NSRect) {
    float width = 0;
    for (const auto& item : menu()->items())
        if (!item->isSeparatorItem()) width = std::max(width, sizeOfText_width(item->title(), 1e4F).width);
    return {std::ceil(width) + 2 * metrics::kButtonInset + kArrowWidth, metrics::kButtonHeight};
}

void NSPopUpButtonCell::drawInteriorWithFrame_inView(NSRect frame, NSView*) {
    const NSRectEdge trailing = runsFromRightToLeft(baseWritingDirection()) ? NSMinXEdge : NSMaxXEdge;
    NSRect arrow, rest;
    NSDivideRect(NSInsetRect(frame, metrics::kFieldInset, 0), &arrow, &rest, kArrowWidth, trailing);
    drawText_inRect(title(), NSInsetRect(rest, metrics::kFieldInset, metrics::kTextInset));
    const ThemeColor color = isEnabled() ? ThemeColor::secondaryText : ThemeColor::disabledText;
    if (_pullsDown) return drawChevron(arrow, Pointing::down, color);
    drawChevron(NSOffsetRect(arrow, 0, -4), Pointing::up, color);
    drawChevron(NSOffsetRect(arrow, 0, 4), Pointing::down, color);
}

// MARK: Opening

void NSPopUpButtonCell::popUpInFrame_ofView(NSRect frame, NSView* view) {
    NSWindow* window = view ? view->window() : nullptr;
    if (!window || !isEnabled()) return;
    const auto held = Retained<NSPopUpButtonCell>::retaining(this);
    const auto itsMenu = Retained<NSMenu>::retaining(menu());
    const NSRect inWindow = view->convertRect_toView(frame, nullptr);
    MenuOpening opening{{window->convertBaseToScreen(inWindow.origin), inWindow.size}};
    opening.side = _pullsDown || !selectedItem() ? MenuSide::below : MenuSide::over;
    opening.itemOverAnchor = opening.side == MenuSide::over ? selectedItem() : nullptr;
    opening.leastWidth = NSWidth(frame);
    NSEvent* event = NSApp() ? NSApp()->currentEvent() : nullptr;
    opening.isButtonDown = event && event->type() == NSLeftMouseDown;
    opening.isByKeyboard = !opening.isButtonDown && !opening.itemOverAnchor;
    MenuTracker tracker;
    const auto chosen = tracker.track(itsMenu, opening);
    if (!chosen) return;
    if (chosen->menu() == itsMenu) selectItem(chosen);
    if (chosen->action() && chosen->menu())
        chosen->menu()->performItem(chosen);
    else
        sendAction();
}

bool NSPopUpButtonCell::trackMouse_inRect_ofView_untilMouseUp(NSEvent*, NSRect frame, NSView* view, bool) {
    popUpInFrame_ofView(frame, view);
    return true;
}

void NSPopUpButtonCell::performClick(id) {
    if (NSView* view = controlView()) popUpInFrame_ofView(view->bounds(), view);
}

}  // namespace pelvor
