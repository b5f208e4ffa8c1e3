// SPDX-License-Identifier: Apache-2.0
// Pictures: PNG and JPEG data on a canvas.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>

#include "Foundation/NSGeometry.h"

struct _cairo;
struct _cairo_surface;

namespace pelvor {

enum class PictureKind { unknown, png, jpeg };

struct PictureHeader {
    PictureKind kind = PictureKind::unknown;
    unsigned width = 0, height = 0;  ///< in pixels; 0 if the header is broken
};

PictureHeader readPictureHeader(std::span<const std::byte> picture);

/// The picture's pixels: for an image decoded, for a PDF document as the document takes them. Null, with the
/// reason written, if there are none.
PELVOR_EXPORT std::shared_ptr<_cairo_surface> readPicture(std::span<const std::byte> picture, bool isPDF,
                                                          std::string& failure);

/// Draws a part of the pixels, y downwards, over the square from (0, 0) to (1, 1), with the opacity `alpha`.
PELVOR_EXPORT void paintPicture(_cairo* page, _cairo_surface* pixels, NSRect part, float alpha, bool isPDF);

/// Draws the picture over the square from (0, 0) to (1, 1). Returns why that cannot be done, "" if it was.
std::string drawPicture(_cairo* page, std::span<const std::byte> picture, bool isPDF);

}  // namespace pelvor
