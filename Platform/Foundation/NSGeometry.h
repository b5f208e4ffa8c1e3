// SPDX-License-Identifier: Apache-2.0
// NSPoint, NSSize and NSRect: places and extents in single precision.
#pragma once

#include <iosfwd>

#include "Foundation/NSRange.h"
#include "Runtime/Export.h"

namespace pelvor {

class NSString;

struct NSPoint {
    float x = 0;
    float y = 0;

    static constexpr FixedString kTypeName = "_NSPoint";
    friend constexpr bool operator==(const NSPoint&, const NSPoint&) = default;
};

struct NSSize {
    float width = 0;
    float height = 0;

    static constexpr FixedString kTypeName = "_NSSize";
    friend constexpr bool operator==(const NSSize&, const NSSize&) = default;
};

/// A rectangle with its origin at the corner of the least coordinates.
struct NSRect {
    NSPoint origin;
    NSSize size;

    static constexpr FixedString kTypeName = "_NSRect";
    friend constexpr bool operator==(const NSRect&, const NSRect&) = default;
};

enum NSRectEdge : int { NSMinXEdge = 0, NSMinYEdge = 1, NSMaxXEdge = 2, NSMaxYEdge = 3 };

inline constexpr NSPoint NSZeroPoint{};
inline constexpr NSSize NSZeroSize{};
inline constexpr NSRect NSZeroRect{};

constexpr NSPoint NSMakePoint(float x, float y) { return {x, y}; }
constexpr NSSize NSMakeSize(float width, float height) { return {width, height}; }
constexpr NSRect NSMakeRect(float x, float y, float width, float height) { return {{x, y}, {width, height}}; }

// Sums are formed in double precision and narrowed once.

constexpr float NSMinX(NSRect rect) { return rect.origin.x; }
constexpr float NSMinY(NSRect rect) { return rect.origin.y; }
constexpr float NSWidth(NSRect rect) { return rect.size.width; }
constexpr float NSHeight(NSRect rect) { return rect.size.height; }
constexpr float NSMaxX(NSRect rect) {
    return static_cast<float>(static_cast<double>(rect.origin.x) + rect.size.width);
}
constexpr float NSMaxY(NSRect rect) {
    return static_cast<float>(static_cast<double>(rect.origin.y) + rect.size.height);
}
constexpr float NSMidX(NSRect rect) {
    return static_cast<float>(rect.origin.x + static_cast<double>(rect.size.width) / 2);
}
constexpr float NSMidY(NSRect rect) {
    return static_cast<float>(rect.origin.y + static_cast<double>(rect.size.height) / 2);
}

constexpr bool NSEqualPoints(NSPoint a, NSPoint b) { return a == b; }
constexpr bool NSEqualSizes(NSSize a, NSSize b) { return a == b; }
constexpr bool NSEqualRects(NSRect a, NSRect b) { return a == b; }

/// Whether the width or the height is not above 0.
constexpr bool NSIsEmptyRect(NSRect rect) { return !(rect.size.width > 0 && rect.size.height > 0); }

/// The rectangle with both vertical edges moved inwards by `dx` and both horizontal ones by `dy`.
PELVOR_EXPORT NSRect NSInsetRect(NSRect rect, float dx, float dy);
PELVOR_EXPORT NSRect NSOffsetRect(NSRect rect, float dx, float dy);
/// The smallest rectangle of whole numbers around the rectangle; zeros for an empty rectangle.
PELVOR_EXPORT NSRect NSIntegralRect(NSRect rect);
/// The smallest rectangle around both rectangles; an empty rectangle does not count.
PELVOR_EXPORT NSRect NSUnionRect(NSRect a, NSRect b);
/// The area that both rectangles cover; zeros if there is none.
PELVOR_EXPORT NSRect NSIntersectionRect(NSRect a, NSRect b);
PELVOR_EXPORT bool NSIntersectsRect(NSRect a, NSRect b);
/// Whether `outer` covers all of `inner`, which is not empty.
PELVOR_EXPORT bool NSContainsRect(NSRect outer, NSRect inner);
/// Whether the point is inside the rectangle or on one of its edges of least coordinates.
PELVOR_EXPORT bool NSPointInRect(NSPoint point, NSRect rect);
/// Like NSPointInRect, but unless the coordinates are flipped the rectangle contains its edge of greatest y
/// instead of the one of least y.
PELVOR_EXPORT bool NSMouseInRect(NSPoint point, NSRect rect, bool isFlipped);
/// Cuts off a slice of that thickness along an edge and writes the slice and what remains of the rectangle;
/// either pointer may be null. The slice is never larger than the rectangle.
PELVOR_EXPORT void NSDivideRect(NSRect rect, NSRect* slice, NSRect* remainder, float thickness,
                                NSRectEdge edge);

/// "{1, 2.5}" and "{{0, 0}, {10, 20}}", borrowed.
PELVOR_EXPORT NSString* NSStringFromPoint(NSPoint point);
PELVOR_EXPORT NSString* NSStringFromSize(NSSize size);
PELVOR_EXPORT NSString* NSStringFromRect(NSRect rect);

/// Read the first numbers in the text, in the order in which the functions above write them. Numbers that are
/// missing are 0; null is an empty text.
PELVOR_EXPORT NSPoint NSPointFromString(NSString* text);
PELVOR_EXPORT NSSize NSSizeFromString(NSString* text);
PELVOR_EXPORT NSRect NSRectFromString(NSString* text);

// Print what the functions above write.

PELVOR_EXPORT std::ostream& operator<<(std::ostream& stream, NSPoint point);
PELVOR_EXPORT std::ostream& operator<<(std::ostream& stream, NSSize size);
PELVOR_EXPORT std::ostream& operator<<(std::ostream& stream, NSRect rect);

}  // namespace pelvor
