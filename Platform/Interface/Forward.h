// SPDX-License-Identifier: Apache-2.0
// The classes of Interface, for headers that only name them: the floor's table of contents.
#pragma once

#include "Text/Forward.h"

namespace pelvor {

// Events
class NSApplication;   ///< the program's events, windows and end
class NSCursor;        ///< the picture of the pointer
class NSEvent;         ///< what the user does, and which modifier keys are down
class NSInputManager;  ///< makes text and commands of keys
class NSResponder;     ///< what takes events or hands them to the next responder

// Windows and views
class NSClipView;    ///< shows a part of a larger view
class NSPanel;       ///< a window beside documents
class NSScreen;      ///< a monitor
class NSScrollView;  ///< a part of a view, with scrollers
class NSScroller;    ///< shows which part is seen, and chooses another
class NSView;        ///< a rectangle that draws itself and takes events
class NSWindow;      ///< a window with a tree of views

// Text and what is copied
class NSDraggingInfo;  ///< what is dragged over a view
class NSPasteboard;    ///< what was copied, selected or dragged
class NSText;          ///< what views of text have in common
class NSTextView;      ///< shows, selects and edits a text

// Controls, and what they draw in their places
class NSActionCell;        ///< a cell with a target, an action and a tag
class NSButton;            ///< a push button, check box or radio button
class NSButtonCell;        ///< what a button draws
class NSCell;              ///< what a control shows in one of its places
class NSControl;           ///< a view that shows a value and sends an action
class NSImage;             ///< a picture to draw
class NSImageCell;         ///< a picture as a value
class NSImageView;         ///< a view that shows a picture
class NSSegmentedCell;     ///< what a segmented control draws
class NSSegmentedControl;  ///< several buttons in a row
class NSTableColumn;       ///< a column of a table view
class NSTableHeaderCell;   ///< the title of a column
class NSTableHeaderView;   ///< the titles of a table's columns
class NSTableView;         ///< rows and columns of values
class NSTextField;         ///< a text that the user may change, in a field
class NSTextFieldCell;     ///< a text in a field

// Menus
class MenuObserver;       ///< something that shows a menu
class NSAlert;            ///< a panel that tells or asks the user something
class NSMenu;             ///< a list of commands
class NSMenuBarView;      ///< the titles of the main menu in a window
class NSMenuItem;         ///< one line of a menu
class NSPopUpButton;      ///< a button that opens a menu and shows the chosen item
class NSPopUpButtonCell;  ///< the same as a cell

// Panels for files
class NSOpenPanel;  ///< asks the user which files to open
class NSSavePanel;  ///< asks the user where to save a file

}  // namespace pelvor
