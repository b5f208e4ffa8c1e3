// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSScrollView.h"

#include <algorithm>
#include <cmath>

#include "Interface/Drawing/Shapes.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSClipView.h"
#include "Interface/NSEvent.h"
#include "Interface/NSScroller.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"
#include "Text/NSColor.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSScrollView, interfaceLibrary) {
    methods.creator<"initWithFrame:", &NSScrollView::initWithFrame>();
    methods.instance<"documentView", &NSScrollView::documentView>();
    methods.instance<"setDocumentView:", &NSScrollView::setDocumentView>();
    methods.instance<"documentVisibleRect", &NSScrollView::documentVisibleRect>();
    methods.instance<"contentView", &NSScrollView::contentView>();
    methods.instance<"setContentView:", &NSScrollView::setContentView>();
    methods.instance<"verticalScroller", &NSScrollView::verticalScroller>();
    methods.instance<"horizontalScroller", &NSScrollView::horizontalScroller>();
    methods.instance<"hasVerticalScroller", &NSScrollView::hasVerticalScroller>();
    methods.instance<"setHasVerticalScroller:", &NSScrollView::setHasVerticalScroller>();
    methods.instance<"hasHorizontalScroller", &NSScrollView::hasHorizontalScroller>();
    methods.instance<"setHasHorizontalScroller:", &NSScrollView::setHasHorizontalScroller>();
    methods.instance<"autohidesScrollers", &NSScrollView::autohidesScrollers>();
    methods.instance<"setAutohidesScrollers:", &NSScrollView::setAutohidesScrollers>();
    methods.instance<"borderType", &NSScrollView::borderType>();
    methods.instance<"setBorderType:", &NSScrollView::setBorderType>();
    methods.instance<"drawsBackground", &NSScrollView::drawsBackground>();
    methods.instance<"setDrawsBackground:", &NSScrollView::setDrawsBackground>();
    methods.instance<"backgroundColor", &NSScrollView::backgroundColor>();
    methods.instance<"setBackgroundColor:", &NSScrollView::setBackgroundColor>();
    methods.instance<"contentSize", &NSScrollView::contentSize>();
    methods.classLevel<
        "frameSizeForContentSize:hasHorizontalScroller:hasVerticalScroller:borderType:",
        &NSScrollView::frameSizeForContentSize_hasHorizontalScroller_hasVerticalScroller_borderType>();
    methods.classLevel<
        "contentSizeForFrameSize:hasHorizontalScroller:hasVerticalScroller:borderType:",
        &NSScrollView::contentSizeForFrameSize_hasHorizontalScroller_hasVerticalScroller_borderType>();
    methods.instance<"lineScroll", &NSScrollView::lineScroll>();
    methods.instance<"setLineScroll:", &NSScrollView::setLineScroll>();
    methods.instance<"pageScroll", &NSScrollView::pageScroll>();
    methods.instance<"setPageScroll:", &NSScrollView::setPageScroll>();
    methods.instance<"scrollClipView:toPoint:", &NSScrollView::scrollClipView_toPoint>();
    methods.instance<"reflectScrolledClipView:", &NSScrollView::reflectScrolledClipView>();
    methods.instance<"tile", &NSScrollView::tile>();
    methods.instanceAs<"scrollByScroller:", &NSScrollView::scrollByScroller>();
}

namespace {

float borderWidth(NSBorderType type) { return type == NSNoBorder ? 0 : metrics::kLine; }

// The header of the document view; null if there is none.
NSView* headerOf(NSView* document) {
    const SEL header = "headerView"_sel;
    return document && document->respondsToSelector(header) ? cast<NSView>(send<id>(document, header))
                                                            : nullptr;
}

}  // namespace

Retained<NSScrollView> NSScrollView::initWithFrame(NSRect frame, Class* cls) {
    auto view = cast<NSScrollView>(NSView::initWithFrame(frame, cls));
    view->setContentView(NSClipView::initWithFrame({}).get());
    return view;
}

// MARK: Parts

NSView* NSScrollView::documentView() { return _clipView ? _clipView->documentView() : nullptr; }

void NSScrollView::setDocumentView(NSView* view) {
    const auto alive = Retained<NSScrollView>::retaining(this);
    if (_clipView) _clipView->setDocumentView(view);
    tile();
}

NSRect NSScrollView::documentVisibleRect() { return _clipView ? _clipView->documentVisibleRect() : NSRect{}; }

void NSScrollView::setContentView(NSClipView* clipView) {
    requireArgument(clipView, "setContentView:", "the clip view");
    if (clipView == _clipView) return;
    const auto alive = Retained<NSScrollView>::retaining(this);
    const auto old = std::move(_clipView);
    _clipView = Retained<NSClipView>::retaining(clipView);
    if (old) old->removeFromSuperview();
    addSubview(clipView);
    tile();
}

