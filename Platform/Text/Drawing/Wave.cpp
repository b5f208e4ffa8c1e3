// SPDX-License-Identifier: Apache-2.0
#include "Text/Drawing/Wave.h"

#include <cairo.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace pelvor {
namespace {

using Color = std::array<double, 4>;

// Pixels a point. A larger tile would take more memory than there is, and without a tile nothing could be
// drawn on the page any more.
constexpr double kLargest = 64;

// One wave, crest and trough. Set side by side, copies of it make a long one, which takes a tenth of the time
// of a curve.
class WaveTile {
  public:
    WaveTile() = default;
    ~WaveTile() { cairo_surface_destroy(_surface); }
    WaveTile(const WaveTile&) = delete;

    // At so many pixels a point.
    void prepare(double scale, const Color& color) {
        if (_surface && scale == _scale && color == _color) return;
        _scale = scale;
        _color = color;
        const double half = std::max(2.0, std::round(2 * scale)), rise = std::round(1.5 * scale);
        const double line = std::max(1.0, 0.75 * scale), crest = line / 2, trough = crest + rise;
        _height = static_cast<int>(std::ceil(rise + line));
        cairo_surface_destroy(_surface);
        _surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(2 * half), _height);
        cairo_t* tile = cairo_create(_surface);
        cairo_set_source_rgba(tile, color[0], color[1], color[2], color[3]);
        cairo_set_line_width(tile, line);
        // From before the tile to behind it, so that its edges are those of a longer wave.
        cairo_move_to(tile, -2 * half, trough);
        for (double x = -2 * half; x < 4 * half; x += 2 * half) {
            cairo_curve_to(tile, x + half / 2, trough, x + half / 2, crest, x + half, crest);
            cairo_curve_to(tile, x + half * 1.5, crest, x + half * 1.5, trough, x + half * 2, trough);
        }
        cairo_stroke(tile);
        cairo_destroy(tile);
    }
    cairo_surface_t* surface() const { return _surface; }
    int height() const { return _height; }

  private:
    double _scale = 0;
    Color _color{};
    int _height = 0;
    cairo_surface_t* _surface = nullptr;
};

}  // namespace

void drawWave(cairo_t* page, double x, double y, double length) {
    double scale = 1, scaleDown = 1, dx = 1, dy = 0;
    cairo_surface_get_device_scale(cairo_get_target(page), &scale, &scaleDown);
    cairo_user_to_device(page, &x, &y);
    cairo_user_to_device_distance(page, &dx, &dy);
    const double pixels = std::hypot(dx, dy) * scale;
    Color color{0, 0, 0, 1};
    cairo_pattern_get_rgba(cairo_get_source(page), &color[0], &color[1], &color[2], &color[3]);
    thread_local WaveTile tile;
    tile.prepare(std::min(pixels, kLargest), color);
    x = std::floor(x * scale);
    y = std::floor(y * scale);
    cairo_save(page);
    cairo_identity_matrix(page);
    cairo_scale(page, 1 / scale, 1 / scale);
    cairo_set_source_surface(page, tile.surface(), x, y);
    cairo_pattern_set_extend(cairo_get_source(page), CAIRO_EXTEND_REPEAT);
    cairo_pattern_set_filter(cairo_get_source(page), CAIRO_FILTER_NEAREST);
    cairo_new_path(page);
    cairo_rectangle(page, x, y, std::ceil(length * pixels), tile.height());
    cairo_fill(page);
    cairo_restore(page);
}

}  // namespace pelvor
