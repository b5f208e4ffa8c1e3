// SPDX-License-Identifier: Apache-2.0
// Pictures: PNG and JPEG data on a canvas.
#pragma once

#include <cstddef>
#include <span>
#include <string>

struct _cairo;

namespace pelvor {

enum class PictureKind { unknown, png, jpeg };

struct PictureHeader {
    PictureKind kind = PictureKind::unknown;
    unsigned width = 0, height = 0;  ///< in pixels; 0 if the header is broken
};

PictureHeader readPictureHeader(std::span<const std::byte> picture);

/// Draws the picture over the square from (0, 0) to (1, 1). Returns why that cannot be done, "" if it was.
std::string drawPicture(_cairo* page, std::span<const std::byte> picture, bool isPDF);

}  // namespace pelvor
