// SPDX-License-Identifier: Apache-2.0
#include "Interface/Windows/WindowPainter.h"

#include <cairo.h>

#include <cmath>
#include <cstring>
#include <utility>

#include "Interface/Backend/DisplayConnection.h"
#include "Interface/Events/ApplicationState.h"
#include "Interface/NSWindow.h"
#include "Interface/Windows/FocusStack.h"
#include "Interface/Windows/ViewExtras.h"
#include "Interface/Windows/WindowState.h"
#include "Text/Drawing/Canvas.h"
#include "Text/NSGraphicsContext.h"

namespace pelvor {
namespace {

bool isNothing(const PixelRect& rect) { return rect.width <= 0 || rect.height <= 0; }
int right(const PixelRect& rect) { return rect.x + rect.width; }
int bottom(const PixelRect& rect) { return rect.y + rect.height; }

PixelRect intersection(const PixelRect& a, const PixelRect& b) {
    const int x = std::max(a.x, b.x), y = std::max(a.y, b.y);
    return {x, y, std::min(right(a), right(b)) - x, std::min(bottom(a), bottom(b)) - y};
}

PixelRect unionOf(const PixelRect& a, const PixelRect& b) {
    const int x = std::min(a.x, b.x), y = std::min(a.y, b.y);
    return {x, y, std::max(right(a), right(b)) - x, std::max(bottom(a), bottom(b)) - y};
}

bool holds(const PixelRect& outer, const PixelRect& inner) {
    return outer.x <= inner.x && outer.y <= inner.y && right(outer) >= right(inner) &&
           bottom(outer) >= bottom(inner);
}

// Rounding outwards forgives what single precision adds to places on whole pixels.
constexpr double kSlack = 1.0 / 256;
int outwardsFloor(double value) {
    return static_cast<int>(std::floor(std::clamp(value, -1e6, 1e6) + kSlack));
}
int outwardsCeil(double value) { return static_cast<int>(std::ceil(std::clamp(value, -1e6, 1e6) - kSlack)); }

}  // namespace

// MARK: Damage

bool DamageList::contains(const PixelRect& rect) const {
    for (const PixelRect& known : _rects)
        if (holds(known, rect)) return true;
    return false;
}

void DamageList::add(PixelRect rect) {
    constexpr std::size_t kMost = 8;
    if (isNothing(rect) || contains(rect)) return;
    for (std::size_t i = 0; i < _rects.size();) {
        if (isNothing(intersection(_rects[i], rect))) {
            ++i;
            continue;
        }
        rect = unionOf(_rects[i], rect);
        _rects.erase(_rects.begin() + static_cast<std::ptrdiff_t>(i));
        i = 0;
    }
    if (_rects.size() == kMost) {
        for (const PixelRect& known : _rects) rect = unionOf(known, rect);
        _rects.clear();
    }
    _rects.push_back(rect);
}

void WindowPainter::addPixels(const PixelRect& damage) {
    const PixelRect whole{0, 0, 32767, 32767};
    const PixelRect inside = intersection(damage, whole);
    if (isNothing(inside)) return;
    _damage.add(inside);
    DisplayConnection::shared().needsTurn();
}

void WindowPainter::add(const ViewRect& baseRect) {
    const NSSize size = _window->state().content.size;
    const ViewRect inside = baseRect.intersection({0, 0, size.width, size.height});
    if (!inside.isEmpty()) addPixels(pixels(inside));
}

void WindowPainter::addAll() {
    const NSSize size = _window->state().content.size;
    add({0, 0, size.width, size.height});
}

void WindowPainter::addPreparation(NSView* view) {
    _preparing.emplace_back(view);
    DisplayConnection::shared().needsTurn();
}

bool WindowPainter::isAllDamaged() const {
    const NSSize size = _window->state().content.size;
    return _damage.contains(pixels({0, 0, size.width, size.height}));
}

PixelRect WindowPainter::pixels(const ViewRect& rect) const { return devicePixels(baseToPoints(), rect); }

// Points from the upper left corner.
ViewTransform WindowPainter::baseToPoints() const { return {1, 0, -1, _window->state().content.size.height}; }

PixelRect WindowPainter::devicePixels(const ViewTransform& toPoints, const ViewRect& rect) const {
    const double scale = DisplayConnection::shared().scale();
    const ViewRect points = toPoints.rect(rect);
    const int x = outwardsFloor(points.left * scale), y = outwardsFloor(points.bottom * scale);
    return {x, y, outwardsCeil(points.right * scale) - x, outwardsCeil(points.top * scale) - y};
}

ViewRect WindowPainter::baseRect(const PixelRect& pixels) const {
    const double scale = DisplayConnection::shared().scale();
    const double height = _window->state().content.size.height;
    return {pixels.x / scale, height - bottom(pixels) / scale, right(pixels) / scale,
            height - pixels.y / scale};
}

// MARK: Painting

struct WindowPainter::Pass {
    cairo_t* page;
    double scale;
};

// The image and a context on it; false while the window cannot be drawn in.
bool WindowPainter::begin() {
    WindowState& state = _window->state();
    if (!state.backendWindow || !state.isVisible) return false;
    _image = DisplayConnection::shared().backend().beginPaint(state.backendWindow);
    if (!_image || !_image->pixels) return false;
    if (!_context || _pixels != _image->pixels || _width != _image->width || _height != _image->height) {
        _context = NSGraphicsContext::onPixels(_image->pixels, _image->width, _image->height,
                                               _image->bytesPerRow, DisplayConnection::shared().scale());
        _pixels = _image->pixels;
        _width = _image->width;
        _height = _image->height;
    }
    return true;
}

// Views may mark more of themselves before they are drawn.
void WindowPainter::prepareViews(NSView* view, const ViewRect& rect) {
    const auto held = Retained<NSView>::retaining(view);
    try {
        view->viewWillDraw();
    } catch (...) {
        reportCurrentException();
    }
    const ViewRect inside = rect.intersection(ViewRect::of(view->bounds()));
    if (inside.isEmpty()) return;
    view->eachSubviewIn(inside, false, [&](NSView* subview) {
        prepareViews(subview, subview->transformToSuperview().inverse().rect(inside));
        return false;
    });
}

void WindowPainter::prepareWaiting() {
    for (const WeakHandle& waiting : std::exchange(_preparing, {})) {
        const Retained<Object> alive = waiting.object();
        auto* view = cast<NSView>(alive.get());
        if (!view || view->window() != _window) continue;
        try {
            view->viewWillDraw();
        } catch (...) {
            reportCurrentException();
        }
    }
}

void WindowPainter::paint() {
    if (_isPainting || _locks || (_damage.isEmpty() && _preparing.empty())) return;
    const auto held = Retained<NSWindow>::retaining(_window);
    WindowState& state = _window->state();
    if (!state.isVisible || state.flushDisabled) return;
    prepareWaiting();
    if (_damage.isEmpty()) return;
    const auto root = state.root;
    for (const PixelRect& rect : std::vector<PixelRect>(_damage.rects())) prepareViews(root, baseRect(rect));
    if (!begin()) return;
    DamageList damage = std::exchange(_damage, {});
    const PixelRect whole{0, 0, _image->width, _image->height};
    const auto outer = Retained<NSGraphicsContext>::retaining(NSGraphicsContext::currentContext());
    NSGraphicsContext::setCurrentContext(_context);
    _isPainting = true;
    std::vector<PixelRect> shown;
    for (const PixelRect& rect : damage.rects()) {
        _drawn = intersection(rect, whole);
        if (isNothing(_drawn)) continue;
        cairo_t* page = _context->canvas().page();
        if (page)
            paintView({page, static_cast<double>(DisplayConnection::shared().scale())}, root, baseToPoints(),
                      _drawn);
        shown.push_back(_drawn);
    }
    _isPainting = false;
    NSGraphicsContext::setCurrentContext(outer);
    if (cairo_t* page = _context->canvas().page()) cairo_surface_flush(cairo_get_target(page));
    if (state.backendWindow && !shown.empty())
        DisplayConnection::shared().backend().present(state.backendWindow, shown, true);
}

bool WindowPainter::covers(NSView* view, const ViewTransform& toPoints, const PixelRect& clip) {
    const double scale = DisplayConnection::shared().scale();
    const ViewRect points = toPoints.rect(ViewRect::of(view->bounds()));
    const ViewRect wanted{clip.x / scale, clip.y / scale, right(clip) / scale, bottom(clip) / scale};
    const ViewRect around{points.left - kSlack, points.bottom - kSlack, points.right + kSlack,
                          points.top + kSlack};
    if (!around.contains(wanted)) return false;
    if (view->isOpaque()) return true;
    bool isCovered = false;
    view->eachSubviewIn(toPoints.inverse().rect(wanted), true, [&](NSView* subview) {
        return isCovered = covers(subview, subview->transformToSuperview().then(toPoints), clip);
    });
    return isCovered;
}

void WindowPainter::paintView(const Pass& pass, NSView* view, const ViewTransform& toPoints,
                              const PixelRect& clip) {
    const auto held = Retained<NSView>::retaining(view);
    const ViewRect around = toPoints.inverse().rect(
        {clip.x / pass.scale, clip.y / pass.scale, right(clip) / pass.scale, bottom(clip) / pass.scale});
    // What stands behind the frontmost subview that hides the whole clip is left out.
    NSView* first = nullptr;
    view->eachSubviewIn(around, true, [&](NSView* subview) {
        if (!covers(subview, subview->transformToSuperview().then(toPoints), clip)) return false;
        first = subview;
        return true;
    });
    if (!first) drawView(pass, view, toPoints, clip);
    view->eachSubviewIn(around, false, [&](NSView* subview) {
        if (first && subview != first) return false;
        first = nullptr;
        const ViewTransform inner = subview->transformToSuperview().then(toPoints);
        const PixelRect inside = intersection(clip, devicePixels(inner, ViewRect::of(subview->bounds())));
        if (!isNothing(inside)) paintView(pass, subview, inner, inside);
        return false;
    });
}

namespace {

void setUp(cairo_t* page, const ViewTransform& toPoints, const PixelRect& clip, double scale) {
    cairo_identity_matrix(page);
    cairo_reset_clip(page);
    cairo_new_path(page);
    cairo_rectangle(page, clip.x / scale, clip.y / scale, clip.width / scale, clip.height / scale);
    cairo_clip(page);
    cairo_matrix_t matrix;
    cairo_matrix_init(&matrix, toPoints.xFactor, 0, 0, toPoints.yFactor, toPoints.xOffset, toPoints.yOffset);
    cairo_set_matrix(page, &matrix);
}

}  // namespace

void WindowPainter::drawView(const Pass& pass, NSView* view, const ViewTransform& toPoints,
                             const PixelRect& clip) {
    const ViewRect inside = toPoints.inverse().rect(
        {clip.x / pass.scale, clip.y / pass.scale, right(clip) / pass.scale, bottom(clip) / pass.scale});
    const ViewRect dirty = inside.intersection(ViewRect::of(view->bounds()));
    if (dirty.isEmpty()) return;
    const SavedState state(_context->canvas());
    setUp(pass.page, toPoints, clip, pass.scale);
    cairo_set_source_rgb(pass.page, 0, 0, 0);
    const FocusStack::Scope focus(view);
    try {
        view->drawRect(dirty.rect());
    } catch (...) {
        reportCurrentException();
    }
}

bool WindowPainter::draws(const ViewRect& rect) const {
    return _isPainting && !isNothing(intersection(pixels(rect), _drawn));
}

// MARK: Drawing outside

bool WindowPainter::lock(NSView* view) {
    if (!_isPainting && !_locks && !begin()) return false;
    cairo_t* page = _context->canvas().page();
    if (!page) return false;
    _outerContexts.push_back(Retained<NSGraphicsContext>::retaining(NSGraphicsContext::currentContext()));
    NSGraphicsContext::setCurrentContext(_context);
    _context->canvas().save();
    const double scale = DisplayConnection::shared().scale();
    const PixelRect clip = intersection(
        pixels(view->transformToBase().rect(ViewRect::of(view->visibleRect()))), {0, 0, _width, _height});
    setUp(page, view->transformToBase().then(baseToPoints()), clip, scale);
    ++_locks;
    return true;
}

void WindowPainter::unlock(NSView* view) {
    if (!_locks) return;
    --_locks;
    _context->canvas().restore();
    NSGraphicsContext::setCurrentContext(_outerContexts.back());
    _outerContexts.pop_back();
    if (_isPainting) return;
    if (cairo_t* page = _context->canvas().page()) cairo_surface_flush(cairo_get_target(page));
    const PixelRect shown = intersection(
        pixels(view->transformToBase().rect(ViewRect::of(view->visibleRect()))), {0, 0, _width, _height});
    WindowState& state = _window->state();
    if (state.backendWindow && (!isNothing(shown) || !_locks))
        DisplayConnection::shared().backend().present(state.backendWindow,
                                                      {&shown, isNothing(shown) ? 0u : 1u}, !_locks);
}

bool WindowPainter::scroll(const ViewRect& rect, double dx, double dy) {
    const double scale = DisplayConnection::shared().scale();
    const double x = dx * scale, y = -dy * scale;
    const int byX = static_cast<int>(std::lround(x)), byY = static_cast<int>(std::lround(y));
    if (std::abs(x - byX) > kSlack || std::abs(y - byY) > kSlack) return false;
    if (_isPainting || _locks || !_window->state().isVisible) return false;
    const PixelRect area = pixels(rect);
    // Damage inside would move along; it is simpler to draw everything then.
    for (const PixelRect& known : _damage.rects())
        if (!isNothing(intersection(known, area))) return false;
    if (std::abs(byX) >= area.width || std::abs(byY) >= area.height || !begin()) return false;
    const PixelRect target =
        intersection(intersection(area, {area.x + byX, area.y + byY, area.width, area.height}),
                     {0, 0, _image->width, _image->height});
    const PixelRect source = intersection({target.x - byX, target.y - byY, target.width, target.height},
                                          {0, 0, _image->width, _image->height});
    if (isNothing(source)) return false;
    cairo_surface_t* surface = cairo_get_target(_context->canvas().page());
    cairo_surface_flush(surface);
    for (int step = 0; step < source.height; ++step) {
        const int row = byY > 0 ? source.height - 1 - step : step;
        unsigned char* from = _image->pixels +
                              static_cast<std::ptrdiff_t>(source.y + row) * _image->bytesPerRow +
                              static_cast<std::ptrdiff_t>(source.x) * 4;
        unsigned char* to = from + static_cast<std::ptrdiff_t>(byY) * _image->bytesPerRow +
                            static_cast<std::ptrdiff_t>(byX) * 4;
        std::memmove(to, from, static_cast<std::size_t>(source.width) * 4);
    }
    cairo_surface_mark_dirty(surface);
    const PixelRect moved{source.x + byX, source.y + byY, source.width, source.height};
    DisplayConnection::shared().backend().present(_window->state().backendWindow, {&moved, 1}, true);
    if (byY)
        addPixels({area.x, byY > 0 ? area.y : bottom(moved), area.width,
                   byY > 0 ? moved.y - area.y : bottom(area) - bottom(moved)});
    if (byX)
        addPixels({byX > 0 ? area.x : right(moved), area.y,
                   byX > 0 ? moved.x - area.x : right(area) - right(moved), area.height});
    return true;
}

}  // namespace pelvor
