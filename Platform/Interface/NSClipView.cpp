// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSClipView.h"

#include <algorithm>
#include <cmath>

#include "Foundation/NSNotificationCenter.h"
#include "Interface/Drawing/Theme.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSScrollView.h"
#include "Interface/NSScroller.h"
#include "Interface/NSWindow.h"
#include "Text/NSColor.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSClipView, interfaceLibrary) {
    methods.creator<"initWithFrame:", &NSClipView::initWithFrame>();
    methods.instance<"documentView", &NSClipView::documentView>();
    methods.instance<"setDocumentView:", &NSClipView::setDocumentView>();
    methods.instance<"documentRect", &NSClipView::documentRect>();
    methods.instance<"documentVisibleRect", &NSClipView::documentVisibleRect>();
    methods.instance<"scrollToPoint:", &NSClipView::scrollToPoint>();
    methods.instance<"constrainScrollPoint:", &NSClipView::constrainScrollPoint>();
    methods.instance<"copiesOnScroll", &NSClipView::copiesOnScroll>();
    methods.instance<"setCopiesOnScroll:", &NSClipView::setCopiesOnScroll>();
    methods.instance<"drawsBackground", &NSClipView::drawsBackground>();
    methods.instance<"setDrawsBackground:", &NSClipView::setDrawsBackground>();
    methods.instance<"backgroundColor", &NSClipView::backgroundColor>();
    methods.instance<"setBackgroundColor:", &NSClipView::setBackgroundColor>();
    methods.instanceAs<"documentDidChange:", &NSClipView::documentDidChange>();
}

namespace {

// As little as brings the stretch from `start` to `end` into the window of that length at `shown`; the
// beginning of a stretch that is longer.
float nearestShowing(float start, float end, float shown, float length) {
    if (start < shown || end - start > length) return start;
    return end > shown + length ? end - length : shown;
}

}  // namespace

Retained<NSClipView> NSClipView::initWithFrame(NSRect frame, Class* cls) {
    return cast<NSClipView>(NSView::initWithFrame(frame, cls));
}

NSClipView::~NSClipView() {
    if (_documentView) watchDocument(false);
}

// MARK: The document

void NSClipView::setDocumentView(NSView* view) {
    if (view == _documentView) return;
    const auto alive = Retained<NSClipView>::retaining(this);
    const auto kept = Retained<NSView>::retaining(view);
    if (_documentView) _documentView->removeFromSuperview();
    if (view) {
        addSubview(view);
        _documentView = view;
        watchDocument(true);
        scrollToPoint(constrainScrollPoint(view->frame().origin));
    }
    setNeedsDisplay(true);
    if (auto scrollView = cast<NSScrollView>(superview())) scrollView->tile();
}

void NSClipView::willRemoveSubview(NSView* view) {
    NSView::willRemoveSubview(view);
    if (view != _documentView) return;
    watchDocument(false);
    _documentView = nullptr;
}

void NSClipView::watchDocument(bool watches) {
    NSNotificationCenter* centre = NSNotificationCenter::defaultCenter();
    for (NSString* name : {NSViewFrameDidChangeNotification, NSViewBoundsDidChangeNotification})
        if (watches)
            centre->addObserver_selector_name_object(this, "documentDidChange:"_sel, name, _documentView);
        else
            centre->removeObserver_name_object(this, name, _documentView);
}

NSRect NSClipView::documentRect() {
    const NSRect shown = bounds();
    if (!_documentView) return shown;
    NSRect rect = _documentView->frame();
    rect.size.width = std::max(NSWidth(rect), NSWidth(shown));
    rect.size.height = std::max(NSHeight(rect), NSHeight(shown));
    return rect;
}

NSRect NSClipView::documentVisibleRect() {
    return _documentView ? convertRect_toView(bounds(), _documentView) : bounds();
}

// The document has grown or shrunk: what is shown stays inside it.
void NSClipView::documentDidChange(id) {
    if (_isCorrecting) return;
    _isCorrecting = true;
    const auto alive = Retained<NSClipView>::retaining(this);
    const NSPoint wanted = constrainScrollPoint(bounds().origin);
    if (wanted != bounds().origin) scrollToPoint(wanted);
    _isCorrecting = false;
    if (auto scrollView = cast<NSScrollView>(superview())) scrollView->reflectScrolledClipView(this);
}

// MARK: Scrolling

NSPoint NSClipView::constrainScrollPoint(NSPoint point) {
    const NSRect document = documentRect(), shown = bounds();
    const float scale = window() ? window()->userSpaceScaleFactor() : 1;
    const auto nearest = [&](float wanted, float least, float greatest) {
        return std::clamp(std::round(wanted * scale) / scale, least, std::max(least, greatest));
    };
    return {nearest(point.x, NSMinX(document), NSMaxX(document) - NSWidth(shown)),
            nearest(point.y, NSMinY(document), NSMaxY(document) - NSHeight(shown))};
}

void NSClipView::scrollToPoint(NSPoint point) {
    const NSRect shown = bounds();
    if (point == shown.origin) return;
    const NSSize distance{NSMinX(shown) - point.x, NSMinY(shown) - point.y};
    const bool isFar =
        std::abs(distance.width) >= NSWidth(shown) || std::abs(distance.height) >= NSHeight(shown);
    if (!_copiesOnScroll || isFar) return setBoundsOrigin(point);
    scrollBoundsOrigin(point);
}

void NSClipView::scrollPoint(NSPoint point) { scrollAsUser(point); }

void NSClipView::scrollAsUser(NSPoint point) {
    if (auto scrollView = cast<NSScrollView>(superview()))
        scrollView->scrollClipView_toPoint(this, point);
    else
        scrollToPoint(constrainScrollPoint(point));
}

bool NSClipView::scrollRectToVisible(NSRect rect) {
    const auto alive = Retained<NSClipView>::retaining(this);
    const NSRect shown = bounds();
    const NSPoint wanted =
        constrainScrollPoint({nearestShowing(NSMinX(rect), NSMaxX(rect), NSMinX(shown), NSWidth(shown)),
                              nearestShowing(NSMinY(rect), NSMaxY(rect), NSMinY(shown), NSHeight(shown))});
    if (wanted != shown.origin) scrollAsUser(wanted);
    const bool movesAround = NSView::scrollRectToVisible(rect);
    return movesAround || bounds().origin != shown.origin;
}

void NSClipView::setFrameSize(NSSize size) {
    const auto alive = Retained<NSClipView>::retaining(this);
    NSView::setFrameSize(size);
    documentDidChange(nullptr);
}

// MARK: Drawing

void NSClipView::setDrawsBackground(bool draws) {
    _drawsBackground = draws;
    setNeedsDisplay(true);
}

void NSClipView::setBackgroundColor(NSColor* color) {
    _backgroundColor.set(color);
    setNeedsDisplay(true);
}

bool NSClipView::isFlipped() { return _documentView && _documentView->isFlipped(); }

bool NSClipView::isOpaque() { return _drawsBackground; }

void NSClipView::drawRect(NSRect dirty) {
    if (!_drawsBackground) return;
    (_backgroundColor ? _backgroundColor.get() : themeColor(ThemeColor::window))->set();
    NSRectFill(dirty);
}

}  // namespace pelvor
