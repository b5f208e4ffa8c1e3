// SPDX-License-Identifier: Apache-2.0
// Characters that are written as something else.
#pragma once

#include <span>
#include <string_view>

#include "Foundation/NSString.h"

namespace pelvor {

/// A UTF-16 unit and what is written for it.
struct UnitEscape {
    char16_t unit;
    std::u16string_view escape;
};

/// What is written for the unit; empty if that is the unit itself.
constexpr std::u16string_view escapeOfUnit(char16_t unit, std::span<const UnitEscape> escapes) {
    for (const UnitEscape& each : escapes)
        if (each.unit == unit) return each.escape;
    return {};
}

/// The text with "\n" for a line end, "\t" for a tab and "\\" for a backslash, which is how such characters
/// are typed into a line or a field; and back. A backslash before anything else is a backslash. Borrowed.
PELVOR_EXPORT NSString* escapedText(NSString* text);
PELVOR_EXPORT NSString* textFromEscapes(NSString* escaped);

}  // namespace pelvor
