// SPDX-License-Identifier: Apache-2.0
// GlyphImages: glyphs as pixels, made once and blended into images.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

struct _cairo;
struct _cairo_font_face;
struct _cairo_scaled_font;

namespace pelvor {

/// A glyph by its index in the font, with its origin.
struct GlyphAt {
    unsigned long index;
    double x, y;
};

/// Glyphs of a size as coverage of pixels, at each quarter of a pixel in both directions where one was
/// needed. One thread at a time; each has its own. When they take more than some megabytes, all are
/// forgotten.
class GlyphImages {
  public:
    static GlyphImages& current();

    /// What a glyph looks like: in pixels an em, and the slant as a tangent.
    struct Look {
        std::uint32_t variant;  // FontVariant::number
        double width, height, slant;
        friend bool operator==(const Look&, const Look&) = default;
    };

    /// Blends the glyphs, whose places are in the page's coordinates, into the image that the page draws on.
    /// `size` and `expansion` are those of the font in the page's units. Returns false, and does nothing,
    /// where this way does not lead to what Cairo would draw, only quicker: turned or very large glyphs,
    /// pages that are no images, clips that cut through pixels.
    bool blend(_cairo* page, _cairo_font_face* face, Look look, std::span<const GlyphAt> glyphs);

    GlyphImages() = default;
    GlyphImages(const GlyphImages&) = delete;
    ~GlyphImages();

  private:
    struct Image {
        int left, top, width, height;  // from the pixel of the origin
        std::size_t start;             // in the coverage
    };
    struct Sized {
        Look look;
        _cairo_scaled_font* font;
        std::unordered_map<std::uint64_t, Image> images;
    };
    struct Target;

    Sized& sized(_cairo_font_face* face, const Look& look);
    const Image& image(Sized& sized, unsigned long glyph, unsigned phaseX, unsigned phaseY);
    void forget();

    std::vector<std::unique_ptr<Sized>> _sizes;  // the one of the last use first
    std::vector<std::uint8_t> _coverage;
};

}  // namespace pelvor
