// SPDX-License-Identifier: Apache-2.0
// The shapes that controls are drawn with.
#pragma once

#include "Interface/Drawing/Theme.h"

namespace pelvor {

// All draw into the current graphics context, in coordinates whose y grows downwards, and do nothing without
// a context.

void fillRect(NSRect rect, ThemeColor color);
/// A line of that width along the inside of the rectangle's edges.
void strokeRect(NSRect rect, float width, ThemeColor color);
void fillRounded(NSRect rect, float radius, ThemeColor color);
void strokeRounded(NSRect rect, float radius, float width, ThemeColor color);
/// A ring around the outside of the rectangle.
void drawFocusRing(NSRect rect, float radius);

// Marks in the middle of a rectangle.

void drawCheckMark(NSRect rect, ThemeColor color);
void drawDash(NSRect rect, ThemeColor color);
void drawDot(NSRect rect, ThemeColor color);

enum class Pointing { up, down, left, right };
/// An open arrow, "›" for one that points to the right.
void drawChevron(NSRect rect, Pointing pointing, ThemeColor color);

}  // namespace pelvor
