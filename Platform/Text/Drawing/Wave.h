// SPDX-License-Identifier: Apache-2.0
// The wave below misspelled words.
#pragma once

struct _cairo;

namespace pelvor {

/// Draws a wave in the current colour, with its upper left corner at the place, on whole pixels. Coordinates
/// and length are those of the page, which must not be turned.
void drawWave(_cairo* page, double x, double y, double length);

}  // namespace pelvor
