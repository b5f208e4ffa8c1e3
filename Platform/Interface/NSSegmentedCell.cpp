// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSSegmentedCell.h"

#include <algorithm>
#include <cmath>

#include "Foundation/NSMutableDictionary.h"
#include "Interface/Drawing/Direction.h"
#include "Interface/Drawing/Shapes.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSControl.h"
#include "Interface/NSImage.h"
#include "Shared/ArgumentChecks.h"
#include "Text/NSColor.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSSegmentedCell, interfaceLibrary) {
    methods.instance<"segmentCount", &NSSegmentedCell::segmentCount>();
    methods.instance<"setSegmentCount:", &NSSegmentedCell::setSegmentCount>();
    methods.instance<"trackingMode", &NSSegmentedCell::trackingMode>();
    methods.instance<"setTrackingMode:", &NSSegmentedCell::setTrackingMode>();
    methods.instance<"selectedSegment", &NSSegmentedCell::selectedSegment>();
    methods.instance<"setSelectedSegment:", &NSSegmentedCell::setSelectedSegment>();
    methods.instance<"isSelectedForSegment:", &NSSegmentedCell::isSelectedForSegment>();
    methods.instance<"setSelected:forSegment:", &NSSegmentedCell::setSelected_forSegment>();
    methods.instance<"selectSegmentWithTag:", &NSSegmentedCell::selectSegmentWithTag>();
    methods.instance<"makeNextSegmentKey", &NSSegmentedCell::makeNextSegmentKey>();
    methods.instance<"makePreviousSegmentKey", &NSSegmentedCell::makePreviousSegmentKey>();
    methods.instance<"labelForSegment:", &NSSegmentedCell::labelForSegment>();
    methods.instance<"setLabel:forSegment:", &NSSegmentedCell::setLabel_forSegment>();
    methods.instance<"imageForSegment:", &NSSegmentedCell::imageForSegment>();
    methods.instance<"setImage:forSegment:", &NSSegmentedCell::setImage_forSegment>();
    methods.instance<"widthForSegment:", &NSSegmentedCell::widthForSegment>();
    methods.instance<"setWidth:forSegment:", &NSSegmentedCell::setWidth_forSegment>();
    methods.instance<"isEnabledForSegment:", &NSSegmentedCell::isEnabledForSegment>();
    methods.instance<"setEnabled:forSegment:", &NSSegmentedCell::setEnabled_forSegment>();
    methods.instance<"tagForSegment:", &NSSegmentedCell::tagForSegment>();
    methods.instance<"setTag:forSegment:", &NSSegmentedCell::setTag_forSegment>();
    methods.instance<"drawSegment:inFrame:withView:", &NSSegmentedCell::drawSegment_inFrame_withView>();
    methods.classLevel<"prefersTrackingUntilMouseUp", &NSSegmentedCell::prefersTrackingUntilMouseUp>();
}

NSSegmentedCell::NSSegmentedCell() { _values.alignment = NSCenterTextAlignment; }

void NSSegmentedCell::takeProperties(NSCell* other) {
    NSActionCell::takeProperties(other);
    auto* segmented = static_cast<NSSegmentedCell*>(other);
    _segments = segmented->_segments;
    _trackingMode = segmented->_trackingMode;
    _selected = segmented->_selected;
}

NSSegmentedCell::Segment& NSSegmentedCell::at(int segment, const char* operation) {
    requireIndex(static_cast<NSUInteger>(segment), static_cast<NSUInteger>(_segments.size()), operation);
    return _segments[static_cast<std::size_t>(segment)];
}

// MARK: Segments

void NSSegmentedCell::setSegmentCount(int count) {
    constexpr NSUInteger kMost = 2048;
    requirePlace(static_cast<NSUInteger>(count), kMost, "setSegmentCount:");
    _segments.resize(static_cast<std::size_t>(count));
    if (_selected >= count) _selected = -1;
    changed();
}

NSString* NSSegmentedCell::labelForSegment(int segment) { return at(segment, "labelForSegment:").label; }

void NSSegmentedCell::setLabel_forSegment(NSString* label, int segment) {
    at(segment, "setLabel:forSegment:").label = label ? label->copy() : nullptr;
    changed();
}

NSImage* NSSegmentedCell::imageForSegment(int segment) { return at(segment, "imageForSegment:").image; }

void NSSegmentedCell::setImage_forSegment(NSImage* image, int segment) {
    at(segment, "setImage:forSegment:").image.set(image);
    changed();
}

