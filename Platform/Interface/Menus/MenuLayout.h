// SPDX-License-Identifier: Apache-2.0
// MenuLayout: where the lines of a menu stand.
#pragma once

#include <memory>
#include <vector>

#include "Foundation/NSAttributedString.h"
#include "Foundation/NSGeometry.h"
#include "Interface/NSMenuItem.h"

namespace pelvor {

class NSDictionary;
class NSMenu;
class NSString;
enum class ThemeColor;

/// A plain text in the menu's font, or an attributed text, with the room that it takes. In an attributed
/// text, what has no font gets the menu's, and what is in the family of the menu's font gets its size, so
/// that the lines of a menu are alike.
class MenuText {
  public:
    MenuText() = default;
    explicit MenuText(NSString* text);
    explicit MenuText(NSAttributedString* text);

    NSSize size() const { return _size; }
    /// Draws the text with its upper left corner at the point. A plain text has the colour; an attributed
    /// text has its own unless `overrides` is true.
    void draw(NSPoint point, ThemeColor color, bool overrides) const;

  private:
    Retained<NSString> _plain;
    Retained<NSAttributedString> _attributed;
    NSSize _size;
};

/// Where the lines of a menu stand and how much room they take, from left to right; who shows a menu from
/// right to left mirrors it. In points, y downwards from the upper edge of the first line. What is behind a
/// tab in an attributed title stands where other items have their key equivalents.
class MenuLayout {
  public:
    struct Row {
        Retained<NSMenuItem> item;
        MenuText title, keys;
        float y = 0, height = 0;

        bool canBeChosen() const { return !item->isSeparatorItem() && item->isEnabled(); }
    };
    static constexpr int kNoRow = -1;

    /// Of the items from that index on. The menu keeps the layout of all its items until one of them changes.
    static std::shared_ptr<const MenuLayout> of(NSMenu* menu, std::size_t firstItem = 0);

    const std::vector<Row>& rows() const { return _rows; }
    NSSize size() const { return _size; }
    /// The row that covers the height, or kNoRow.
    int rowAt(float y) const;
    int rowOf(NSMenuItem* item) const;
    /// Where the titles begin.
    float titleX() const { return _titleX; }

    /// The room of the mark in front of a title, and of the arrow behind the title of a submenu.
    static constexpr float kMarkX = 7, kMarkWidth = 14, kArrowWidth = 14, kEndInset = 10;
    static constexpr float kIndentation = 12;

  private:
    void add(NSMenuItem* item);

    std::vector<Row> _rows;
    NSSize _size;
    float _titleX = 0;
};

}  // namespace pelvor
