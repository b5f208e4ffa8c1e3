// SPDX-License-Identifier: Apache-2.0
#include "NSView-PelvorAdditions.h"

#include <cmath>
#include <vector>

#include "Interface/NSClipView.h"
#include "PBIdleQueue.h"
#include "Runtime/Message.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSView>& methods) {
    methods.instance<"delayedRemoveFromSuperview", &delayedRemoveFromSuperview>();
    methods.instance<"releaseAndRemoveFromSuperview", &releaseAndRemoveFromSuperview>();
    methods.instance<"zoomFactor", &zoomFactor>();
    methods.instance<"horizontalZoomFactor", &horizontalZoomFactor>();
    methods.instance<"verticalZoomFactor", &verticalZoomFactor>();
    methods
        .instance<"offsetFromWholePixelOnScreenConsiderZoom:", &offsetFromWholePixelOnScreenConsiderZoom>();
    methods.instance<"saneSubviewFrameOrigin:", &saneSubviewFrameOrigin>();
    methods.instance<"replaceContentsWithContentsOfView:", &replaceContentsWithContentsOfView>();
}

constexpr NSPoint kOutOfSight{1000000, 1000000};

PBIdleQueue* removals() {
    static PBIdleQueue* const queue =
        PBIdleQueue::initWithSelector("releaseAndRemoveFromSuperview"_sel).leak();
    return queue;
}

// The part behind the point, with the sign of the number.
float fractionOf(float number) { return number - std::trunc(number); }

float saneCoordinate(float wanted, float offset) {
    const float distance = offset - fractionOf(wanted);
    return wanted + (std::abs(distance) > 0.5F ? 1 - std::abs(distance) : distance);
}

std::vector<Retained<NSView>> subviewsOf(NSView* view) {
    std::vector<Retained<NSView>> subviews;
    for (id each : view->subviews()) subviews.push_back(Retained<NSView>::retaining(cast<NSView>(each)));
    return subviews;
}

}  // namespace

constinit const Category NSView_PelvorAdditions_category =
    Category::of<NSView, defineAdditions>("PelvorAdditions");

void delayedRemoveFromSuperview(NSView* view) {
    requireArgument(view, "delayedRemoveFromSuperview", "the view");
    if (!view->superview()) return;
    // The queue refers to the view without keeping it.
    view->retain();
    view->setFrameOrigin(kOutOfSight);
    removals()->addObject(view);
}

void releaseAndRemoveFromSuperview(NSView* view) {
    requireArgument(view, "releaseAndRemoveFromSuperview", "the view");
    view->removeFromSuperview();
    view->release();
}

double zoomFactor(NSView* view) {
    requireArgument(view, "zoomFactor", "the view");
    const SEL zoom = "zoom"_sel;
    for (NSView* around = view->superview(); around; around = around->superview())
        if (around->respondsToSelector(zoom)) return send<double>(around, zoom);
    return 1;
}

float horizontalZoomFactor(NSView* view) {
    requireArgument(view, "horizontalZoomFactor", "the view");
    return NSWidth(view->frame()) / NSWidth(view->bounds());
}

float verticalZoomFactor(NSView* view) {
    requireArgument(view, "verticalZoomFactor", "the view");
    return NSHeight(view->frame()) / NSHeight(view->bounds());
}

NSPoint offsetFromWholePixelOnScreenConsiderZoom(NSView* view, bool considersZoom) {
    requireArgument(view, "offsetFromWholePixelOnScreenConsiderZoom:", "the view");
    NSPoint place;
    if (considersZoom) {
        place = view->convertPoint_toView({0, 0}, nullptr);
    } else {
        // Up to the clip view; the view itself may be one.
        for (NSView* each = view; each && (each == view || !cast<NSClipView>(each));
             each = each->superview()) {
            place.x += each->frame().origin.x;
            place.y += each->frame().origin.y;
        }
    }
    return {std::abs(fractionOf(place.x)), std::abs(fractionOf(place.y))};
}

NSPoint saneSubviewFrameOrigin(NSView* view, NSPoint origin) {
    requireArgument(view, "saneSubviewFrameOrigin:", "the view");
    const NSPoint offset = offsetFromWholePixelOnScreenConsiderZoom(view, false);
    return {saneCoordinate(origin.x, offset.x), saneCoordinate(origin.y, offset.y)};
}

void replaceContentsWithContentsOfView(NSView* view, NSView* other) {
    requireArgument(view, "replaceContentsWithContentsOfView:", "the view");
    if (!other) return;
    const auto kept = Retained<NSView>::retaining(view), source = Retained<NSView>::retaining(other);
    const auto old = subviewsOf(view);
    for (auto each = old.rbegin(); each != old.rend(); ++each)
        if ((*each)->superview() == view) (*each)->removeFromSuperview();
    const bool isMirrored = view->isFlipped() != other->isFlipped();
    for (const auto& moved : subviewsOf(other)) {
        const NSRect frame = moved->frame();
        if (isMirrored) moved->setFrameOrigin({NSMinX(frame), NSHeight(other->frame()) - NSMaxY(frame)});
        view->addSubview(moved);
    }
}

}  // namespace pelvor
