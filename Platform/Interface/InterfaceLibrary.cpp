// SPDX-License-Identifier: Apache-2.0
#include "Interface/InterfaceLibrary.h"

#include "Interface/Backend/DisplayConnection.h"
#include "Interface/Menus/AlertView.h"
#include "Interface/Menus/MenuListView.h"
#include "Interface/NSActionCell.h"
#include "Interface/NSAlert.h"
#include "Interface/NSApplication.h"
#include "Interface/NSButton.h"
#include "Interface/NSButtonCell.h"
#include "Interface/NSCell.h"
#include "Interface/NSClipView.h"
#include "Interface/NSControl.h"
#include "Interface/NSCursor.h"
#include "Interface/NSDraggingInfo.h"
#include "Interface/NSEvent.h"
#include "Interface/NSImage.h"
#include "Interface/NSImageCell.h"
#include "Interface/NSImageView.h"
#include "Interface/NSInputManager.h"
#include "Interface/NSMenu.h"
#include "Interface/NSMenuBarView.h"
#include "Interface/NSMenuItem.h"
#include "Interface/NSOpenPanel.h"
#include "Interface/NSPanel.h"
#include "Interface/NSPasteboard.h"
#include "Interface/NSPopUpButton.h"
#include "Interface/NSPopUpButtonCell.h"
#include "Interface/NSResponder.h"
#include "Interface/NSSavePanel.h"
#include "Interface/NSScreen.h"
#include "Interface/NSScrollView.h"
#include "Interface/NSScroller.h"
#include "Interface/NSSegmentedCell.h"
#include "Interface/NSSegmentedControl.h"
#include "Interface/NSTableColumn.h"
#include "Interface/NSTableHeaderCell.h"
#include "Interface/NSTableHeaderView.h"
#include "Interface/NSTableView.h"
#include "Interface/NSText.h"
#include "Interface/NSTextField.h"
#include "Interface/NSTextFieldCell.h"
#include "Interface/NSTextView.h"
#include "Interface/NSView.h"
#include "Interface/Panels/FileNameCell.h"
#include "Interface/Panels/FilePanelView.h"
#include "Interface/Texts/TextUndo.h"
#include "Interface/Windows/ToolTipView.h"
#include "Interface/Windows/WindowState.h"
#include "Text/TextLibrary.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&textLibrary};

// Alphabetical; a superclass is registered before its subclasses wherever it stands.
// clang-format off
constexpr Class* kClasses[] = {
    &AlertView::classRecord,
    &DisplayWatcher::classRecord,
    &FileNameCell::classRecord,
    &FilePanelView::classRecord,
    &MenuListView::classRecord,
    &NSActionCell::classRecord,
    &NSAlert::classRecord,
    &NSApplication::classRecord,
    &NSButton::classRecord,
    &NSButtonCell::classRecord,
    &NSCell::classRecord,
    &NSClipView::classRecord,
    &NSControl::classRecord,
    &NSCursor::classRecord,
    &NSDraggingInfo::classRecord,
    &NSEvent::classRecord,
    &NSImage::classRecord,
    &NSImageCell::classRecord,
    &NSImageView::classRecord,
    &NSInputManager::classRecord,
    &NSMenu::classRecord,
    &NSMenuBarView::classRecord,
    &NSMenuItem::classRecord,
    &NSOpenPanel::classRecord,
    &NSPanel::classRecord,
    &NSPasteboard::classRecord,
    &NSPopUpButton::classRecord,
    &NSPopUpButtonCell::classRecord,
    &NSResponder::classRecord,
    &NSSavePanel::classRecord,
    &NSScreen::classRecord,
    &NSScrollView::classRecord,
    &NSScroller::classRecord,
    &NSSegmentedCell::classRecord,
    &NSSegmentedControl::classRecord,
    &NSTableColumn::classRecord,
    &NSTableHeaderCell::classRecord,
    &NSTableHeaderView::classRecord,
    &NSTableView::classRecord,
    &NSText::classRecord,
    &NSTextField::classRecord,
    &NSTextFieldCell::classRecord,
    &NSTextUndo::classRecord,
    &NSTextView::classRecord,
    &NSView::classRecord,
    &NSWindow::classRecord,
    &ToolTipView::classRecord,
    &WindowRootView::classRecord,
};
// clang-format on

}  // namespace

constinit Library interfaceLibrary{"PelvorInterface", kDependencies, kClasses, {}};

}  // namespace pelvor
