// SPDX-License-Identifier: Apache-2.0
// NSImageView: a picture in a view.
#pragma once

#include "Interface/NSControl.h"
#include "Interface/NSImageCell.h"

namespace pelvor {

/// A view that shows an image, fitted to its frame. Main thread.
class PELVOR_EXPORT NSImageView : public NSControl {
    PELVOR_CLASS(NSImageView, NSControl);
    PELVOR_INHERITED_CREATORS(initWithFrame);

  public:
    static Class* cellClass() { return NSImageCell::classObject(); }

    NSImage* image() { return cell() ? cell()->image() : nullptr; }
    void setImage(NSImage* image);
    NSImageScaling imageScaling();
    void setImageScaling(NSImageScaling scaling);

    bool acceptsFirstResponder() override { return false; }

  protected:
    NSImageView() = default;
    ~NSImageView() = default;
};

}  // namespace pelvor