float NSSegmentedCell::widthForSegment(int segment) { return at(segment, "widthForSegment:").width; }

void NSSegmentedCell::setWidth_forSegment(float width, int segment) {
    at(segment, "setWidth:forSegment:").width = std::isfinite(width) ? std::max(width, 0.0f) : 0;
    changed();
}

bool NSSegmentedCell::isEnabledForSegment(int segment) {
    return at(segment, "isEnabledForSegment:").isEnabled;
}

void NSSegmentedCell::setEnabled_forSegment(bool isEnabled, int segment) {
    at(segment, "setEnabled:forSegment:").isEnabled = isEnabled;
    changed();
}

int NSSegmentedCell::tagForSegment(int segment) { return at(segment, "tagForSegment:").tag; }

void NSSegmentedCell::setTag_forSegment(int tag, int segment) { at(segment, "setTag:forSegment:").tag = tag; }

// MARK: Selection

void NSSegmentedCell::setSelectedSegment(int segment) {
    if (segment != -1) return setSelected_forSegment(true, segment);
    if (_trackingMode == NSSegmentSwitchTrackingSelectOne)
        for (Segment& each : _segments) each.isSelected = false;
    _selected = -1;
    changed();
}

bool NSSegmentedCell::isSelectedForSegment(int segment) {
    return at(segment, "isSelectedForSegment:").isSelected;
}

void NSSegmentedCell::setSelected_forSegment(bool isSelected, int segment) {
    Segment& changing = at(segment, "setSelected:forSegment:");
    if (isSelected && _trackingMode == NSSegmentSwitchTrackingSelectOne)
        for (Segment& each : _segments) each.isSelected = false;
    changing.isSelected = isSelected;
    if (isSelected)
        _selected = segment;
    else if (_selected == segment)
        _selected = -1;
    changed();
}

bool NSSegmentedCell::selectSegmentWithTag(int tag) {
    const auto found = std::find_if(_segments.begin(), _segments.end(),
                                    [tag](const Segment& segment) { return segment.tag == tag; });
    if (found == _segments.end()) return false;
    setSelectedSegment(static_cast<int>(found - _segments.begin()));
    return true;
}

void NSSegmentedCell::selectBeside(int step) {
    const int count = segmentCount();
    int segment = _selected < 0 && step < 0 ? 0 : _selected;
    for (int tried = 0; tried < count; ++tried) {
        segment = (segment + step + count) % count;
        if (_segments[static_cast<std::size_t>(segment)].isEnabled) return setSelectedSegment(segment);
    }
}

// MARK: Room and drawing

float NSSegmentedCell::widthOf(const Segment& segment) {
    if (segment.width > 0) return segment.width;
    float width = 2 * metrics::kSegmentInset;
    if (segment.image) width += segment.image->size().width;
    if (segment.label) width += std::ceil(sizeOfText_width(segment.label, 1.0e4f).width);
    if (segment.image && segment.label) width += metrics::kImageGap;
    return width;
}

NSSize NSSegmentedCell::cellSizeForBounds(NSRect) {
    float width = 0;
    for (const Segment& segment : _segments) width += widthOf(segment);
    return {std::max(width, metrics::kLine),
            std::ceil(std::max(metrics::kButtonHeight - 2, font()->defaultLineHeightForFont() + 6))};
}

NSRect NSSegmentedCell::rectOfSegment_inFrame(int segment, NSRect frame) {
    const Segment& shown = at(segment, "rectOfSegment:inFrame:");
    const bool isRightToLeft = runsFromRightToLeft(baseWritingDirection());
    const float total = cellSizeForBounds(frame).width;
    // A frame that is narrower than the segments makes all of them narrower.
    const float factor = std::min(1.0f, frame.size.width / total);
    float x = 0;
    for (int i = 0; i < segment; ++i) x += factor * widthOf(_segments[static_cast<std::size_t>(i)]);
    const float width = factor * widthOf(shown);
    return {{isRightToLeft ? NSMaxX(frame) - x - width : frame.origin.x + x, frame.origin.y},
            {width, frame.size.height}};
}

