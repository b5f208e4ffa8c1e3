// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WindowFrames.h"

#include <algorithm>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSUserDefaults.h"
#include "Interface/NSScreen.h"
#include "Interface/NSWindow.h"
#include "PBSnapFrame.h"

namespace pelvor {
namespace {

constexpr float kDistance = 8;  // between a panel and the window beside it

constexpr NSUInteger kMostFrames = 100;
constexpr int kSnapDistance = 12;  // points

// At the right of the other frame, or else at its left; at the right edge of the screen if neither has room.
NSPoint originBeside(NSRect other, NSSize size, NSRect screen) {
    const float left = NSMinX(other) - kDistance - size.width;
    float x = NSMaxX(other) + kDistance;
    if (x + size.width > NSMaxX(screen) && left >= NSMinX(screen)) x = left;
    const auto inside = [](float start, float length, float low, float high) {
        return std::max(std::min(start, high - length), low);
    };
    return {inside(x, size.width, NSMinX(screen), NSMaxX(screen)),
            inside(NSMaxY(other) - size.height, size.height, NSMinY(screen), NSMaxY(screen))};
}

}  // namespace

void noteWindowFrame(NSString* path, NSRect frame) {
    if (!path || !path->length()) return;
    NSUserDefaults* defaults = NSUserDefaults::standardUserDefaults();
    auto* frames = NSMutableDictionary::dictionary();
    auto* order = NSMutableArray::array();
    if (NSDictionary* known = defaults->dictionaryForKey(WRWindowFramesKey))
        frames->addEntriesFromDictionary(known);
    if (NSArray* known = defaults->arrayForKey(WRWindowFrameOrderKey)) order->addObjectsFromArray(known);
    frames->setObject_forKey(NSStringFromRect(frame), path);
    order->removeObject(path);
    order->addObject(path);
    while (order->count() > kMostFrames) {
        frames->removeObjectForKey(order->objectAtIndex(0));
        order->removeObjectAtIndex(0);
    }
    defaults->setObject_forKey(frames, WRWindowFramesKey);
    defaults->setObject_forKey(order, WRWindowFrameOrderKey);
}

NSRect notedWindowFrame(NSString* path) {
    NSDictionary* frames = NSUserDefaults::standardUserDefaults()->dictionaryForKey(WRWindowFramesKey);
    auto* text = frames && path ? cast<NSString>(frames->objectForKey(path)) : nullptr;
    NSRect frame = text ? NSRectFromString(text) : NSRect{};
    if (NSIsEmptyRect(frame)) return {};
    // The screen on which it stood may be gone, or be smaller.
    NSRect room{};
    for (id screen : NSScreen::screens())
        if (const NSRect seen = static_cast<NSScreen*>(screen)->visibleFrame(); NSIntersectsRect(seen, frame))
            room = NSUnionRect(room, seen);
    const bool isOnScreen = !NSIsEmptyRect(room);
    if (!isOnScreen) room = NSScreen::mainScreen()->visibleFrame();
    const NSSize size{std::min(NSWidth(frame), NSWidth(room)), std::min(NSHeight(frame), NSHeight(room))};
    const float left = isOnScreen ? NSMinX(frame) : NSMidX(room) - size.width / 2;
    const float top = isOnScreen ? NSMaxY(frame) : NSMaxY(room);
    frame = {{left, top - size.height}, size};
    return PBSnapFrame(frame, kSnapDistance);
}

void placeBeside(NSWindow* window, NSWindow* other) {
    NSScreen* screen = other ? other->screen() : NSScreen::mainScreen();
    if (window->isVisible() || !screen) return;
    window->setFrameOrigin(originBeside(other ? other->frame() : screen->visibleFrame(), window->frame().size,
                                        screen->visibleFrame()));
}

void uncover(NSRect rect, NSWindow* window) {
    const NSRect frame = window->frame(), wide = NSInsetRect(rect, -kDistance, -kDistance);
    NSScreen* screen = window->screen();
    if (!screen || !NSIntersectsRect(frame, rect)) return;
    for (const NSPoint origin :
         {NSPoint{frame.origin.x, NSMinY(wide) - NSHeight(frame)}, NSPoint{frame.origin.x, NSMaxY(wide)},
          NSPoint{NSMaxX(wide), frame.origin.y}, NSPoint{NSMinX(wide) - NSWidth(frame), frame.origin.y}})
        if (NSContainsRect(screen->visibleFrame(), {origin, frame.size}))
            return window->setFrameOrigin(origin);
}

}  // namespace pelvor
