// SPDX-License-Identifier: Apache-2.0
// What few views have, and what serves views with many subviews.
#pragma once

#include <vector>

#include "Foundation/NSString.h"
#include "Interface/NSCursor.h"
#include "Interface/NSMenu.h"
#include "Interface/NSView.h"
#include "Interface/Windows/ViewGeometry.h"

namespace pelvor {

struct CursorRect {
    NSRect rect;
    Retained<NSCursor> cursor;
};

struct NSView::Extras {
    Unretained<NSView> nextKeyView = nullptr;
    Unretained<NSView> previousKeyView = nullptr;
    std::vector<CursorRect> cursorRects;
    std::uint64_t cursorGeneration = 0;  // of the window's geometry, when the rectangles were set
    Retained<NSString> toolTip;
    Retained<NSArray> draggedTypes;
    Retained<NSMenu> menu;
};

/// The rectangles around blocks of neighbouring subviews, by which a search leaves out most of many.
struct NSView::SubviewBlocks {
    static constexpr std::size_t kLength = 32;
    std::vector<ViewRect> boxes;
    bool isValid = false;
};

/// Visits the visible subviews that touch the rectangle, which is in the view's coordinates, from the back to
/// the front or the other way round, until a visit returns true. The list may change meanwhile.
template <class Visit>
void NSView::eachSubviewIn(const ViewRect& rect, bool frontFirst, const Visit& visit) {
    constexpr std::size_t kLength = SubviewBlocks::kLength;
    const std::size_t count = _subviews.size();
    if (count > 2 * kLength && !(_blocks && _blocks->isValid)) {
        if (!_blocks) _blocks = std::make_unique<SubviewBlocks>();
        _blocks->boxes.clear();
        for (std::size_t i = 0; i < count; ++i) {
            const ViewRect box = ViewRect::of(_subviews[i]->_frame);
            if (i % kLength == 0)
                _blocks->boxes.push_back(box);
            else
                _blocks->boxes.back().unite(box);
        }
        _blocks->isValid = true;
    }
    for (std::size_t step = 0; step < count;) {
        const std::size_t index = frontFirst ? count - 1 - step : step;
        if (index >= _subviews.size()) {
            ++step;
            continue;
        }
        // The edges belong to the search: a point is a rectangle without extent.
        const auto touches = [&](const ViewRect& box) {
            return box.left <= rect.right && rect.left <= box.right && box.bottom <= rect.top &&
                   rect.bottom <= box.top;
        };
        const std::size_t block = index / kLength;
        if (_blocks && _blocks->isValid && block < _blocks->boxes.size() && !touches(_blocks->boxes[block])) {
            step += frontFirst ? index - block * kLength + 1 : kLength - index % kLength;
            continue;
        }
        ++step;
        NSView* subview = _subviews[index];
        if (subview->_isHidden || !touches(ViewRect::of(subview->_frame))) continue;
        if (visit(subview)) return;
    }
}

}  // namespace pelvor
