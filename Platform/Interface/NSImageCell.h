// SPDX-License-Identifier: Apache-2.0
// NSImageCell: a picture as a value.
#pragma once

#include "Interface/NSCell.h"
#include "Interface/NSImage.h"

namespace pelvor {

/// A cell whose value is an image, such as of a column of icons. Main thread.
class PELVOR_EXPORT NSImageCell : public NSCell {
    PELVOR_CLASS(NSImageCell, NSCell);
    PELVOR_INHERITED_CREATORS(init, initTextCell, initImageCell);

  public:
    /// Proportionally at first.
    NSImageScaling imageScaling() { return _scaling; }
    void setImageScaling(NSImageScaling scaling);

    /// The image; a value that is no image shows nothing.
    id objectValue() override;
    void setObjectValue(id value) override;
    void setImage(NSImage* image) override { setObjectValue(image); }

    void drawInteriorWithFrame_inView(NSRect frame, NSView* view) override;

  protected:
    NSImageCell();
    ~NSImageCell() = default;

    void takeProperties(NSCell* other) override;

  private:
    NSImageScaling _scaling = NSScaleProportionally;
};

}  // namespace pelvor
