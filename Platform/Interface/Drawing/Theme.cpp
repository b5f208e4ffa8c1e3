// SPDX-License-Identifier: Apache-2.0
#include "Interface/Drawing/Theme.h"

#include <array>
#include <cstdint>

#include "Text/NSColor.h"

namespace pelvor {
namespace {

// Red, green, blue and alpha, a byte each, in the order of ThemeColor.
constexpr std::array<std::uint32_t, 22> kColors = {
    0xF4F4F5FF,  // window
    0xFFFFFFFF,  // content
    0xF8F8FAFF,  // alternateRow
    0xE4E5E8FF,  // grid
    0xF4F4F5FF,  // header
    0xC6C8CDFF,  // border
    0x1F2124FF,  // text
    0x63666DFF,  // secondaryText
    0xA8ABB1FF,  // disabledText
    0xFDFDFDFF,  // button
    0xE3E5E9FF,  // pressedButton
    0x2F6FD0FF,  // accent
    0x255AABFF,  // pressedAccent
    0xFFFFFFFF,  // textOnAccent
    0x2F6FD0FF,  // selection
    0xDADCE0FF,  // inactiveSelection
    0xBBD3F5FF,  // textSelection
    0x2F6FD073,  // focusRing
    0xECEDEFFF,  // track
    0xBDC0C6FF,  // knob
    0x91959DFF,  // pressedKnob
    0x0000002E,  // shadow
};
static_assert(static_cast<std::size_t>(ThemeColor::shadow) + 1 == kColors.size());

NSColor* madeFrom(std::uint32_t value) {
    const auto part = [&](int shift) { return static_cast<float>(value >> shift & 0xFF) / 255; };
    NSColor* color = NSColor::colorWithCalibratedRed_green_blue_alpha(part(24), part(16), part(8), part(0));
    return Retained<NSColor>::retaining(color).leak();
}

}  // namespace

NSColor* themeColor(ThemeColor color) {
    static const auto colors = [] {
        std::array<NSColor*, kColors.size()> made;
        for (std::size_t i = 0; i < made.size(); ++i) made[i] = madeFrom(kColors[i]);
        return made;
    }();
    return colors[static_cast<std::size_t>(color)];
}

}  // namespace pelvor
