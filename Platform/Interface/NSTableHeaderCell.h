// SPDX-License-Identifier: Apache-2.0
// NSTableHeaderCell: the title of a column.
#pragma once

#include "Interface/NSTextFieldCell.h"

namespace pelvor {

/// Draws the title of a column on the header's ground. Main thread.
class PELVOR_EXPORT NSTableHeaderCell : public NSTextFieldCell {
    PELVOR_CLASS(NSTableHeaderCell, NSTextFieldCell);
    PELVOR_INHERITED_CREATORS(init, initTextCell, initImageCell);

  public:
    /// Where the sign of a sorted column stands.
    NSRect sortIndicatorRectForBounds(NSRect bounds);
    /// Draws the sign of the column that the rows are sorted by; further columns (priority 1 and up) have
    /// none.
    void drawSortIndicatorWithFrame_inView_ascending_priority(NSRect frame, NSView* view, bool isAscending,
                                                              NSInteger priority);

    NSSize cellSizeForBounds(NSRect bounds) override;
    NSRect titleRectForBounds(NSRect bounds) override;
    void drawWithFrame_inView(NSRect frame, NSView* view) override;

    // C++ only

    NSColor* effectiveTextColor() override;

  protected:
    NSTableHeaderCell();
    ~NSTableHeaderCell() = default;
};

}  // namespace pelvor