void NSScrollView::setHasVerticalScroller(bool has) {
    setHasScroller(_vertical, has, {NSScroller::scrollerWidth(), 4 * NSScroller::scrollerWidth()});
}

void NSScrollView::setHasHorizontalScroller(bool has) {
    setHasScroller(_horizontal, has, {4 * NSScroller::scrollerWidth(), NSScroller::scrollerWidth()});
}

void NSScrollView::setHasScroller(Retained<NSScroller>& scroller, bool has, NSSize size) {
    if (has == (scroller != nullptr)) return;
    const auto alive = Retained<NSScrollView>::retaining(this);
    if (has) {
        scroller = NSScroller::initWithFrame({{0, 0}, size});
        scroller->setTarget(this);
        scroller->setAction("scrollByScroller:"_sel);
        addSubview(scroller);
    } else {
        const auto gone = std::move(scroller);
        gone->removeFromSuperview();
    }
    tile();
}

void NSScrollView::setAutohidesScrollers(bool autohides) {
    _autohides = autohides;
    tile();
}

void NSScrollView::setBorderType(NSBorderType type) {
    _borderType = type;
    tile();
    setNeedsDisplay(true);
}

bool NSScrollView::drawsBackground() { return _clipView && _clipView->drawsBackground(); }

void NSScrollView::setDrawsBackground(bool draws) {
    if (_clipView) _clipView->setDrawsBackground(draws);
    setNeedsDisplay(true);
}

NSColor* NSScrollView::backgroundColor() { return _clipView ? _clipView->backgroundColor() : nullptr; }

void NSScrollView::setBackgroundColor(NSColor* color) {
    if (_clipView) _clipView->setBackgroundColor(color);
}

// MARK: Sizes

NSSize NSScrollView::contentSize() { return _clipView ? _clipView->frame().size : NSSize{}; }

NSSize NSScrollView::frameSizeForContentSize_hasHorizontalScroller_hasVerticalScroller_borderType(
    NSSize size, bool hasHorizontal, bool hasVertical, NSBorderType border) {
    const float edges = 2 * borderWidth(border), thickness = NSScroller::scrollerWidth();
    return {size.width + edges + (hasVertical ? thickness : 0),
            size.height + edges + (hasHorizontal ? thickness : 0)};
}

NSSize NSScrollView::contentSizeForFrameSize_hasHorizontalScroller_hasVerticalScroller_borderType(
    NSSize size, bool hasHorizontal, bool hasVertical, NSBorderType border) {
    const NSSize around = frameSizeForContentSize_hasHorizontalScroller_hasVerticalScroller_borderType(
        {}, hasHorizontal, hasVertical, border);
    return {std::max(size.width - around.width, 0.0F), std::max(size.height - around.height, 0.0F)};
}

// MARK: Placing the parts

// What the border leaves.
NSRect NSScrollView::room() {
    const float border = borderWidth(_borderType);
    NSRect room = NSInsetRect(bounds(), border, border);
    room.size = {std::max(NSWidth(room), 0.0F), std::max(NSHeight(room), 0.0F)};
    return room;
}

float NSScrollView::headerHeight() {
    NSView* header = _headerClip ? _headerClip->documentView() : nullptr;
    return header ? std::min(NSHeight(header->frame()), NSHeight(room())) : 0;
}

NSScrollView::Scrollers NSScrollView::wantedScrollers() {
    if (!_autohides || !documentView()) return {_vertical != nullptr, _horizontal != nullptr};
    const NSSize document = documentView()->frame().size;
    const float width = NSWidth(room()), height = NSHeight(room()) - headerHeight();
    const float thickness = NSScroller::scrollerWidth();
    // One scroller takes room that may make the other one needed.
    Scrollers wanted{_vertical && document.height > height, _horizontal && document.width > width};
    if (wanted.horizontal) wanted.vertical = _vertical && document.height > height - thickness;
    if (wanted.vertical) wanted.horizontal = _horizontal && document.width > width - thickness;
    return wanted;
}

NSScrollView::Scrollers NSScrollView::shownScrollers() {
    return {_vertical && !_vertical->isHidden(), _horizontal && !_horizontal->isHidden()};
}

void NSScrollView::takeHeader() {
    NSView* header = headerOf(documentView());
    if (!header) {
        if (const auto gone = std::move(_headerClip)) gone->removeFromSuperview();
        return;
    }
    if (!_headerClip) {
        _headerClip = NSClipView::initWithFrame({});
        addSubview(_headerClip);
    }
    _headerClip->setDocumentView(header);
}

