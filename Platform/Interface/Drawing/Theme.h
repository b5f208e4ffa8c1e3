// SPDX-License-Identifier: Apache-2.0
// The look of everything that this library draws: colours and measures, in one place.
#pragma once

#include "Foundation/NSGeometry.h"

namespace pelvor {

class NSColor;

/// What a colour is for. The look is light and quiet: white areas to type and choose in, pale grey around
/// them, one accent for what is chosen.
enum class ThemeColor {
    window,             ///< behind controls
    content,            ///< behind texts and rows
    alternateRow,       ///< behind every second row
    grid,               ///< lines between rows and columns, separators
    header,             ///< behind the titles of columns
    border,             ///< around fields, lists and menus
    text,               ///< letters and marks
    secondaryText,      ///< titles of columns, shortcuts
    disabledText,       ///< letters and marks of what cannot be used
    button,             ///< the face of a button
    pressedButton,      ///< the face of a button that is held down
    accent,             ///< switches that are on, default buttons, bars
    pressedAccent,      ///< the same while they are held down
    textOnAccent,       ///< letters and marks on the two above and on the selection
    selection,          ///< behind what is selected, where keys go
    inactiveSelection,  ///< behind what is selected elsewhere
    textSelection,      ///< behind selected letters, which keep their colour
    focusRing,          ///< around the control that keys go to; translucent
    track,              ///< what a knob or bar moves along
    knob,               ///< of scrollers and sliders
    pressedKnob,        ///< the same while they are dragged
    shadow,             ///< around menus; translucent
};

/// Lives until the process ends. Any thread.
NSColor* themeColor(ThemeColor color);

/// Lengths in points.
namespace metrics {

inline constexpr float kCornerRadius = 4;
inline constexpr float kLine = 1;            ///< of borders, grids and separators
inline constexpr float kFocusRing = 2;       ///< the width of the ring, outside the control
inline constexpr float kTextInset = 3;       ///< between the edge of a cell and its text
inline constexpr float kFieldInset = 4;      ///< between the border of a field and its text
inline constexpr float kButtonInset = 14;    ///< between the ends of a button and its title
inline constexpr float kButtonHeight = 26;   ///< of a button of regular size
inline constexpr float kSwitchSize = 14;     ///< of the mark of check boxes and radio buttons
inline constexpr float kSwitchGap = 6;       ///< between the mark and its title
inline constexpr float kImageGap = 5;        ///< between an image and a title
inline constexpr float kSegmentInset = 10;   ///< between the ends of a segment and its label
inline constexpr float kHeaderHeight = 22;   ///< of the titles of columns
inline constexpr float kHeaderInset = 4.5f;  ///< between the ends of a column and its title
inline constexpr float kRowHeight = 20;      ///< of a table's row
inline constexpr float kDividerReach = 4;    ///< how near the pointer has to be to drag a column's edge
inline constexpr float kDragDistance = 4;    ///< how far the pointer moves before it drags something
inline constexpr float kScrollerWidth = 12;
inline constexpr float kMenuItemHeight = 22;
inline constexpr float kMenuInset = 5;  ///< between the edge of a menu and its first item

}  // namespace metrics
}  // namespace pelvor
