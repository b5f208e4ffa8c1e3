// SPDX-License-Identifier: Apache-2.0
// NSRange: a location and a length, and the plain integer types of Foundation.
#pragma once

#include <cstdint>

#include "Runtime/FixedString.h"

namespace pelvor {

/// Counts, lengths and indexes.
using NSUInteger = std::uint32_t;
/// A signed number of 32 bits.
using NSInteger = std::int32_t;
/// A UTF-16 code unit.
using unichar = char16_t;

/// Stands for "no index": a search that finds nothing returns it.
inline constexpr NSUInteger NSNotFound = 0x7FFFFFFF;

/// A run of positions: of code units in a string, of indexes in an array.
///
///     NSRange word{4, 3};                       // positions 4, 5 and 6
///     NSMaxRange(word);                         // 7
///     NSLocationInRange(6, word);               // true
struct NSRange {
    NSUInteger location = 0;
    NSUInteger length = 0;

    static constexpr FixedString kTypeName = "_NSRange";
    friend constexpr bool operator==(const NSRange&, const NSRange&) = default;
};

constexpr NSRange NSMakeRange(NSUInteger location, NSUInteger length) { return {location, length}; }

/// The position after the range. The sum wraps at 2^32.
constexpr NSUInteger NSMaxRange(NSRange range) { return range.location + range.length; }

constexpr bool NSLocationInRange(NSUInteger location, NSRange range) {
    return location >= range.location && location - range.location < range.length;
}

constexpr bool NSEqualRanges(NSRange a, NSRange b) { return a == b; }

/// Whether the range lies inside a sequence of `count` places. No sum wraps, so a huge length is outside.
constexpr bool isRangeInside(NSRange range, NSUInteger count) {
    return range.location <= count && range.length <= count - range.location;
}

/// The smallest range that contains both ranges.
constexpr NSRange NSUnionRange(NSRange a, NSRange b) {
    NSUInteger start = a.location < b.location ? a.location : b.location;
    NSUInteger end = NSMaxRange(a) > NSMaxRange(b) ? NSMaxRange(a) : NSMaxRange(b);
    return {start, end - start};
}

/// The positions that both ranges contain; the empty range {0, 0} if they share no position.
constexpr NSRange NSIntersectionRange(NSRange a, NSRange b) {
    NSUInteger start = a.location > b.location ? a.location : b.location;
    NSUInteger end = NSMaxRange(a) < NSMaxRange(b) ? NSMaxRange(a) : NSMaxRange(b);
    return start < end ? NSRange{start, end - start} : NSRange{};
}

/// The order of two things: the first sorts before the second, sorts as equal, or sorts after the second.
enum NSComparisonResult : int { NSOrderedAscending = -1, NSOrderedSame = 0, NSOrderedDescending = 1 };

}  // namespace pelvor