void NSScrollView::tile() {
    if (_isTiling || !_clipView) return;
    _isTiling = true;
    const auto alive = Retained<NSScrollView>::retaining(this);
    takeHeader();
    const Scrollers has = wantedScrollers();
    const float thickness = NSScroller::scrollerWidth();
    const NSRect all = room();
    const float left = NSMinX(all), top = NSMinY(all) + headerHeight();
    const float width = std::max(NSWidth(all) - (has.vertical ? thickness : 0), 0.0F);
    const float height = std::max(NSMaxY(all) - top - (has.horizontal ? thickness : 0), 0.0F);
    if (_headerClip) _headerClip->setFrame({{left, NSMinY(all)}, {width, headerHeight()}});
    _clipView->setFrame({{left, top}, {width, height}});
    if (_vertical) {
        _vertical->setHidden(!has.vertical);
        _vertical->setFrame({{left + width, top}, {thickness, height}});
    }
    if (_horizontal) {
        _horizontal->setHidden(!has.horizontal);
        _horizontal->setFrame({{left, top + height}, {width, thickness}});
    }
    _isTiling = false;
    reflectScrolledClipView(_clipView);
}

void NSScrollView::setFrameSize(NSSize size) {
    NSView::setFrameSize(size);
    tile();
}

void NSScrollView::resizeSubviewsWithOldSize(NSSize) { tile(); }

void NSScrollView::drawRect(NSRect dirty) {
    fillRect(dirty, ThemeColor::window);
    if (_borderType != NSNoBorder) strokeRect(bounds(), metrics::kLine, ThemeColor::border);
}

// MARK: Scrolling

void NSScrollView::scrollClipView_toPoint(NSClipView* clipView, NSPoint point) {
    if (!clipView) return;
    const auto alive = Retained<NSScrollView>::retaining(this);
    const auto kept = Retained<NSClipView>::retaining(clipView);
    clipView->scrollToPoint(clipView->constrainScrollPoint(point));
    reflectScrolledClipView(clipView);
}

void NSScrollView::reflectScrolledClipView(NSClipView* clipView) {
    if (!clipView || clipView != _clipView || _isTiling) return;
    if (wantedScrollers() != shownScrollers()) return tile();
    const NSRect shown = _clipView->bounds(), whole = _clipView->documentRect();
    const auto show = [](NSScroller* scroller, float start, float shownLength, float wholeLength) {
        const float slack = wholeLength - shownLength;
        scroller->setFloatValue_knobProportion(slack > 0 ? start / slack : 0,
                                               wholeLength > 0 ? shownLength / wholeLength : 1);
    };
    if (_horizontal) show(_horizontal, NSMinX(shown) - NSMinX(whole), NSWidth(shown), NSWidth(whole));
    if (_vertical) {
        const float start =
            _clipView->isFlipped() ? NSMinY(shown) - NSMinY(whole) : NSMaxY(whole) - NSMaxY(shown);
        show(_vertical, start, NSHeight(shown), NSHeight(whole));
    }
    if (_headerClip)
        _headerClip->scrollToPoint({NSMinX(shown) - NSMinX(whole), _headerClip->bounds().origin.y});
}

// The distance is to the right and down as it is seen.
void NSScrollView::scrollBy(NSSize distance) {
    if (!_clipView) return;
    NSPoint point = _clipView->bounds().origin;
    point.x += distance.width;
    point.y += _clipView->isFlipped() ? distance.height : -distance.height;
    point = _clipView->constrainScrollPoint(point);
    if (point != _clipView->bounds().origin) scrollClipView_toPoint(_clipView, point);
}

void NSScrollView::scrollByScroller(NSScroller* scroller) {
    if (!scroller || !_clipView || (scroller != _vertical && scroller != _horizontal)) return;
    const bool isVertical = scroller == _vertical;
    const NSRect shown = _clipView->bounds(), whole = _clipView->documentRect();
    const float length = isVertical ? NSHeight(shown) : NSWidth(shown);
    float distance = std::max(length - _pageScroll, length / 2);
    switch (scroller->hitPart()) {
        case NSScrollerDecrementPage:
            distance = -distance;
            break;
        case NSScrollerIncrementPage:
            break;
        case NSScrollerKnob: {
            const float slack = (isVertical ? NSHeight(whole) : NSWidth(whole)) - length;
            const float start = !isVertical              ? NSMinX(shown) - NSMinX(whole)
                                : _clipView->isFlipped() ? NSMinY(shown) - NSMinY(whole)
                                                         : NSMaxY(whole) - NSMaxY(shown);
            distance = scroller->floatValue() * slack - start;
            break;
        }
        default:
            return;
    }
    scrollBy(isVertical ? NSSize{0, distance} : NSSize{distance, 0});
}

void NSScrollView::scrollWheel(NSEvent* event) {
    if (!event || !_clipView) return NSView::scrollWheel(event);
    const NSPoint before = _clipView->bounds().origin;
    const auto alive = Retained<NSScrollView>::retaining(this);
    float across = event->deltaX(), down = event->deltaY();
    if ((event->modifierFlags() & NSShiftKeyMask) && across == 0) std::swap(across, down);
    scrollBy({-across * _lineScroll, -down * _lineScroll});
    // At the end of the document, what is around scrolls.
    if (_clipView->bounds().origin == before) NSView::scrollWheel(event);
}

}  // namespace pelvor
