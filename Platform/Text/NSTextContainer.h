// SPDX-License-Identifier: Apache-2.0
// NSTextContainer: an area that text is laid out in.
#pragma once

#include <span>
#include <vector>

#include "Foundation/NSGeometry.h"
#include "Foundation/ObjectPrinting.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSArray;
class NSLayoutManager;

/// The direction in which the fragments of a line follow each other, and in which lines move on.
enum NSLineSweepDirection : int { NSLineSweepLeft = 0, NSLineSweepRight = 1 };
enum NSLineMovementDirection : int { NSLineDoesntMove = 0, NSLineMovesDown = 3 };

/// An area that a layout manager fills with lines: a page, a column, the width of a window. Coordinates are
/// in points, y downwards, with the origin at the upper left corner.
///
///     auto page = NSTextContainer::initWithContainerSize({451, 698});
///     page->setExclusionRects(NSArray::of({NSValue::valueWithRect({{300, 0}, {151, 120}})}));  // a picture
///     layoutManager->addTextContainer(page);
///
/// A container as high as kUnlimitedExtent or higher counts as endless: its text can be laid out in any
/// order. One thread at a time.
class PELVOR_EXPORT NSTextContainer : public NSObject {
    PELVOR_CLASS(NSTextContainer, NSObject);
    PELVOR_CREATORS(init, initWithContainerSize);

  public:
    static constexpr float kUnlimitedExtent = 1.0e6F;

    /// A container of the size 10^7 by 10^7.
    static Retained<NSTextContainer> init(Class* cls = classObject());
    static Retained<NSTextContainer> initWithContainerSize(NSSize size, Class* cls = classObject());

    NSSize containerSize() { return _size; }
    void setContainerSize(NSSize size);
    /// The room left free at both ends of each line; 5 unless it is set.
    float lineFragmentPadding() { return _padding; }
    void setLineFragmentPadding(float padding);
    /// Rectangles, as NSValue objects, that lines leave free; never null.
    NSArray* exclusionRects();
    /// Null stands for none. Raises NSInvalidArgumentException if an object of the array is no value.
    void setExclusionRects(NSArray* rectangles);

    /// The view that shows the container's text; not kept alive.
    id textView() { return _textView; }
    void setTextView(id view);
    bool widthTracksTextView() { return _widthTracksTextView; }
    void setWidthTracksTextView(bool tracks) { _widthTracksTextView = tracks; }
    bool heightTracksTextView() { return _heightTracksTextView; }
    void setHeightTracksTextView(bool tracks) { _heightTracksTextView = tracks; }

    /// The layout manager that lists the container, which sets it; not kept alive, and null once that ended.
    NSLayoutManager* layoutManager() { return _layoutManager; }
    void setLayoutManager(NSLayoutManager* layoutManager) { _layoutManager = layoutManager; }

    /// Whether every line is as wide as the container. Subclasses of other shapes return false and override
    /// the next operation.
    virtual bool isSimpleRectangularTextContainer() { return _exclusions.empty(); }
    /// The first fragment of a line that fits the proposed rectangle, in the sweep direction; it is moved
    /// down where nothing is free and movement is allowed. What is free behind it is written to `remaining`
    /// unless that is null, with a width of 0 where nothing is. Zeros if there is no room.
    ///
    /// The layout proposes a line's whole width at the place below the line before, or below a place that was
    /// too narrow for a word, with the height that the line needs as far as it is known. It asks again, with
    /// what remains and without movement, until nothing remains: `remaining` has to begin further along each
    /// time. Of the first fragment it takes the sides and the top, of the others the sides; the padding is
    /// inside. A disc returns the chord of its rectangle:
    ///
    ///     if (remaining) *remaining = {};
    ///     for (float y = NSMinY(proposed); y + NSHeight(proposed) <= 2 * radius; y += 2) {
    ///         const float far = std::max(std::abs(y - radius), std::abs(y + NSHeight(proposed) - radius));
    ///         const float half = std::sqrt(std::max(radius * radius - far * far, 0.0F));
    ///         if (half > 20) return {{radius - half, y}, {2 * half, NSHeight(proposed)}};
    ///     }
    ///     return {};
    virtual NSRect lineFragmentRectForProposedRect_sweepDirection_movementDirection_remainingRect(
        NSRect proposed, NSLineSweepDirection sweep, NSLineMovementDirection movement, NSRect* remaining);
    /// Whether the point is in the area.
    virtual bool containsPoint(NSPoint point);

    // C++ only
    std::span<const NSRect> exclusions() PELVOR_LIFETIMEBOUND { return _exclusions; }
    bool isEndless() { return _size.height >= kUnlimitedExtent; }

  protected:
    NSTextContainer() = default;
    ~NSTextContainer() = default;

  private:
    void tellOfGeometry();

    NSSize _size{1.0e7F, 1.0e7F};
    float _padding = 5;
    bool _widthTracksTextView = false;
    bool _heightTracksTextView = false;
    std::vector<NSRect> _exclusions;
    Unretained<Object> _textView = nullptr;
    Unretained<NSLayoutManager> _layoutManager = nullptr;
};

}  // namespace pelvor