void NSSegmentedCell::drawInteriorWithFrame_inView(NSRect frame, NSView* view) {
    _lastFrame = frame;
    if (_segments.empty()) return;
    const NSRect all =
        NSUnionRect(rectOfSegment_inFrame(0, frame), rectOfSegment_inFrame(segmentCount() - 1, frame));
    fillRounded(all, metrics::kCornerRadius, ThemeColor::button);
    for (int i = 0; i < segmentCount(); ++i) {
        const NSRect place = rectOfSegment_inFrame(i, frame);
        const Segment& segment = _segments[static_cast<std::size_t>(i)];
        if (i == _pressed || segment.isSelected)
            fillRounded(NSInsetRect(place, metrics::kLine, metrics::kLine), metrics::kCornerRadius - 1,
                        i == _pressed ? ThemeColor::pressedButton
                        : isEnabled() ? ThemeColor::accent
                                      : ThemeColor::inactiveSelection);
        if (i > 0) {
            const bool isRightToLeft = runsFromRightToLeft(baseWritingDirection());
            const float edge = isRightToLeft ? NSMaxX(place) : NSMinX(place);
            fillRect({{std::floor(edge), place.origin.y + 5}, {metrics::kLine, place.size.height - 10}},
                     ThemeColor::grid);
        }
        drawSegment_inFrame_withView(i, place, view);
    }
    strokeRounded(all, metrics::kCornerRadius, metrics::kLine, ThemeColor::border);
    if (showsFirstResponder())
        drawFocusRing(NSInsetRect(all, metrics::kFocusRing, metrics::kFocusRing), metrics::kCornerRadius);
}

void NSSegmentedCell::drawSegment_inFrame_withView(int segment, NSRect frame, NSView*) {
    const Segment& shown = at(segment, "drawSegment:inFrame:withView:");
    const bool isUsable = isEnabled() && shown.isEnabled;
    frame = NSInsetRect(frame, 2, 0);
    if (shown.image) {
        NSRect place = frame;
        if (shown.label)
            NSDivideRect(NSInsetRect(frame, metrics::kSegmentInset - 2, 0), &place, &frame,
                         shown.image->size().width,
                         runsFromRightToLeft(baseWritingDirection()) ? NSMaxXEdge : NSMinXEdge);
        shown.image->drawInRect_fromRect_operation_fraction(
            fittedImage(shown.image->size(), place, NSScaleProportionally), NSZeroRect, NSCompositeSourceOver,
            isUsable ? 1 : 0.4f);
    }
    if (!shown.label) return;
    auto attributes = textAttributes()->mutableCopy();
    const ThemeColor ink = !isUsable                                 ? ThemeColor::disabledText
                           : shown.isSelected && segment != _pressed ? ThemeColor::textOnAccent
                                                                     : ThemeColor::text;
    attributes->setObject_forKey(themeColor(ink), NSForegroundColorAttributeName);
    auto label = NSAttributedString::initWithString_attributes(shown.label, attributes);
    drawText_inRect(label, frame);
}

// MARK: Mouse

int NSSegmentedCell::segmentAtPoint(NSPoint point) {
    auto* control = cast<NSControl>(controlView());
    const NSRect frame = control ? control->bounds() : _lastFrame;
    for (int i = 0; i < segmentCount(); ++i)
        if (NSPointInRect(point, rectOfSegment_inFrame(i, frame)))
            return _segments[static_cast<std::size_t>(i)].isEnabled ? i : -1;
    return -1;
}

void NSSegmentedCell::press(int segment) {
    if (segment == _pressed) return;
    _pressed = segment;
    changed();
}

bool NSSegmentedCell::startTrackingAt_inView(NSPoint start, NSView*) {
    _tracked = segmentAtPoint(start);
    press(_tracked);
    return _tracked >= 0;
}

bool NSSegmentedCell::continueTracking_at_inView(NSPoint, NSPoint current, NSView*) {
    press(segmentAtPoint(current) == _tracked ? _tracked : -1);
    return true;
}

void NSSegmentedCell::stopTracking_at_inView_mouseIsUp(NSPoint, NSPoint stop, NSView*, bool mouseIsUp) {
    press(-1);
    _isReleasedElsewhere = mouseIsUp && segmentAtPoint(stop) != _tracked;
    if (!mouseIsUp || _isReleasedElsewhere) return;
    const bool takesAway =
        _trackingMode == NSSegmentSwitchTrackingSelectAny && isSelectedForSegment(_tracked);
    setSelected_forSegment(!takesAway, _tracked);
}

void NSSegmentedCell::sendAction() {
    if (std::exchange(_isReleasedElsewhere, false)) return;
    NSActionCell::sendAction();
    if (_trackingMode == NSSegmentSwitchTrackingMomentary && _selected >= 0)
        setSelected_forSegment(false, _selected);
}

}  // namespace pelvor
