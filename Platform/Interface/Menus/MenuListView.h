// SPDX-License-Identifier: Apache-2.0
// MenuListView: shows the lines of an open menu.
#pragma once

#include "Interface/Menus/MenuLayout.h"
#include "Interface/NSMenu.h"
#include "Interface/NSView.h"

namespace pelvor {

/// Shows the lines of a menu, as many as fit; where there are more, arrows stand at the edges. Which line is
/// highlighted is the menu's business; the tracker moves everything.
class MenuListView final : public NSView, NSView::HiddenCreators, private MenuObserver {
    PELVOR_CLASS(MenuListView, NSView);
    PELVOR_CREATORS(forMenu);

  public:
    /// Shows the items from that index on.
    static Retained<MenuListView> forMenu(NSMenu* menu, std::size_t firstItem, Class* cls = classObject());

    // C++ only

    NSMenu* menu() override { return _menu; }
    const MenuLayout& layout() { return *_layout; }
    /// Whether the menu has changed since the layout was made.
    bool isStale() { return _isStale; }
    /// Takes the menu's layout of the moment.
    void refresh();
    /// The size that shows all lines.
    NSSize wantedSize();

    /// The row at a point of the view; kNoRow beside the lines and on the arrows.
    int rowAt(NSPoint point);
    NSRect rectOfRow(int row);
    void redrawRow(int row);

    /// -1 or 1 if the point is on the arrow that scrolls up or down, else 0.
    int arrowAt(NSPoint point);
    /// Returns whether anything moved.
    bool scrollBy(float distance);
    void scrollRowToVisible(int row);

    bool isFlipped() override { return true; }
    bool isOpaque() override { return true; }
    void drawRect(NSRect dirty) override;

  protected:
    MenuListView() = default;
    ~MenuListView();

  private:
    void menuDidChange(NSMenu* menu) override;
    float lengthBeyond();
    float upperArrow() { return _offset > 0 ? kArrowHeight : 0; }
    float lowerArrow() { return _offset < lengthBeyond() ? kArrowHeight : 0; }
    NSRect linesRect();
    void drawRow(const MenuLayout::Row& row, NSRect rect, bool isHighlighted);
    void drawMarks(NSMenuItem* item, NSRect rect, ThemeColor color);
    NSRect mirrored(NSRect rect);

    static constexpr float kArrowHeight = 16;

    Retained<NSMenu> _menu;
    std::size_t _firstItem = 0;
    std::shared_ptr<const MenuLayout> _layout;
    float _offset = 0;  // how far the lines are scrolled up
    bool _isStale = false;
    bool _isMirrored = false;
};

}  // namespace pelvor
