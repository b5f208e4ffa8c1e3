// SPDX-License-Identifier: Apache-2.0
// MenuTracker: follows mouse and keys through open menus.
#pragma once

#include <limits>
#include <string>
#include <vector>

#include "Foundation/NSDate.h"
#include "Interface/Menus/MenuListView.h"
#include "Interface/NSWindow.h"

namespace pelvor {

class NSEvent;
class NSWindow;

/// Where a menu opens: under or over a rectangle, beside it, or with one of its items over it.
enum class MenuSide { below, beside, over };

struct MenuOpening {
    NSRect anchor;  ///< on the screen
    MenuSide side = MenuSide::below;
    std::size_t firstItem = 0;             ///< the index of the first item that is shown
    NSMenuItem* enteredItem = nullptr;     ///< an item whose submenu opens as well, if it is in the menu
    NSMenuItem* itemOverAnchor = nullptr;  ///< for MenuSide::over; else the upper left corner is the anchor's
    float leastWidth = 0;
    bool isButtonDown = false;  ///< the press that opens the menu may go on to the item
    bool isByKeyboard = false;  ///< the first item is highlighted
};

/// The titles of a menu bar, among which the user goes from one menu to the next.
class MenuTitles {
  public:
    static constexpr int kNoTitle = -1;
    virtual int titleCount() = 0;
    /// The title at a point of the screen, or kNoTitle.
    virtual int titleAt(NSPoint place) = 0;
    /// Null for a title without a menu.
    virtual NSMenu* menuOfTitle(int title) = 0;
    /// Where the title's menu opens, and which of its items are shown.
    virtual MenuOpening openingOfTitle(int title) = 0;
    /// The item whose letter is pressed with Alt; null for every other event.
    virtual NSMenuItem* itemForLetter(NSEvent* event) = 0;
    /// The title that the item's menu opens from: the item's own, or the last one for an item without room.
    virtual int titleOfItem(NSMenuItem* item) = 0;
    virtual void showOpenTitle(int title) = 0;

  protected:
    ~MenuTitles() = default;
};

/// Shows a menu and its submenus, and follows the user through them until an item is chosen or everything is
/// closed. Only one tracker runs at a time. What delegates and validators raise is reported, and tracking
/// goes on; they may change and end everything.
class MenuTracker {
  public:
    explicit MenuTracker(MenuTitles* titles = nullptr) : _titles(titles) {}
    ~MenuTracker();
    MenuTracker(const MenuTracker&) = delete;
    MenuTracker& operator=(const MenuTracker&) = delete;

    /// Returns the chosen item, whose action the caller sends; null if none was chosen, and at once if
    /// another tracker runs.
    Retained<NSMenuItem> track(NSMenu* menu, const MenuOpening& opening);
    /// Begins with a title of the bar; with an item that the title opens, in the item's submenu.
    Retained<NSMenuItem> trackTitle(int title, bool isButtonDown, bool isByKeyboard,
                                    NSMenuItem* entered = nullptr);

    /// Closes all menus if the menu, or with null any menu, is being tracked.
    static void cancel(NSMenu* menu = nullptr);
    /// Has the tracker look at its menus again, which have changed while it waits.
    static void wake();

  private:
    struct Level {
        Retained<NSMenu> menu;
        Retained<MenuListView> view;
        Retained<NSWindow> window;
        Retained<NSMenuItem> opener;  // null for the first level
        MenuOpening opening;
        bool takesKeys = false;  // without a highlight, too: it was opened by a click
    };
    static constexpr double kNever = std::numeric_limits<double>::infinity();

    Retained<NSMenuItem> run(NSMenu* menu, const MenuOpening& opening);
    void loop();
    void handle(NSEvent* event);
    void handleTime(double now);

    // Levels
    void open(NSMenu* menu, const MenuOpening& opening, NSMenuItem* opener);
    void place(Level& level);
    void closeFrom(std::size_t level);
    void refreshStale();
    void openTitle(int title, bool isByKeyboard, NSMenuItem* entered = nullptr);
    void openSubmenu(std::size_t level, bool isByKeyboard);
    void settleSubmenus(std::size_t level);
    std::size_t levelAt(NSPoint place);
    NSPoint placeIn(std::size_t level, NSPoint place);
    void finish(NSMenuItem* chosen);

    // The highlight
    int highlightedRow(std::size_t level);
    void highlight(std::size_t level, int row);
    std::size_t activeLevel();

    // The mouse
    void pointerMoved(NSPoint place);
    void pointerPressed(NSPoint place);
    void pointerReleased(NSPoint place);
    bool isHeadingForSubmenu(std::size_t level, NSPoint place);
    void rest();

    // The keyboard
    void keyPressed(NSEvent* event);
    bool moveByKey(char16_t key);
    void step(std::size_t level, int from, int direction);
    void stepTitle(int direction);
    void goIn(std::size_t level);
    void goOut(std::size_t level);
    void typeSelect(NSString* characters, double now);

    template <class Work>
    void guarded(Work work);

    MenuTitles* _titles;
    int _openTitle = MenuTitles::kNoTitle;
    std::vector<Level> _levels;
    Retained<NSMenuItem> _chosen;
    NSPoint _pointer, _formerPointer, _pressPlace;
    double _restAt = kNever, _scrollAt = kNever, _pressTime = 0, _typeTime = 0;
    std::size_t _scrollLevel = 0;
    int _scrollDirection = 0;
    std::u16string _typed;
    bool _isOver = false;
    bool _isButtonDown = false;  // since before the menu opened
};

/// The frame of a menu of that size on a screen with that visible frame, beside its anchor and inside the
/// visible frame; smaller where there is no room. `overlap` is the distance from the menu's upper edge to the
/// line that lies over the anchor.
NSRect menuFrame(NSSize size, const MenuOpening& opening, float overlap, NSRect visibleFrame,
                 bool isRightToLeft);

}  // namespace pelvor
