// SPDX-License-Identifier: Apache-2.0
#include <cmath>

#include "PBUtil.h"

namespace pelvor {
namespace {

constexpr double kTolerance = 0.1;

bool isNear(double difference1, double difference2) {
    return std::abs(difference1) < kTolerance && std::abs(difference2) < kTolerance;
}

// What stands for x and y, or for width and height: compilers reckon both at once.
using Pair [[gnu::vector_size(2 * sizeof(double))]] = double;

// std::floor without a call and without branches. A double of the size of kToWhole has no bits for a
// fraction.
Pair whole(Pair numbers) {
    constexpr double kToWhole = 0x1.8p52, kWithoutFraction = 0x1p51;
    const Pair nearest = numbers + kToWhole - kToWhole;
    const Pair below = nearest > numbers ? nearest - 1.0 : nearest;
    return numbers > -kWithoutFraction && numbers < kWithoutFraction ? below : numbers;
}

double distance(float a, float b) { return std::abs(double{a} - b); }

float scaled(float extent, int percentage) {
    return percentage == 0 ? extent : static_cast<float>(extent * (percentage / 100.0));
}

// Whether lines of that thickness stand on the centres of pixels.
bool isOddOrHairline(float thickness) {
    constexpr float kAllEvenFrom = 1 << 24;  // single precision has only even numbers from here on
    if (!(std::abs(thickness) < kAllEvenFrom)) return false;
    return thickness == 0 || static_cast<int>(thickness) % 2 == 1;
}

}  // namespace

bool PBEqualDisplayPoints(NSPoint pt1, NSPoint pt2) {
    return isNear(double{pt1.x} - pt2.x, double{pt1.y} - pt2.y);
}

bool PBEqualDisplaySizes(NSSize sz1, NSSize sz2) {
    return PBEqualDisplayPoints({sz1.width, sz1.height}, {sz2.width, sz2.height});
}

bool PBEqualDisplayRects(NSRect rect1, NSRect rect2) {
    return isNear(distance(rect1.origin.x, rect2.origin.x) + distance(rect1.size.width, rect2.size.width),
                  distance(rect1.origin.y, rect2.origin.y) + distance(rect1.size.height, rect2.size.height));
}

NSRect PBIntegralDisplayRect(NSRect rect) {
    const Pair origin{rect.origin.x, rect.origin.y}, size{rect.size.width, rect.size.height};
    const Pair toCentre = whole(origin) + 0.5 - origin;
    const Pair newOrigin = origin + toCentre, newSize = whole(size - toCentre);
    return {{static_cast<float>(newOrigin[0]), static_cast<float>(newOrigin[1])},
            {static_cast<float>(newSize[0]), static_cast<float>(newSize[1])}};
}

float PBIntegralDisplayCoordinateForThickness(float coord, float th) {
    if (!isOddOrHairline(th)) return std::rint(coord);
    constexpr double kAlmostNextPixel = 0.99;
    const double integer = std::trunc(coord);
    const double fraction = std::abs(coord - integer);
    return static_cast<float>(fraction > kAlmostNextPixel ? integer + 1.5 : coord + (0.5 - fraction));
}

NSSize PBScaleSize(NSSize size, int scaleX, int scaleY) {
    return {scaled(size.width, scaleX), scaled(size.height, scaleY)};
}

NSRect PBRectEnclosingPoints(NSPoint pt1, NSPoint pt2) {
    return {{pt1.x < pt2.x ? pt1.x : pt2.x, pt1.y < pt2.y ? pt1.y : pt2.y},
            {static_cast<float>(distance(pt1.x, pt2.x)), static_cast<float>(distance(pt1.y, pt2.y))}};
}

}  // namespace pelvor
