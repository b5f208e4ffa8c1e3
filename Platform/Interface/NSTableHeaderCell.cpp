// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSTableHeaderCell.h"

#include <cmath>

#include "Interface/Drawing/Direction.h"
#include "Interface/Drawing/Shapes.h"
#include "Interface/InterfaceLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSTableHeaderCell, interfaceLibrary) {
    methods.instance<"sortIndicatorRectForBounds:", &NSTableHeaderCell::sortIndicatorRectForBounds>();
    methods.instance<"drawSortIndicatorWithFrame:inView:ascending:priority:",
                     &NSTableHeaderCell::drawSortIndicatorWithFrame_inView_ascending_priority>();
}

namespace {

constexpr float kIndicatorWidth = 12;

}  // namespace

NSTableHeaderCell::NSTableHeaderCell() { _values.controlSize = NSSmallControlSize; }

NSColor* NSTableHeaderCell::effectiveTextColor() {
    return isEnabled() && !textColor() ? themeColor(ThemeColor::secondaryText)
                                       : NSTextFieldCell::effectiveTextColor();
}

NSSize NSTableHeaderCell::cellSizeForBounds(NSRect) {
    const NSSize size = sizeOfText_width(objectValue(), 1.0e4f);
    return {std::ceil(size.width + 2 * metrics::kHeaderInset), metrics::kHeaderHeight};
}

NSRect NSTableHeaderCell::titleRectForBounds(NSRect bounds) {
    return NSInsetRect(bounds, metrics::kHeaderInset, 0);
}

NSRect NSTableHeaderCell::sortIndicatorRectForBounds(NSRect bounds) {
    NSRect indicator;
    NSDivideRect(NSInsetRect(bounds, metrics::kHeaderInset / 2, 0), &indicator, nullptr, kIndicatorWidth,
                 runsFromRightToLeft(baseWritingDirection()) ? NSMinXEdge : NSMaxXEdge);
    return indicator;
}

void NSTableHeaderCell::drawSortIndicatorWithFrame_inView_ascending_priority(NSRect frame, NSView*,
                                                                             bool isAscending,
                                                                             NSInteger priority) {
    if (priority != 0) return;
    drawChevron(sortIndicatorRectForBounds(frame), isAscending ? Pointing::up : Pointing::down,
                ThemeColor::secondaryText);
}

void NSTableHeaderCell::drawWithFrame_inView(NSRect frame, NSView* view) {
    fillRect(frame, isHighlighted() ? ThemeColor::pressedButton : ThemeColor::header);
    drawInteriorWithFrame_inView(frame, view);
}

}  // namespace pelvor
