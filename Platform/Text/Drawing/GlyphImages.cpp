// SPDX-License-Identifier: Apache-2.0
#include "Text/Drawing/GlyphImages.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace pelvor {
namespace {

constexpr double kPhases = 4;
constexpr double kLargest = 64;  // pixels an em
// In bytes: dozens of pages of Chinese. With 4 MB, turning a page takes twice as long at 200 %, and three
// times at 400 %.
constexpr std::size_t kMostCoverage = 16 << 20;
constexpr std::size_t kMostSizes = 64;

struct Bounds {
    int left, top, right, bottom;
};

// All four channels times a factor from 0 to 255.
std::uint32_t scaled(std::uint32_t pixel, std::uint32_t factor) {
    std::uint32_t low = (pixel & 0x00FF00FF) * factor + 0x00800080;
    low = ((low + ((low >> 8) & 0x00FF00FF)) >> 8) & 0x00FF00FF;
    std::uint32_t high = ((pixel >> 8) & 0x00FF00FF) * factor + 0x00800080;
    high = (high + ((high >> 8) & 0x00FF00FF)) & 0xFF00FF00;
    return low | high;
}

std::uint32_t channel(double value) { return static_cast<std::uint32_t>(std::lround(value * 255)); }

}  // namespace

// The image that a page draws on, with the page's way from its coordinates to pixels.
struct GlyphImages::Target {
    unsigned char* pixels = nullptr;
    int bytesPerRow = 0;
    double xFactor = 0, yFactor = 0, xOffset = 0, yOffset = 0;
    std::uint32_t color = 0;  // multiplied by its alpha
    std::vector<Bounds> clips;

    bool read(cairo_t* page) {
        cairo_surface_t* surface = cairo_get_group_target(page);
        if (cairo_surface_get_type(surface) != CAIRO_SURFACE_TYPE_IMAGE) return false;
        const cairo_format_t format = cairo_image_surface_get_format(surface);
        if (format != CAIRO_FORMAT_ARGB32 && format != CAIRO_FORMAT_RGB24) return false;
        cairo_matrix_t matrix;
        cairo_get_matrix(page, &matrix);
        if (matrix.xy != 0 || matrix.yx != 0 || !(matrix.xx > 0 && matrix.yy > 0)) return false;
        double red, green, blue, alpha;
        if (cairo_get_operator(page) != CAIRO_OPERATOR_OVER ||
            cairo_pattern_get_rgba(cairo_get_source(page), &red, &green, &blue, &alpha) !=
                CAIRO_STATUS_SUCCESS)
            return false;
        color = channel(alpha) << 24 | channel(red * alpha) << 16 | channel(green * alpha) << 8 |
                channel(blue * alpha);
        double xScale, yScale, left, top;
        cairo_surface_get_device_scale(surface, &xScale, &yScale);
        cairo_surface_get_device_offset(surface, &left, &top);
        xFactor = matrix.xx * xScale;
        yFactor = matrix.yy * yScale;
        xOffset = matrix.x0 * xScale + left;
        yOffset = matrix.y0 * yScale + top;
        if (!readClips(page, surface)) return false;
        cairo_surface_flush(surface);
        pixels = cairo_image_surface_get_data(surface);
        bytesPerRow = cairo_image_surface_get_stride(surface);
        return pixels;
    }

    bool readClips(cairo_t* page, cairo_surface_t* surface) {
        const Bounds whole{0, 0, cairo_image_surface_get_width(surface),
                           cairo_image_surface_get_height(surface)};
        cairo_rectangle_list_t* list = cairo_copy_clip_rectangle_list(page);
        const bool isKnown = list->status == CAIRO_STATUS_SUCCESS;
        for (int i = 0; isKnown && i < list->num_rectangles; ++i) {
            const cairo_rectangle_t& rect = list->rectangles[i];
            auto x = [&](double value) { return static_cast<int>(std::lround(value * xFactor + xOffset)); };
            auto y = [&](double value) { return static_cast<int>(std::lround(value * yFactor + yOffset)); };
            clips.push_back({std::max(x(rect.x), whole.left), std::max(y(rect.y), whole.top),
                             std::min(x(rect.x + rect.width), whole.right),
                             std::min(y(rect.y + rect.height), whole.bottom)});
        }
        cairo_rectangle_list_destroy(list);
        return isKnown;
    }

    void blend(const Image& image, const std::uint8_t* coverage, int x, int y) const {
        for (const Bounds& clip : clips) {
            const int left = std::max(x + image.left, clip.left);
            const int right = std::min(x + image.left + image.width, clip.right);
            const int top = std::max(y + image.top, clip.top);
            const int bottom = std::min(y + image.top + image.height, clip.bottom);
            for (int row = top; row < bottom; ++row)
                blendRow(coverage + static_cast<std::ptrdiff_t>(row - y - image.top) * image.width +
                             (left - x - image.left),
                         pixels + static_cast<std::ptrdiff_t>(row) * bytesPerRow +
                             static_cast<std::ptrdiff_t>(left) * 4,
                         right - left);
        }
    }

