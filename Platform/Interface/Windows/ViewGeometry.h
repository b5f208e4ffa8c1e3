// SPDX-License-Identifier: Apache-2.0
// Rectangles and conversions of coordinates between views, in double precision.
#pragma once

#include <algorithm>

#include "Foundation/NSGeometry.h"

namespace pelvor {

/// A rectangle by its edges; nothing if an extent is not above 0.
struct ViewRect {
    double left = 0, bottom = 0, right = 0, top = 0;

    static ViewRect of(NSRect rect) {
        return {rect.origin.x, rect.origin.y, static_cast<double>(rect.origin.x) + rect.size.width,
                static_cast<double>(rect.origin.y) + rect.size.height};
    }
    NSRect rect() const {
        if (isEmpty()) return {};
        return {{static_cast<float>(left), static_cast<float>(bottom)},
                {static_cast<float>(right - left), static_cast<float>(top - bottom)}};
    }
    bool isEmpty() const { return !(right > left && top > bottom); }
    bool intersects(const ViewRect& other) const {
        return left < other.right && other.left < right && bottom < other.top && other.bottom < top;
    }
    bool contains(const ViewRect& other) const {
        return left <= other.left && bottom <= other.bottom && right >= other.right && top >= other.top;
    }
    ViewRect intersection(const ViewRect& other) const {
        return {std::max(left, other.left), std::max(bottom, other.bottom), std::min(right, other.right),
                std::min(top, other.top)};
    }
    void unite(const ViewRect& other) {
        left = std::min(left, other.left);
        bottom = std::min(bottom, other.bottom);
        right = std::max(right, other.right);
        top = std::max(top, other.top);
    }
};

/// x goes to xFactor * x + xOffset, and y accordingly.
struct ViewTransform {
    double xFactor = 1, xOffset = 0, yFactor = 1, yOffset = 0;

    /// First this, then the other.
    ViewTransform then(const ViewTransform& next) const {
        return {xFactor * next.xFactor, xOffset * next.xFactor + next.xOffset, yFactor * next.yFactor,
                yOffset * next.yFactor + next.yOffset};
    }
    ViewTransform inverse() const {
        return {1 / xFactor, -xOffset / xFactor, 1 / yFactor, -yOffset / yFactor};
    }
    double x(double given) const { return xFactor * given + xOffset; }
    double y(double given) const { return yFactor * given + yOffset; }
    NSPoint point(NSPoint given) const {
        return {static_cast<float>(x(given.x)), static_cast<float>(y(given.y))};
    }
    ViewRect rect(const ViewRect& given) const {
        const double y1 = y(given.bottom), y2 = y(given.top);
        return {x(given.left), std::min(y1, y2), x(given.right), std::max(y1, y2)};
    }
};

}  // namespace pelvor
