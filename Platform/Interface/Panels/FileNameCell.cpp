// SPDX-License-Identifier: Apache-2.0
#include "Interface/Panels/FileNameCell.h"

#include <cmath>

#include "Interface/Drawing/Direction.h"
#include "Interface/Drawing/Shapes.h"
#include "Interface/InterfaceLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(FileNameCell, interfaceLibrary) {}

namespace {

constexpr float kPictureRoom = 24;
constexpr NSSize kFolder{16, 12}, kFile{11, 14};

}  // namespace

void FileNameCell::takeProperties(NSCell* other) {
    NSTextFieldCell::takeProperties(other);
    _isFolder = static_cast<FileNameCell*>(other)->_isFolder;
}

NSRect FileNameCell::titleRectForBounds(NSRect bounds) {
    NSRect rest = bounds;
    NSDivideRect(rest, nullptr, &rest, kPictureRoom,
                 interfaceRunsFromRightToLeft() ? NSMaxXEdge : NSMinXEdge);
    return NSTextFieldCell::titleRectForBounds(rest);
}

void FileNameCell::drawInteriorWithFrame_inView(NSRect frame, NSView* view) {
    NSTextFieldCell::drawInteriorWithFrame_inView(frame, view);
    const NSSize size = _isFolder ? kFolder : kFile;
    const float middle =
        interfaceRunsFromRightToLeft() ? NSMaxX(frame) - kPictureRoom / 2 : frame.origin.x + kPictureRoom / 2;
    const NSRect place{{std::round(middle - size.width / 2), std::round(NSMidY(frame) - size.height / 2)},
                       size};
    const ThemeColor ink = isHighlighted() ? ThemeColor::selection : ThemeColor::disabledText;
    if (_isFolder) {
        const ThemeColor color = isHighlighted() ? ThemeColor::textOnAccent : ThemeColor::accent;
        fillRounded({place.origin, {7, 6}}, 1.5f, color);
        fillRounded({{place.origin.x, place.origin.y + 2}, {size.width, size.height - 2}}, 1.5f, color);
        return;
    }
    fillRounded(place, 1.5f, ThemeColor::content);
    strokeRounded(place, 1.5f, 1, ink);
    for (const float y : {4.0f, 7.0f, 10.0f})
        fillRect({{place.origin.x + 3, place.origin.y + y - 0.5f}, {size.width - 6, 1}}, ink);
}

}  // namespace pelvor
