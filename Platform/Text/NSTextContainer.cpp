// SPDX-License-Identifier: Apache-2.0
#include "Text/NSTextContainer.h"

#include <algorithm>

#include "Foundation/NSArray.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSValue.h"
#include "Shared/ArgumentChecks.h"
#include "Text/NSLayoutManager.h"
#include "Text/TextLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSTextContainer, textLibrary) {
    methods.creator<"init", &NSTextContainer::init>();
    methods.creatorAs<"new", &NSTextContainer::init>();
    methods.creator<"initWithContainerSize:", &NSTextContainer::initWithContainerSize>();
    methods.instance<"containerSize", &NSTextContainer::containerSize>();
    methods.instance<"setContainerSize:", &NSTextContainer::setContainerSize>();
    methods.instance<"lineFragmentPadding", &NSTextContainer::lineFragmentPadding>();
    methods.instance<"setLineFragmentPadding:", &NSTextContainer::setLineFragmentPadding>();
    methods.instance<"exclusionRects", &NSTextContainer::exclusionRects>();
    methods.instance<"setExclusionRects:", &NSTextContainer::setExclusionRects>();
    methods.instance<"textView", &NSTextContainer::textView>();
    methods.instance<"setTextView:", &NSTextContainer::setTextView>();
    methods.instance<"widthTracksTextView", &NSTextContainer::widthTracksTextView>();
    methods.instance<"setWidthTracksTextView:", &NSTextContainer::setWidthTracksTextView>();
    methods.instance<"heightTracksTextView", &NSTextContainer::heightTracksTextView>();
    methods.instance<"setHeightTracksTextView:", &NSTextContainer::setHeightTracksTextView>();
    methods.instance<"layoutManager", &NSTextContainer::layoutManager>();
    methods.instance<"setLayoutManager:", &NSTextContainer::setLayoutManager>();
    methods
        .instance<"isSimpleRectangularTextContainer", &NSTextContainer::isSimpleRectangularTextContainer>();
    methods.instance<
        "lineFragmentRectForProposedRect:sweepDirection:movementDirection:remainingRect:",
        &NSTextContainer::lineFragmentRectForProposedRect_sweepDirection_movementDirection_remainingRect>();
    methods.instance<"containsPoint:", &NSTextContainer::containsPoint>();
}

Retained<NSTextContainer> NSTextContainer::init(Class* cls) { return make<NSTextContainer>(cls); }

Retained<NSTextContainer> NSTextContainer::initWithContainerSize(NSSize size, Class* cls) {
    auto container = make<NSTextContainer>(cls);
    container->_size = size;
    return container;
}

// MARK: Geometry

void NSTextContainer::tellOfGeometry() {
    if (_layoutManager) _layoutManager->textContainerChangedGeometry(this);
}

void NSTextContainer::setContainerSize(NSSize size) {
    if (size == _size) return;
    _size = size;
    tellOfGeometry();
}

void NSTextContainer::setLineFragmentPadding(float padding) {
    if (padding == _padding) return;
    _padding = padding;
    tellOfGeometry();
}

NSArray* NSTextContainer::exclusionRects() {
    auto rectangles = NSMutableArray::init();
    for (const NSRect& exclusion : _exclusions) rectangles->addObject(NSValue::valueWithRect(exclusion));
    return rectangles->copy().autorelease();
}

void NSTextContainer::setExclusionRects(NSArray* rectangles) {
    std::vector<NSRect> exclusions;
    for (id each : rectangles) {
        auto value = cast<NSValue>(each);
        if (!value) raiseBadArgument("setExclusionRects:", "an object of the array is no value");
        if (const NSRect rect = value->rectValue(); !NSIsEmptyRect(rect)) exclusions.push_back(rect);
    }
    _exclusions = std::move(exclusions);
    tellOfGeometry();
}

void NSTextContainer::setTextView(id view) {
    _textView = view;
    if (_layoutManager) _layoutManager->textContainerChangedTextView(this);
}

NSRect NSTextContainer::lineFragmentRectForProposedRect_sweepDirection_movementDirection_remainingRect(
    NSRect proposed, NSLineSweepDirection sweep, NSLineMovementDirection movement, NSRect* remaining) {
    if (remaining) *remaining = {};
    const float left = std::max(NSMinX(proposed), 0.0F), right = std::min(NSMaxX(proposed), _size.width);
    for (float top = proposed.origin.y; top < _size.height && left < right;) {
        const float bottom = top + proposed.size.height;
        // The free stretches of the band, from the left.
        std::vector<std::pair<float, float>> free{{left, right}};
        float next = bottom;  // where the first exclusion of the band ends
        bool isBlocked = false;
        for (const NSRect& exclusion : _exclusions) {
            if (NSMinY(exclusion) >= bottom || NSMaxY(exclusion) <= top) continue;
            next = isBlocked ? std::min(next, NSMaxY(exclusion)) : NSMaxY(exclusion);
            isBlocked = true;
            std::vector<std::pair<float, float>> rest;
            for (auto [from, to] : free) {
                if (from < NSMinX(exclusion)) rest.emplace_back(from, std::min(to, NSMinX(exclusion)));
                if (to > NSMaxX(exclusion)) rest.emplace_back(std::max(from, NSMaxX(exclusion)), to);
            }
            free = std::move(rest);
        }
        std::erase_if(free, [this](auto stretch) { return stretch.second - stretch.first <= 2 * _padding; });
        if (!free.empty()) {
            const auto [from, to] = sweep == NSLineSweepLeft ? free.back() : free.front();
            if (remaining && free.size() > 1) {
                const float start = sweep == NSLineSweepLeft ? left : to;
                const float end = sweep == NSLineSweepLeft ? from : right;
                *remaining = {{start, top}, {end - start, proposed.size.height}};
            }
            return {{from, top}, {to - from, proposed.size.height}};
        }
        if (movement == NSLineDoesntMove || !isBlocked || next <= top) break;
        top = next;
    }
    return {};
}

bool NSTextContainer::containsPoint(NSPoint point) {
    return NSPointInRect(point, {{0, 0}, _size}) &&
           std::none_of(_exclusions.begin(), _exclusions.end(),
                        [&](const NSRect& exclusion) { return NSPointInRect(point, exclusion); });
}

}  // namespace pelvor
