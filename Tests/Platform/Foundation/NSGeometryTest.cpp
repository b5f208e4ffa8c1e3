// SPDX-License-Identifier: Apache-2.0
// Tests of points, sizes, rectangles and the operations of ranges.
#include "Foundation/NSGeometry.h"

#include "Prelude.h"

namespace {

constexpr NSRect kRect = NSMakeRect(10, 20, 30, 40);

TEST(NSGeometry, ReadsEdgesAndTests) {
    EXPECT_EQ(NSMakeRect(NSMaxX(kRect), NSMaxY(kRect), NSMidX(kRect), NSMidY(kRect)),
              NSMakeRect(40, 60, 25, 40));
    EXPECT_TRUE(NSEqualRects(kRect, NSMakeRect(10, 20, 30, 40)));
    for (NSRect empty : {NSMakeRect(1, 1, 0, 5), NSMakeRect(1, 1, 5, -1)}) EXPECT_TRUE(NSIsEmptyRect(empty));
    EXPECT_TRUE(NSPointInRect({10, 20}, kRect));
    EXPECT_FALSE(NSPointInRect({10, 60}, kRect) || NSPointInRect({40, 30}, kRect));
    EXPECT_TRUE(NSMouseInRect({10, 60}, kRect, false) && !NSMouseInRect({10, 20}, kRect, false));
    EXPECT_TRUE(NSContainsRect(kRect, kRect));
    for (NSRect other : {NSMakeRect(10, 20, 31, 5), NSMakeRect(15, 25, 0, 0)})
        EXPECT_FALSE(NSContainsRect(kRect, other));
}

TEST(NSGeometry, MakesOtherRectangles) {
    EXPECT_EQ(NSInsetRect(kRect, 1, 2), NSMakeRect(11, 22, 28, 36));
    EXPECT_EQ(NSOffsetRect(kRect, -10, 1), NSMakeRect(0, 21, 30, 40));
    EXPECT_EQ(NSIntegralRect(NSMakeRect(-0.5f, 0.25f, 1, 1)), NSMakeRect(-1, 0, 2, 2));
    EXPECT_EQ(NSIntegralRect(NSMakeRect(1, 1, 0, 1)), NSZeroRect);
    EXPECT_EQ(NSUnionRect(kRect, NSMakeRect(0, 50, 5, 20)), NSMakeRect(0, 20, 40, 50));
    EXPECT_TRUE(NSUnionRect(kRect, NSZeroRect) == kRect && NSUnionRect(NSZeroRect, kRect) == kRect);
    EXPECT_EQ(NSIntersectionRect(kRect, NSMakeRect(0, 0, 20, 25)), NSMakeRect(10, 20, 10, 5));
    EXPECT_EQ(NSIntersectionRect(kRect, NSMakeRect(40, 20, 5, 5)), NSZeroRect);
    EXPECT_FALSE(NSIntersectsRect(kRect, NSMakeRect(40, 20, 5, 5)));
}

TEST(NSGeometry, DividesARectangleAlongAnEdge) {
    auto divided = [](NSRectEdge edge, float thickness) {
        NSRect slice, rest;
        NSDivideRect(kRect, &slice, &rest, thickness, edge);
        return shown(NSStringFromRect(slice), NSStringFromRect(rest));
    };
    EXPECT_EQ(divided(NSMinXEdge, 5), "{{10, 20}, {5, 40}} {{15, 20}, {25, 40}}");
    EXPECT_EQ(divided(NSMaxXEdge, 5), "{{35, 20}, {5, 40}} {{10, 20}, {25, 40}}");
    EXPECT_EQ(divided(NSMinYEdge, 50), "{{10, 20}, {30, 40}} {{10, 60}, {30, 0}}");
    EXPECT_EQ(divided(NSMaxYEdge, 10), "{{10, 50}, {30, 10}} {{10, 20}, {30, 30}}");
    NSDivideRect(kRect, nullptr, nullptr, 5, NSMinXEdge);
    EXPECT_EQ(divided(NSMaxYEdge, -1), "{{10, 60}, {30, 0}} {{10, 20}, {30, 40}}");
}

TEST(NSGeometry, ReadsTheTextThatItWrites) {
    NSRect rect = NSMakeRect(-1.5f, 0.1f, 1e10f, 0);
    EXPECT_EQ(shown(NSStringFromRect(rect)), "{{-1.5, 0.1}, {10000000000, 0}}");
    EXPECT_EQ(NSRectFromString(NSStringFromRect(rect)), rect);
    EXPECT_EQ(NSPointFromString(u"{3, -4}"_ns), NSMakePoint(3, -4));
    EXPECT_EQ(NSSizeFromString(u"width 7"_ns), NSMakeSize(7, 0));
    EXPECT_EQ(NSRectFromString(nullptr), NSZeroRect);
    EXPECT_EQ(shown(NSMakePoint(1, 2), NSMakeSize(3, 4), kRect, NSMakeRange(5, 6)),
              "{1, 2} {3, 4} {{10, 20}, {30, 40}} {5, 6}");
}

TEST(NSRange, JoinsAndIntersects) {
    EXPECT_EQ(NSUnionRange({5, 2}, {1, 2}), NSMakeRange(1, 6));
    EXPECT_EQ(NSUnionRange({5, 9}, {6, 0}), NSMakeRange(5, 9));
    EXPECT_EQ(NSIntersectionRange({5, 5}, {8, 9}), NSMakeRange(8, 2));
    EXPECT_EQ(NSIntersectionRange({5, 5}, {10, 1}), NSMakeRange(0, 0));
}

}  // namespace
