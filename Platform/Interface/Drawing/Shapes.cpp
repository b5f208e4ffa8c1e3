// SPDX-License-Identifier: Apache-2.0
#include "Interface/Drawing/Shapes.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <numbers>

#include "Text/Drawing/Canvas.h"
#include "Text/NSColor.h"
#include "Text/NSGraphicsContext.h"

namespace pelvor {
namespace {

// What Cairo draws with, an empty path, and the colour set; null where nothing can be drawn.
cairo_t* beginPath(ThemeColor color) {
    NSGraphicsContext* context = NSGraphicsContext::currentContext();
    cairo_t* page = context ? context->canvas().page() : nullptr;
    if (!page) return nullptr;
    context->setColor(themeColor(color));
    cairo_new_path(page);
    return page;
}

void addRounded(cairo_t* page, NSRect rect, double radius) {
    const double left = rect.origin.x, top = rect.origin.y;
    const double right = left + rect.size.width, bottom = top + rect.size.height;
    const double r = std::clamp(radius, 0.0, std::max(0.0, std::min(right - left, bottom - top) / 2));
    constexpr double kQuarter = std::numbers::pi / 2;
    cairo_arc(page, right - r, top + r, r, -kQuarter, 0);
    cairo_arc(page, right - r, bottom - r, r, 0, kQuarter);
    cairo_arc(page, left + r, bottom - r, r, kQuarter, 2 * kQuarter);
    cairo_arc(page, left + r, top + r, r, 2 * kQuarter, 3 * kQuarter);
    cairo_close_path(page);
}

// A line through points that are given from the middle of the rectangle.
void strokeAround(NSRect rect, std::initializer_list<NSPoint> points, ThemeColor color) {
    cairo_t* page = beginPath(color);
    if (!page) return;
    for (NSPoint point : points)
        cairo_line_to(page, double{NSMidX(rect)} + point.x, double{NSMidY(rect)} + point.y);
    constexpr double kStroke = 1.6;
    cairo_set_line_width(page, kStroke);
    cairo_set_line_cap(page, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(page, CAIRO_LINE_JOIN_ROUND);
    cairo_stroke(page);
    cairo_set_line_cap(page, CAIRO_LINE_CAP_BUTT);
    cairo_set_line_join(page, CAIRO_LINE_JOIN_MITER);
}

}  // namespace

void fillRect(NSRect rect, ThemeColor color) {
    if (!beginPath(color)) return;
    NSGraphicsContext::currentContext()->fillRect(rect);
}

void strokeRect(NSRect rect, float width, ThemeColor color) {
    if (!beginPath(color)) return;
    NSGraphicsContext::currentContext()->strokeRect_width(rect, width);
}

void fillRounded(NSRect rect, float radius, ThemeColor color) {
    cairo_t* page = beginPath(color);
    if (!page) return;
    addRounded(page, rect, radius);
    cairo_fill(page);
}

void strokeRounded(NSRect rect, float radius, float width, ThemeColor color) {
    cairo_t* page = beginPath(color);
    if (!page) return;
    addRounded(page, NSInsetRect(rect, width / 2, width / 2), radius - width / 2);
    cairo_set_line_width(page, width);
    cairo_stroke(page);
}

void drawFocusRing(NSRect rect, float radius) {
    constexpr float kWidth = metrics::kFocusRing;
    strokeRounded(NSInsetRect(rect, -kWidth, -kWidth), radius + kWidth, kWidth, ThemeColor::focusRing);
}

void drawCheckMark(NSRect rect, ThemeColor color) {
    strokeAround(rect, {{-3.5f, 0}, {-1, 2.75f}, {3.5f, -2.75f}}, color);
}

void drawDash(NSRect rect, ThemeColor color) { strokeAround(rect, {{-3, 0}, {3, 0}}, color); }

void drawDot(NSRect rect, ThemeColor color) {
    constexpr float kRadius = 2.5f;
    fillRounded({{NSMidX(rect) - kRadius, NSMidY(rect) - kRadius}, {2 * kRadius, 2 * kRadius}}, kRadius,
                color);
}

void drawChevron(NSRect rect, Pointing pointing, ThemeColor color) {
    constexpr float kLong = 3.5f, kShort = 1.75f;
    switch (pointing) {
        case Pointing::up:
            return strokeAround(rect, {{-kLong, kShort}, {0, -kShort}, {kLong, kShort}}, color);
        case Pointing::down:
            return strokeAround(rect, {{-kLong, -kShort}, {0, kShort}, {kLong, -kShort}}, color);
        case Pointing::left:
            return strokeAround(rect, {{kShort, -kLong}, {-kShort, 0}, {kShort, kLong}}, color);
        case Pointing::right:
            return strokeAround(rect, {{-kShort, -kLong}, {kShort, 0}, {-kShort, kLong}}, color);
    }
}

}  // namespace pelvor
