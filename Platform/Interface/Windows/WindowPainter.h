// SPDX-License-Identifier: Apache-2.0
// WindowPainter: what of a window has to be drawn, and how it is drawn.
#pragma once

#include <vector>

#include "Interface/Backend/Backend.h"
#include "Interface/Windows/ViewGeometry.h"
#include "Runtime/WeakHandle.h"
#include "Text/NSGraphicsContext.h"

namespace pelvor {

class NSView;
class NSWindow;

/// Rectangles of pixels that do not overlap; if there would be more than eight, the one around them.
class DamageList {
  public:
    void add(PixelRect rect);
    void clear() { _rects.clear(); }
    bool isEmpty() const { return _rects.empty(); }
    bool contains(const PixelRect& rect) const;
    const std::vector<PixelRect>& rects() const { return _rects; }

  private:
    std::vector<PixelRect> _rects;
};

/// Collects what of a window has to be drawn, and draws it: the views that a damaged rectangle touches, from
/// the back to the front, without those that opaque ones hide.
class WindowPainter {
  public:
    explicit WindowPainter(NSWindow* window) : _window(window) {}
    WindowPainter(const WindowPainter&) = delete;
    WindowPainter& operator=(const WindowPainter&) = delete;

    /// Marks a rectangle of pixels, or one in base coordinates; has a turn of the display finished.
    void addPixels(const PixelRect& damage);
    void add(const ViewRect& baseRect);
    void addAll();
    /// Has the view's `viewWillDraw` called before the next `paint` looks at what is marked.
    void addPreparation(NSView* view);
    bool isAllDamaged() const;
    const DamageList& damage() const { return _damage; }
    void forget() { _damage.clear(); }

    /// Draws and shows what is marked, unless the window cannot be drawn in now.
    void paint();
    /// Moves what is drawn in the rectangle by whole pixels. Returns false if that cannot be done now.
    bool scroll(const ViewRect& baseRect, double dx, double dy);

    /// Makes a context for the view the current one, outside `paint`. Returns false if that cannot be done
    /// now.
    bool lock(NSView* view);
    /// Ends it, and shows the visible part of the view.
    void unlock(NSView* view);

    /// While `paint` draws: whether the rectangle in base coordinates is drawn.
    bool draws(const ViewRect& baseRect) const;
    bool isPainting() const { return _isPainting; }

    PixelRect pixels(const ViewRect& baseRect) const;

  private:
    struct Pass;
    ViewRect baseRect(const PixelRect& pixels) const;
    ViewTransform baseToPoints() const;
    bool begin();
    void paintView(const Pass& pass, NSView* view, const ViewTransform& toPoints, const PixelRect& clip);
    void drawView(const Pass& pass, NSView* view, const ViewTransform& toPoints, const PixelRect& clip);
    bool covers(NSView* view, const ViewTransform& toPoints, const PixelRect& clip);
    PixelRect devicePixels(const ViewTransform& toPoints, const ViewRect& rect) const;
    void prepareViews(NSView* view, const ViewRect& rect);
    void prepareWaiting();

    Unretained<NSWindow> _window;
    DamageList _damage;
    std::vector<WeakHandle> _preparing;  // views that want to mark what changed
    Retained<NSGraphicsContext> _context;
    const BackendImage* _image = nullptr;
    const unsigned char* _pixels = nullptr;  // that the context draws on
    int _width = 0, _height = 0;
    PixelRect _drawn;
    int _locks = 0;
    bool _isPainting = false;
    std::vector<Retained<NSGraphicsContext>> _outerContexts;
};

}  // namespace pelvor
