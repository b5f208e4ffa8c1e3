// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WindowFrames.h"

#include <algorithm>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSUserDefaults.h"
#include "Interface/NSScreen.h"
#include "PBSnapFrame.h"

namespace pelvor {
namespace {

constexpr NSUInteger kMostFrames = 100;
constexpr int kSnapDistance = 12;  // points

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
    const NSRect room = NSScreen::mainScreen()->visibleFrame();
    bool isOnScreen = false;
    for (id screen : NSScreen::screens())
        isOnScreen |= NSIntersectsRect(static_cast<NSScreen*>(screen)->visibleFrame(), frame);
    if (!isOnScreen) {
        frame.size = {std::min(NSWidth(frame), NSWidth(room)), std::min(NSHeight(frame), NSHeight(room))};
        frame.origin = {NSMidX(room) - NSWidth(frame) / 2, NSMaxY(room) - NSHeight(frame)};
    }
    return PBSnapFrame(frame, kSnapDistance);
}

}  // namespace pelvor
