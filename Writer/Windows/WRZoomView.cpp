// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/WRZoomView.h"

#include <algorithm>
#include <cmath>

#include "Foundation/NSNotificationCenter.h"
#include "Interface/NSClipView.h"
#include "Interface/NSEvent.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {
namespace {

constexpr int kMostTries = 4;  // to fit into a room that changes meanwhile

}  // namespace

PELVOR_DEFINE_CLASS(WRZoomView, windowsLibrary) {
    methods.instance<"zoom", &WRZoomView::zoom>();
    methods.instance<"setZoom:", &WRZoomView::setZoom>();
    methods.instance<"content", &WRZoomView::content>();
    methods.instance<"fitToContent", &WRZoomView::fitToContent>();
    methods.instance<"isFlipped", &WRZoomView::isFlipped>();
    methods.instance<"contentDidChange:", &WRZoomView::contentDidChange>();
    methods.instance<"viewDidMoveToSuperview", &WRZoomView::viewDidMoveToSuperview>();
    methods.instance<"scrollWheel:", &WRZoomView::scrollWheel>();
}

Retained<WRZoomView> WRZoomView::create(NSView* content) {
    auto self = cast<WRZoomView>(NSView::initWithFrame(content->frame(), WRZoomView::classObject()));
    self->_content.set(content);
    self->addSubview(content);
    return self;
}

WRZoomView::~WRZoomView() { NSNotificationCenter::defaultCenter()->removeObserver(this); }

void WRZoomView::viewDidMoveToSuperview() {
    NSView::viewDidMoveToSuperview();
    auto* centre = NSNotificationCenter::defaultCenter();
    centre->removeObserver(this);
    centre->addObserver_selector_name_object(this, "contentDidChange:"_sel, NSViewFrameDidChangeNotification,
                                             _content);
    if (NSView* clip = superview())
        centre->addObserver_selector_name_object(this, "contentDidChange:"_sel,
                                                 NSViewFrameDidChangeNotification, clip);
    fitToContent();
}

void WRZoomView::contentDidChange(id) { fitToContent(); }

// A new size may show or hide scrollers, which changes the room.
void WRZoomView::fitToContent() {
    if (std::exchange(_isFitting, true)) return;
    for (int tries = 0; tries < kMostTries; ++tries) {
        const NSSize room = superview() ? superview()->frame().size : NSSize{};
        fitToRoom(room);
        if (!superview() || superview()->frame().size == room) break;
    }
    setNeedsDisplay(true);
    _isFitting = false;
}

// The bounds are in the content's units; the content stands in their middle.
void WRZoomView::fitToRoom(NSSize room) {
    const NSSize content = _content->frame().size;
    const auto scale = static_cast<float>(_zoom);
    // Whole points, so that no rounding makes content that just fits in larger than the room.
    const NSSize size{std::max(std::floor(content.width * scale), room.width),
                      std::max(std::floor(content.height * scale), room.height)};
    setFrameSize(size);
    setBoundsSize({size.width / scale, size.height / scale});
    _content->setFrameOrigin({std::max((size.width / scale - content.width) / 2, 0.0F), 0});
}

void WRZoomView::setZoom(double zoom) {
    zoom = std::clamp(zoom, 0.1, 8.0);
    if (zoom == _zoom) return;
    auto* clip = cast<NSClipView>(static_cast<id>(superview()));
    const NSRect seen = _content->visibleRect();
    const bool isAllSeen = NSHeight(seen) >= NSHeight(_content->bounds());
    const NSPoint middle{NSMidX(seen), isAllSeen ? 0 : NSMidY(seen)};
    _zoom = zoom;
    fitToContent();
    if (!clip) return;
    const NSSize room = clip->bounds().size;
    const auto scale = static_cast<float>(zoom);
    scrollPoint(
        {middle.x + _content->frame().origin.x - room.width / scale / 2, middle.y - room.height / scale / 2});
}

void WRZoomView::scrollWheel(NSEvent* event) {
    if (!event || !(event->modifierFlags() & NSCommandKeyMask)) return NSView::scrollWheel(event);
    if (event->deltaY() == 0) return;
    const auto alive = Retained<WRZoomView>::retaining(this);
    const NSPoint place = event->locationInWindow();
    const NSPoint before = _content->convertPoint_fromView(place, nullptr);
    tryToPerform_with(event->deltaY() > 0 ? "zoomIn:"_sel : "zoomOut:"_sel, this);
    const NSPoint after = _content->convertPoint_fromView(place, nullptr);
    const NSPoint corner = visibleRect().origin;
    scrollPoint({corner.x + before.x - after.x, corner.y + before.y - after.y});
}

}  // namespace pelvor
