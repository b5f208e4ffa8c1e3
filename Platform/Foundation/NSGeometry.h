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

/// A rectangle. Its origin is the corner with the least x and y.
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

// Edges and centres are computed in double precision, and rounded to single precision once.

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

/// The rectangle with each vertical edge moved inwards by `dx`, and each horizontal edge moved inwards by
/// `dy`.
PELVOR_EXPORT NSRect NSInsetRect(NSRect rect, float dx, float dy);
PELVOR_EXPORT NSRect NSOffsetRect(NSRect rect, float dx, float dy);
/// The smallest rectangle with whole numbers that contains the rectangle; for an empty rectangle, NSZeroRect.
PELVOR_EXPORT NSRect NSIntegralRect(NSRect rect);
/// The smallest rectangle that contains both rectangles. If one of them is empty, the result is the other
/// one.
PELVOR_EXPORT NSRect NSUnionRect(NSRect a, NSRect b);
/// The rectangle that both rectangles cover; NSZeroRect if they have no area in common.
PELVOR_EXPORT NSRect NSIntersectionRect(NSRect a, NSRect b);
PELVOR_EXPORT bool NSIntersectsRect(NSRect a, NSRect b);
/// Whether `inner` is not empty and lies inside `outer` with its whole area.
PELVOR_EXPORT bool NSContainsRect(NSRect outer, NSRect inner);
/// Whether the point is inside the rectangle, or on its edge of least x or of least y.
PELVOR_EXPORT bool NSPointInRect(NSPoint point, NSRect rect);
/// Like NSPointInRect; but if the coordinates are not flipped, the rectangle contains its edge of greatest y
/// instead of its edge of least y.
PELVOR_EXPORT bool NSMouseInRect(NSPoint point, NSRect rect, bool isFlipped);
/// Cuts a slice of the given thickness off the rectangle along an edge, and writes the slice and the rest of
/// the rectangle to the two pointers, either of which may be null. The slice is never larger than the
/// rectangle.
PELVOR_EXPORT void NSDivideRect(NSRect rect, NSRect* slice, NSRect* remainder, float thickness,
                                NSRectEdge edge);

/// A text such as "{1, 2.5}" or "{{0, 0}, {10, 20}}", borrowed.
PELVOR_EXPORT NSString* NSStringFromPoint(NSPoint point);
PELVOR_EXPORT NSString* NSStringFromSize(NSSize size);
PELVOR_EXPORT NSString* NSStringFromRect(NSRect rect);

/// These read the first two or four numbers in the text, in the order in which the functions above write
/// them. A number that is missing is 0, and null counts as an empty text.
PELVOR_EXPORT NSPoint NSPointFromString(NSString* text);
PELVOR_EXPORT NSSize NSSizeFromString(NSString* text);
PELVOR_EXPORT NSRect NSRectFromString(NSString* text);

// These print the text that NSStringFromPoint, NSStringFromSize or NSStringFromRect returns.

PELVOR_EXPORT std::ostream& operator<<(std::ostream& stream, NSPoint point);
PELVOR_EXPORT std::ostream& operator<<(std::ostream& stream, NSSize size);
PELVOR_EXPORT std::ostream& operator<<(std::ostream& stream, NSRect rect);

}  // namespace pelvor
