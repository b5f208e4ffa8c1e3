// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRPalette.h"

#include "Interface/NSEvent.h"
#include "Writer/Windows/WindowFrames.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRPalette, windowsLibrary) {
    methods.instance<"showBeside:", &WRPalette::showBeside>();
    methods.instance<"cancelOperation:", &WRPalette::cancelOperation>();
    methods.instance<"keyDown:", &WRPalette::keyDown>();
}

Retained<WRPalette> WRPalette::create(NSRect contentRect, NSUInteger styleMask) {
    return cast<WRPalette>(NSPanel::initWithContentRect_styleMask_backing_defer(
        contentRect, styleMask, NSBackingStoreBuffered, true, WRPalette::classObject()));
}

void WRPalette::showBeside(NSWindow* other) {
    placeBeside(this, other);
    makeKeyAndOrderFront(nullptr);
}

void WRPalette::keyDown(NSEvent* event) {
    NSString* key = event ? event->charactersIgnoringModifiers() : nullptr;
    if (key && key->length() == 1 && key->characterAtIndex(0) == NSEscapeCharacter)
        return cancelOperation(this);
    NSPanel::keyDown(event);
}

}  // namespace pelvor
