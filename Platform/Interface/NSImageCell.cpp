// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSImageCell.h"

#include "Interface/InterfaceLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSImageCell, interfaceLibrary) {
    methods.instance<"imageScaling", &NSImageCell::imageScaling>();
    methods.instance<"setImageScaling:", &NSImageCell::setImageScaling>();
}

NSImageCell::NSImageCell() { _values.type = NSImageCellType; }

void NSImageCell::takeProperties(NSCell* other) {
    NSCell::takeProperties(other);
    _scaling = static_cast<NSImageCell*>(other)->_scaling;
}

void NSImageCell::setImageScaling(NSImageScaling scaling) {
    _scaling = scaling;
    changed();
}

id NSImageCell::objectValue() { return image(); }

void NSImageCell::setObjectValue(id value) { NSCell::setImage(cast<NSImage>(value)); }

void NSImageCell::drawInteriorWithFrame_inView(NSRect frame, NSView*) {
    if (!image()) return;
    image()->drawInRect_fromRect_operation_fraction(
        fittedImage(image()->size(), imageRectForBounds(frame), _scaling), NSZeroRect, NSCompositeSourceOver,
        isEnabled() ? 1 : 0.4f);
}

}  // namespace pelvor
