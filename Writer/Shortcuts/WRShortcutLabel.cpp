// SPDX-License-Identifier: Apache-2.0
#include "Writer/Shortcuts/WRShortcutLabel.h"

#include <cmath>

#include "Foundation/NSDictionary.h"
#include "Interface/NSWindow.h"
#include "Text/NSColor.h"
#include "Text/NSFont.h"
#include "Text/NSString-Drawing.h"
#include "Text/TextAttributes.h"
#include "Writer/Shortcuts/ShortcutsLibrary.h"

namespace pelvor {
namespace {

constexpr float kInset = 6;
constexpr NSPoint kCorner{12, 32};  // above a status line

NSDictionary* attributes() {
    return NSDictionary::of({{NSFontAttributeName, NSFont::systemFontOfSize(0)},
                             {NSForegroundColorAttributeName, NSColor::whiteColor()}});
}

}  // namespace

PELVOR_DEFINE_CLASS(WRShortcutLabel, shortcutsLibrary) {}

Retained<NSWindow> WRShortcutLabel::windowWithText(NSString* text, NSWindow* over) {
    auto label = cast<WRShortcutLabel>(NSView::initWithFrame(NSZeroRect, classObject()));
    label->_text = text->copy();
    const NSSize room = sizeWithAttributes(text, attributes());
    const NSPoint corner = over->convertBaseToScreen(kCorner);
    auto window = NSWindow::initWithContentRect_styleMask_backing_defer(
        {corner, {std::ceil(room.width) + 2 * kInset, std::ceil(room.height) + 2 * kInset}},
        NSBorderlessWindowMask, NSBackingStoreBuffered, true);
    window->setLevel(NSToolTipWindowLevel);
    window->setContentView(label);
    return window;
}

void WRShortcutLabel::drawRect(NSRect) {
    NSColor::colorWithCalibratedWhite_alpha(0.2f, 1)->set();
    NSRectFill(bounds());
    drawAtPoint_withAttributes(_text, {kInset, kInset}, attributes());
}

}  // namespace pelvor
