// SPDX-License-Identifier: Apache-2.0
// NSMenuBarView: the titles of the main menu in a window.
#pragma once

#include <memory>

#include "Interface/NSView.h"

namespace pelvor {

class NSMenu;
class NSMenuItem;

/// Shows the titles of a menu's items beside each other, and opens their submenus: by the mouse, by F10 or
/// Alt alone, and from one to the next by the arrow keys. Alt with a letter of a title opens the title's
/// menu; which letter that is, of those from A to Z, the bar decides, and underlines the letters while Alt is
/// down or the user goes through the menus by keys. Titles without room stand in a menu at the end of the
/// bar.
///
/// Windows that can become main have one above their content view
/// (NSWindow::showsMenuBar); other places get one by hand:
///
///     NSRect room = window->contentView()->bounds(), bar;
///     NSDivideRect(room, &bar, &room, NSMenuBarView::menuBarHeight(), NSMaxYEdge);
///     auto menuBar = NSMenuBarView::initWithFrame(bar);
///     menuBar->setAutoresizingMask(NSViewWidthSizable | NSViewMinYMargin);
///     window->contentView()->addSubview(menuBar);
///
/// In languages that are written from right to left the first title stands on the right. Main thread.
class PELVOR_EXPORT NSMenuBarView : public NSView {
    PELVOR_CLASS(NSMenuBarView, NSView);
    PELVOR_CREATORS(initWithFrame);

  public:
    /// A bar with the application's main menu.
    static Retained<NSMenuBarView> initWithFrame(NSRect frame, Class* cls = classObject());
    static float menuBarHeight();

    /// The menu that was set, else the application's main menu; null if there is neither.
    NSMenu* menu() override;
    /// Null stands for the application's main menu.
    void setMenu(NSMenu* menu) override;
    NSMenu* menuForEvent(NSEvent*) override { return nullptr; }
    /// Opens the first menu for the keyboard, and returns when everything is closed again. Does nothing in a
    /// view without a window.
    void openByKeyboard();

    bool isFlipped() override { return true; }
    bool isOpaque() override { return true; }
    bool acceptsFirstMouse(NSEvent*) override { return true; }
    void drawRect(NSRect dirty) override;
    void mouseDown(NSEvent* event) override;
    /// Takes F10.
    bool performKeyEquivalent(NSEvent* event) override;

    // C++ only
    /// Underlines the letters, or stops that.
    void showLetters(bool shows);
    /// Opens the menu whose letter is pressed with Alt. Returns false if no menu has the letter.
    bool openByLetter(NSEvent* event);

  protected:
    NSMenuBarView();
    ~NSMenuBarView();

  private:
    struct Titles;
    void track(int title, bool isButtonDown, bool isByKeyboard, NSMenuItem* entered = nullptr);
    void drawTitle(NSMenuItem* item, NSRect rect, bool isOpen, NSUInteger letter);

    std::unique_ptr<Titles> _titles;
};

}  // namespace pelvor
