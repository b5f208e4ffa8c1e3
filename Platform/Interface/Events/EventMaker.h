// SPDX-License-Identifier: Apache-2.0
// EventMaker: events of what a back end tells.
#pragma once

#include "Interface/Backend/Backend.h"
#include "Interface/NSEvent.h"

namespace pelvor {

/// Modifier keys of a back end as those of events, and back.
PELVOR_EXPORT std::uint32_t modifierFlags(std::uint32_t backendModifiers);
PELVOR_EXPORT std::uint32_t backendModifiers(std::uint32_t modifierFlags);

/// Makes events, and counts the presses that make double clicks.
class EventMaker {
  public:
    /// A press or release of a key, or a change of the modifiers.
    static Retained<NSEvent> key(NSInteger windowNumber, NSPoint place, const BackendKey& key);
    /// Null for what is no event of its own.
    Retained<NSEvent> pointer(NSInteger windowNumber, NSPoint place, const BackendPointer& pointer,
                              float scale);
    static Retained<NSEvent> simple(NSEventType type, NSInteger windowNumber, NSPoint place,
                                    std::uint32_t modifiers, double seconds);
    static Retained<NSEvent> enterExit(bool isEnter, NSInteger windowNumber, NSPoint place,
                                       std::uint32_t modifiers, double seconds, NSInteger tag, void* data);
    /// The later of two moves, with what both moved.
    static Retained<NSEvent> joined(NSEvent* first, NSEvent* second);

  private:
    void countPress(const BackendPointer& pointer, float scale);

    int _clickCount = 0;
    int _lastButton = 0;
    double _lastPress = 0;
    PixelPoint _lastPlace;
    PixelPoint _lastMove;
    NSInteger _eventNumber = 0;
};

}  // namespace pelvor
