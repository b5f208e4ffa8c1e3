// SPDX-License-Identifier: Apache-2.0
// Additions to views: removal at an idle moment, zoom, whole pixels, and moving contents between views.
//
//     delayedRemoveFromSuperview(palette);                       // safe inside the palette's own action
//     page->setFrameOrigin(saneSubviewFrameOrigin(canvas, {5, 5}));
//
// Main thread. A null view raises NSInvalidArgumentException.
#pragma once

#include "Interface/NSView.h"

namespace pelvor {

struct Category;

/// Takes the view out of sight at once, and out of its superview at the next idle moment of the main loop. A
/// view without superview stays as it is. Call it once: the view is retained for each call, but removed and
/// released only once.
PELVOR_EXPORT void delayedRemoveFromSuperview(NSView* view);
/// Takes the view out of its superview and releases it: gives up a reference of the caller's.
PELVOR_EXPORT void releaseAndRemoveFromSuperview(NSView* view);

/// What the nearest view around this one that has the operation `zoom` returns for it; 1 if there is none.
/// The view itself is not asked.
PELVOR_EXPORT double zoomFactor(NSView* view);
// The frame's width or height divided by that of the bounds: infinite, or not a number, for empty bounds.

PELVOR_EXPORT float horizontalZoomFactor(NSView* view);
PELVOR_EXPORT float verticalZoomFactor(NSView* view);

/// How far the view's origin lies from a whole pixel, from 0 to 1 in each direction. With true, that is the
/// place of the view's origin in the window, with the scale of the views around it; with false, the sum of
/// the frame origins of the view and the views around it, up to and without the nearest clip view.
PELVOR_EXPORT NSPoint offsetFromWholePixelOnScreenConsiderZoom(NSView* view, bool considersZoom);
/// The origin, moved by less than a pixel, at which a subview of the view is to lie on whole pixels.
PELVOR_EXPORT NSPoint saneSubviewFrameOrigin(NSView* view, NSPoint origin);

/// Removes all subviews, and takes over those of the other view, in their order. If one of the two views is
/// flipped and the other is not, the subviews keep their places as they are seen in the other view. Does
/// nothing for null.
PELVOR_EXPORT void replaceContentsWithContentsOfView(NSView* view, NSView* other);

extern const Category NSView_PelvorAdditions_category;

}  // namespace pelvor