    void blendRow(const std::uint8_t* coverage, unsigned char* place, int count) const {
        const bool isOpaque = color >> 24 == 255;
        for (int i = 0; i < count; ++i, place += 4) {
            if (!coverage[i]) continue;
            std::uint32_t pixel = color;
            if (coverage[i] != 255 || !isOpaque) {
                std::uint32_t behind;
                std::memcpy(&behind, place, 4);
                const std::uint32_t ink = scaled(color, coverage[i]);
                pixel = ink + scaled(behind, 255 - (ink >> 24));
            }
            std::memcpy(place, &pixel, 4);
        }
    }
};

GlyphImages& GlyphImages::current() {
    static thread_local GlyphImages images;
    return images;
}

GlyphImages::~GlyphImages() { forget(); }

void GlyphImages::forget() {
    for (const auto& sized : _sizes) cairo_scaled_font_destroy(sized->font);
    _sizes.clear();
    _coverage.clear();
}

GlyphImages::Sized& GlyphImages::sized(cairo_font_face_t* face, const Look& look) {
    if (_coverage.size() > kMostCoverage) forget();
    auto found =
        std::find_if(_sizes.begin(), _sizes.end(), [&](const auto& known) { return known->look == look; });
    if (found == _sizes.end()) {
        if (_sizes.size() == kMostSizes) forget();
        cairo_matrix_t matrix, identity;
        cairo_matrix_init(&matrix, look.width, 0, -look.slant * look.height, look.height, 0, 0);
        cairo_matrix_init_identity(&identity);
        cairo_font_options_t* options = cairo_font_options_create();
        cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
        cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
        auto made = std::make_unique<Sized>();
        made->look = look;
        made->font = cairo_scaled_font_create(face, &matrix, &identity, options);
        cairo_font_options_destroy(options);
        found = _sizes.insert(_sizes.end(), std::move(made));
    }
    std::rotate(_sizes.begin(), found, found + 1);
    return *_sizes.front();
}

const GlyphImages::Image& GlyphImages::image(Sized& sized, unsigned long glyph, unsigned phaseX,
                                             unsigned phaseY) {
    const std::uint64_t key = static_cast<std::uint64_t>(glyph) << 4 | phaseX << 2 | phaseY;
    auto [found, isNew] = sized.images.try_emplace(key, Image{});
    Image& image = found->second;
    if (!isNew) return image;
    cairo_glyph_t placed{glyph, phaseX / kPhases, phaseY / kPhases};
    cairo_text_extents_t extents;
    cairo_scaled_font_glyph_extents(sized.font, &placed, 1, &extents);
    if (!(extents.width > 0 && extents.height > 0 && extents.width < 4 * kLargest &&
          extents.height < 4 * kLargest))
        return image;
    // The extents may be those of the glyph at a whole pixel.
    image.left = static_cast<int>(std::floor(extents.x_bearing)) - 1;
    image.top = static_cast<int>(std::floor(extents.y_bearing)) - 1;
    image.width = static_cast<int>(std::ceil(extents.x_bearing + extents.width)) + 2 - image.left;
    image.height = static_cast<int>(std::ceil(extents.y_bearing + extents.height)) + 2 - image.top;
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_A8, image.width, image.height);
    cairo_t* page = cairo_create(surface);
    cairo_set_scaled_font(page, sized.font);
    placed.x -= image.left;
    placed.y -= image.top;
    cairo_glyph_path(page, &placed, 1);
    cairo_fill(page);
    cairo_destroy(page);
    cairo_surface_flush(surface);
    image.start = _coverage.size();
    const unsigned char* rows = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    for (int row = 0; rows && row < image.height; ++row)
        _coverage.insert(_coverage.end(), rows + static_cast<std::ptrdiff_t>(row) * stride,
                         rows + static_cast<std::ptrdiff_t>(row) * stride + image.width);
    if (!rows) image = {};
    cairo_surface_destroy(surface);
    return image;
}

bool GlyphImages::blend(cairo_t* page, cairo_font_face_t* face, Look look, std::span<const GlyphAt> glyphs) {
    Target target;
    if (!target.read(page)) return false;
    look.width *= target.xFactor;
    look.height *= target.yFactor;
    look.slant *= target.xFactor / target.yFactor;
    if (look.width > kLargest || look.height > kLargest) return false;
    Sized& font = sized(face, look);
    if (cairo_scaled_font_status(font.font) != CAIRO_STATUS_SUCCESS) return false;
    for (const GlyphAt& glyph : glyphs) {
        const double x = std::round((glyph.x * target.xFactor + target.xOffset) * kPhases);
        const double y = std::round((glyph.y * target.yFactor + target.yOffset) * kPhases);
        if (!(std::abs(x) < 1e6 && std::abs(y) < 1e6)) continue;
        const int quartersX = static_cast<int>(x), quartersY = static_cast<int>(y);
        const Image& image = this->image(font, glyph.index, static_cast<unsigned>(quartersX & 3),
                                         static_cast<unsigned>(quartersY & 3));
        if (image.width) target.blend(image, _coverage.data() + image.start, quartersX >> 2, quartersY >> 2);
    }
    cairo_surface_mark_dirty(cairo_get_group_target(page));
    return true;
}

}  // namespace pelvor
