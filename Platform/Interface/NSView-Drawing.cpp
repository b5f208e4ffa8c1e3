// SPDX-License-Identifier: Apache-2.0
// Drawing and scrolling of views.
#include <cmath>

#include "Foundation/NSNotificationCenter.h"
#include "Interface/Backend/DisplayConnection.h"
#include "Interface/NSEvent.h"
#include "Interface/NSView.h"
#include "Interface/NSWindow.h"
#include "Interface/Windows/FocusStack.h"
#include "Interface/Windows/ViewExtras.h"
#include "Interface/Windows/WindowState.h"
#include "Runtime/NSException.h"
#include "Text/NSGraphicsContext.h"

namespace pelvor {

// MARK: Showing

void NSView::setHidden(bool isHidden) {
    if (_isHidden == isHidden) return;
    const auto held = Retained<NSView>::retaining(this);
    markFrame();
    _isHidden = isHidden;
    markFrame();
    noteGeometryChange();
    if (isHidden && _window) _window->state().forgetResponders(this);
}

bool NSView::isHiddenOrHasHiddenAncestor() {
    for (NSView* level = this; level; level = level->_superview)
        if (level->_isHidden) return true;
    return false;
}

void NSView::drawRect(NSRect) {}
void NSView::viewWillDraw() {}

// MARK: What has to be drawn

void NSView::setNeedsDisplay(bool needsDisplay) {
    if (needsDisplay) setNeedsDisplayInRect(bounds());
}

void NSView::setNeedsDisplayInRect(NSRect rect) {
    if (!_window || _window->state().painter.isAllDamaged()) return;
    ViewRect marked = ViewRect::of(rect).intersection(ViewRect::of(bounds()));
    for (NSView* level = this;; level = level->_superview) {
        if (level->_isHidden || marked.isEmpty()) return;
        marked = level->transformToSuperview().rect(marked);
        if (!level->_superview) break;
        marked = marked.intersection(ViewRect::of(level->_superview->bounds()));
    }
    _window->state().painter.add(marked);
}

void NSView::setNeedsViewWillDraw() {
    if (_window) _window->state().painter.addPreparation(this);
}

bool NSView::needsDisplay() {
    if (!_window) return false;
    const PixelRect visible =
        _window->state().painter.pixels(transformToBase().rect(ViewRect::of(visibleRect())));
    for (const PixelRect& damage : _window->state().painter.damage().rects())
        if (damage.x < visible.x + visible.width && visible.x < damage.x + damage.width &&
            damage.y < visible.y + visible.height && visible.y < damage.y + damage.height)
            return true;
    return false;
}

bool NSView::needsToDrawRect(NSRect rect) {
    return _window && _window->state().painter.draws(transformToBase().rect(ViewRect::of(rect)));
}

void NSView::display() { displayRect(bounds()); }

void NSView::displayRect(NSRect rect) {
    setNeedsDisplayInRect(rect);
    displayIfNeeded();
}

void NSView::displayIfNeeded() {
    if (_window) _window->state().painter.paint();
}

// MARK: Focus

bool NSView::canDraw() { return _window && _window->isVisible(); }

NSView* NSView::focusView() {
    auto& views = FocusStack::views();
    return views.empty() ? nullptr : views.back().get();
}

bool NSView::lockFocusIfCanDraw() {
    if (!_window || !_window->state().painter.lock(this)) return false;
    NSView* before = focusView();
    FocusStack::views().push_back(Retained<NSView>::retaining(this));
    if (before != this)
        NSNotificationCenter::defaultCenter()->postNotificationName_object(NSViewFocusDidChangeNotification,
                                                                           this);
    return true;
}

void NSView::lockFocus() {
    if (!lockFocusIfCanDraw())
        throw NSException(NSInternalInconsistencyException,
                          "lockFocus: the view is in no window that can be drawn in now");
}

void NSView::unlockFocus() {
    auto& views = FocusStack::views();
    if (views.empty() || views.back() != this) return;
    const Retained<NSView> held = views.back();
    views.pop_back();
    if (_window) _window->state().painter.unlock(this);
}

// MARK: Scrolling

NSRect NSView::adjustScroll(NSRect proposed) { return proposed; }

// A clip view overrides these.
void NSView::scrollPoint(NSPoint point) {
    if (_superview) _superview->scrollPoint(_superview->convertPoint_fromView(point, this));
}

bool NSView::scrollRectToVisible(NSRect rect) {
    return _superview && _superview->scrollRectToVisible(_superview->convertRect_fromView(rect, this));
}

void NSView::scrollRect_by(NSRect rect, NSSize delta) {
    if (!_window || !std::isfinite(delta.width) || !std::isfinite(delta.height)) return;
    const ViewTransform toBase = transformToBase();
    const ViewRect area = ViewRect::of(rect).intersection(ViewRect::of(visibleRect()));
    if (area.isEmpty()) return;
    if (!_window->state().painter.scroll(toBase.rect(area), delta.width * toBase.xFactor,
                                         delta.height * toBase.yFactor))
        setNeedsDisplayInRect(rect);
    NSNotificationCenter::defaultCenter()->postNotificationName_object(NSViewFocusDidChangeNotification,
                                                                       this);
}

bool NSView::autoscroll(NSEvent* event) {
    if (!event) return false;
    const NSPoint place = convertPoint_fromView(event->locationInWindow(), nullptr);
    if (NSPointInRect(place, visibleRect())) return false;
    return scrollRectToVisible({{place.x, place.y}, {1, 1}});
}

// MARK: Drawing functions

void NSRectFill(NSRect rect) {
    if (NSGraphicsContext* context = NSGraphicsContext::currentContext()) context->fillRect(rect);
}

void NSRectFillList(const NSRect* rects, NSInteger count) {
    for (NSInteger i = 0; rects && i < count; ++i) NSRectFill(rects[i]);
}

void NSFrameRectWithWidth(NSRect rect, float width) {
    if (NSGraphicsContext* context = NSGraphicsContext::currentContext())
        context->strokeRect_width(rect, width);
}

void NSFrameRect(NSRect rect) { NSFrameRectWithWidth(rect, 1); }

void NSRectClip(NSRect rect) {
    if (NSGraphicsContext* context = NSGraphicsContext::currentContext()) context->clipToRect(rect);
}

void NSBeep() {
    if (DisplayConnection* display = DisplayConnection::existing()) display->backend().beep();
}

}  // namespace pelvor
