// SPDX-License-Identifier: Apache-2.0
// NSEvent: what the user does, and which modifier keys are held down.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

/// Modifier keys as `GetCurrentKeyModifiers` tells them, joined by "|".
enum : std::uint32_t {
    kKeyModifierCommand = 1u << 8,
    kKeyModifierShift = 1u << 9,
    kKeyModifierOption = 1u << 11,
};

/// Returns which modifier keys are down at this moment; what shows windows implements it.
using KeyModifierSource = std::uint32_t (*)();

/// Sets who is asked from now on for the state of the keys; null for nobody. Any thread.
PELVOR_EXPORT void setKeyModifierSource(KeyModifierSource source);

/// The modifier keys that are down, not only while an event is handled. 0 in a program without a screen.
PELVOR_EXPORT std::uint32_t GetCurrentKeyModifiers();

/// Something that the user did with keyboard or mouse.
class PELVOR_EXPORT NSEvent : public NSObject {
    PELVOR_CLASS(NSEvent, NSObject);

  protected:
    NSEvent() = default;
    ~NSEvent() = default;
};

}  // namespace pelvor
