// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSGeometry.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "Foundation/NSString.h"
#include "Foundation/Strings/NumberText.h"

namespace pelvor {
namespace {

// A rectangle by its edges, in double precision.
struct Edges {
    double minX, minY, maxX, maxY;

    explicit Edges(NSRect rect)
        : minX(rect.origin.x),
          minY(rect.origin.y),
          maxX(minX + rect.size.width),
          maxY(minY + rect.size.height) {}

    NSRect rect() const {
        return {{static_cast<float>(minX), static_cast<float>(minY)},
                {static_cast<float>(maxX - minX), static_cast<float>(maxY - minY)}};
    }
};

}  // namespace

NSRect NSInsetRect(NSRect rect, float dx, float dy) {
    return {
        {static_cast<float>(double{rect.origin.x} + dx), static_cast<float>(double{rect.origin.y} + dy)},
        {static_cast<float>(rect.size.width - 2.0 * dx), static_cast<float>(rect.size.height - 2.0 * dy)}};
}

NSRect NSOffsetRect(NSRect rect, float dx, float dy) {
    return {{static_cast<float>(double{rect.origin.x} + dx), static_cast<float>(double{rect.origin.y} + dy)},
            rect.size};
}

NSRect NSIntegralRect(NSRect rect) {
    if (NSIsEmptyRect(rect)) return NSZeroRect;
    Edges edges(rect);
    edges.minX = std::floor(edges.minX);
    edges.minY = std::floor(edges.minY);
    edges.maxX = std::ceil(edges.maxX);
    edges.maxY = std::ceil(edges.maxY);
    return edges.rect();
}

NSRect NSUnionRect(NSRect a, NSRect b) {
    if (NSIsEmptyRect(a)) return NSIsEmptyRect(b) ? NSZeroRect : b;
    if (NSIsEmptyRect(b)) return a;
    Edges edges(a), other(b);
    edges.minX = std::min(edges.minX, other.minX);
    edges.minY = std::min(edges.minY, other.minY);
    edges.maxX = std::max(edges.maxX, other.maxX);
    edges.maxY = std::max(edges.maxY, other.maxY);
    return edges.rect();
}

NSRect NSIntersectionRect(NSRect a, NSRect b) {
    if (!NSIntersectsRect(a, b)) return NSZeroRect;
    Edges edges(a), other(b);
    edges.minX = std::max(edges.minX, other.minX);
    edges.minY = std::max(edges.minY, other.minY);
    edges.maxX = std::min(edges.maxX, other.maxX);
    edges.maxY = std::min(edges.maxY, other.maxY);
    return edges.rect();
}

bool NSIntersectsRect(NSRect a, NSRect b) {
    if (NSIsEmptyRect(a) || NSIsEmptyRect(b)) return false;
    Edges one(a), two(b);
    return one.minX < two.maxX && two.minX < one.maxX && one.minY < two.maxY && two.minY < one.maxY;
}

bool NSContainsRect(NSRect outer, NSRect inner) {
    if (NSIsEmptyRect(inner)) return false;
    Edges out(outer), in(inner);
    return out.minX <= in.minX && out.minY <= in.minY && out.maxX >= in.maxX && out.maxY >= in.maxY;
}

bool NSPointInRect(NSPoint point, NSRect rect) { return NSMouseInRect(point, rect, true); }

bool NSMouseInRect(NSPoint point, NSRect rect, bool isFlipped) {
    Edges edges(rect);
    if (!(point.x >= edges.minX && point.x < edges.maxX)) return false;
    return isFlipped ? point.y >= edges.minY && point.y < edges.maxY
                     : point.y > edges.minY && point.y <= edges.maxY;
}

void NSDivideRect(NSRect rect, NSRect* slice, NSRect* remainder, float thickness, NSRectEdge edge) {
    Edges cut(rect), rest(rect);
    bool isAcross = edge == NSMinXEdge || edge == NSMaxXEdge;
    double width =
        std::clamp<double>(thickness, 0, std::max(0.0f, isAcross ? rect.size.width : rect.size.height));
    switch (edge) {
        case NSMinXEdge:
            cut.maxX = rest.minX = cut.minX + width;
            break;
        case NSMinYEdge:
            cut.maxY = rest.minY = cut.minY + width;
            break;
        case NSMaxXEdge:
            cut.minX = rest.maxX = cut.maxX - width;
            break;
        case NSMaxYEdge:
            cut.minY = rest.maxY = cut.maxY - width;
            break;
    }
    bool isEmpty = NSIsEmptyRect(rect);
    if (slice) *slice = isEmpty ? NSZeroRect : cut.rect();
    if (remainder) *remainder = isEmpty ? NSZeroRect : rest.rect();
}

// MARK: Text

namespace {

std::string pairText(float first, float second) {
    return "{" + numberText(first) + ", " + numberText(second) + "}";
}

// Reads up to `count` numbers, whatever stands between them.
void readNumbers(NSString* text, float* numbers, int count) {
    std::string bytes = text ? text->toUTF8() : std::string();
    const char* place = bytes.data();
    const char* end = place + bytes.size();
    for (int i = 0; i < count && place < end;) {
        auto [rest, error] = std::from_chars(place, end, numbers[i]);
        if (error == std::errc()) ++i;
        place = rest > place ? rest : place + 1;
    }
}

}  // namespace

NSString* NSStringFromPoint(NSPoint point) { return NSString::ofUTF8(pairText(point.x, point.y)); }

NSString* NSStringFromSize(NSSize size) { return NSString::ofUTF8(pairText(size.width, size.height)); }

NSString* NSStringFromRect(NSRect rect) {
    return NSString::ofUTF8("{" + pairText(rect.origin.x, rect.origin.y) + ", " +
                            pairText(rect.size.width, rect.size.height) + "}");
}

NSPoint NSPointFromString(NSString* text) {
    float numbers[2] = {};
    readNumbers(text, numbers, 2);
    return {numbers[0], numbers[1]};
}

NSSize NSSizeFromString(NSString* text) {
    float numbers[2] = {};
    readNumbers(text, numbers, 2);
    return {numbers[0], numbers[1]};
}

NSRect NSRectFromString(NSString* text) {
    float numbers[4] = {};
    readNumbers(text, numbers, 4);
    return {{numbers[0], numbers[1]}, {numbers[2], numbers[3]}};
}

}  // namespace pelvor
