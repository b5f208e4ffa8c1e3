// SPDX-License-Identifier: Apache-2.0
#include "PBSnapFrame.h"

#include "Interface/NSScreen.h"

namespace pelvor {
namespace {

NSScreen* screenOfWindow(NSRect frame) {
    const NSPoint topCentre{static_cast<float>(frame.origin.x + double{frame.size.width} * 0.5),
                            NSMaxY(frame)};
    NSArray* screens = NSScreen::screens();
    for (NSUInteger i = screens->count(); i-- > 0;) {
        auto* screen = static_cast<NSScreen*>(screens->objectAtIndex(i));
        if (NSPointInRect(topCentre, NSInsetRect(screen->frame(), -1, -1))) return screen;
    }
    return NSScreen::mainScreen();
}

// One direction of a frame and of the visible frame that it is moved in.
struct Span {
    float start, extent;

    double end() const { return double{start} + extent; }
    void moveStart(double place) { start = static_cast<float>(place); }
    void moveEnd(double place) { start = static_cast<float>(place - extent); }

    void snapStart(Span visible, Span inset) {
        if (start <= inset.start) moveStart(visible.start);
    }
    void snapEnd(Span visible, Span inset) {
        if (end() >= inset.end()) moveEnd(visible.end());
    }
    // The end has precedence.
    void keepInside(Span visible) {
        if (start < visible.start) moveStart(visible.start);
        if (end() > visible.end()) moveEnd(visible.end());
    }
};

}  // namespace

NSRect PBSnapFrame(NSRect wrect, int screenEdgeSnapDistance) {
    const NSRect visible = screenOfWindow(wrect)->visibleFrame();
    const auto distance = static_cast<float>(screenEdgeSnapDistance);
    const NSRect inset = NSInsetRect(visible, distance, distance);
    const auto across = [](NSRect rect) { return Span{rect.origin.x, rect.size.width}; };
    const auto upwards = [](NSRect rect) { return Span{rect.origin.y, rect.size.height}; };
    Span x = across(wrect), y = upwards(wrect);
    x.snapStart(across(visible), across(inset));
    x.snapEnd(across(visible), across(inset));
    y.snapStart(upwards(visible), upwards(inset));
    y.snapEnd(upwards(visible), upwards(inset));
    x.keepInside(across(visible));
    y.keepInside(upwards(visible));
    return {{x.start, y.start}, wrect.size};
}

}  // namespace pelvor
