// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRRulerGuide.h"

#include "Text/NSColor.h"
#include "Text/NSGraphicsContext.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRRulerGuide, windowsLibrary) {
    methods.instance<"isOpaque", &WRRulerGuide::isOpaque>();
    methods.instance<"drawRect:", &WRRulerGuide::drawRect>();
}

Retained<WRRulerGuide> WRRulerGuide::create() {
    return cast<WRRulerGuide>(NSView::initWithFrame(NSZeroRect, classObject()));
}

NSColor* WRRulerGuide::color() {
    return NSColor::colorWithCalibratedRed_green_blue_alpha(0.16F, 0.39F, 0.7F, 1);
}

void WRRulerGuide::drawRect(NSRect dirty) {
    auto* context = NSGraphicsContext::currentContext();
    context->setColor(color());
    context->fillRect(dirty);
}

}  // namespace pelvor
