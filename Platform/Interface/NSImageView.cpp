// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSImageView.h"

#include "Interface/InterfaceLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSImageView, interfaceLibrary) {
    methods.classLevel<"cellClass", &NSImageView::cellClass>();
    methods.instance<"image", &NSImageView::image>();
    methods.instance<"setImage:", &NSImageView::setImage>();
    methods.instance<"imageScaling", &NSImageView::imageScaling>();
    methods.instance<"setImageScaling:", &NSImageView::setImageScaling>();
}

void NSImageView::setImage(NSImage* image) {
    if (cell()) cell()->setImage(image);
}

NSImageScaling NSImageView::imageScaling() {
    auto* cell = cast<NSImageCell>(this->cell());
    return cell ? cell->imageScaling() : NSScaleProportionally;
}

void NSImageView::setImageScaling(NSImageScaling scaling) {
    if (auto* cell = cast<NSImageCell>(this->cell())) cell->setImageScaling(scaling);
}

}  // namespace pelvor
