// SPDX-License-Identifier: Apache-2.0
// Strings made of code points and read as code points.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

struct Category;

struct PELVOR_EXPORT NSString_PelvorAdditions {
    /// One unit, or two for a code point above 0xFFFF; those above 0x10FFFF are folded into some pair.
    static NSString* stringWithCodepoint(std::uint32_t codepoint);
    static NSString* stringWithCodepoints_count(const std::uint32_t* codepoints, NSUInteger count);
    /// None if there is no room, or the units are more than NSUInteger can count.
    static Retained<NSString> initWithCodepoints_count(const std::uint32_t* codepoints, NSUInteger count);
};

/// How many code points the range of units holds; they are written if there is a buffer. A lone half is one
/// of its own; a first half takes whatever unit follows it in the range. Raises NSRangeException for a range
/// outside.
PELVOR_EXPORT NSUInteger getCodepoints_range(NSString* string, std::uint32_t* codepoints, NSRange range);
PELVOR_EXPORT NSUInteger countCodepointsInRange(NSString* string, NSRange range);

extern const Category NSString_PelvorAdditions_category;

}  // namespace pelvor
