// SPDX-License-Identifier: Apache-2.0
#include <cmath>

#include "PBUtil.h"

namespace pelvor {
namespace {

constexpr double kTolerance = 0.1;

bool isNear(double difference1, double difference2) {
    return std::abs(difference1) < kTolerance && std::abs(difference2) < kTolerance;
}

double distance(float a, float b) { return std::abs(double{a} - b); }

// Moves the coordinate to the centre of its pixel and takes what it moved by off the extent.
void centreInPixel(float& coordinate, float& extent) {
    const double offset = std::floor(coordinate) + 0.5 - coordinate;
    extent = static_cast<float>(std::floor(extent - offset));
    coordinate = static_cast<float>(coordinate + offset);
}

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
    centreInPixel(rect.origin.x, rect.size.width);
    centreInPixel(rect.origin.y, rect.size.height);
    return rect;
}

float PBIntegralDisplayCoordinateForThickness(float coord, float th) {
    if (!isOddOrHairline(th)) return std::rint(coord);
    constexpr double kAlmostNextPixel = 0.99;
    const double whole = std::trunc(coord);
    const double fraction = std::abs(coord - whole);
    return static_cast<float>(fraction > kAlmostNextPixel ? whole + 1.5 : coord + (0.5 - fraction));
}

NSSize PBScaleSize(NSSize size, int scaleX, int scaleY) {
    return {scaled(size.width, scaleX), scaled(size.height, scaleY)};
}

NSRect PBRectEnclosingPoints(NSPoint pt1, NSPoint pt2) {
    return {{pt1.x < pt2.x ? pt1.x : pt2.x, pt1.y < pt2.y ? pt1.y : pt2.y},
            {static_cast<float>(distance(pt1.x, pt2.x)), static_cast<float>(distance(pt1.y, pt2.y))}};
}

}  // namespace pelvor
