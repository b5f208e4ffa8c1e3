// SPDX-License-Identifier: Apache-2.0
// NSSegmentedCell: several buttons in a row.
#pragma once

#include <vector>

#include "Interface/NSActionCell.h"

namespace pelvor {

/// What a click on a segment does.
enum NSSegmentSwitchTracking : int {
    NSSegmentSwitchTrackingSelectOne = 0,  ///< selects this segment alone
    NSSegmentSwitchTrackingSelectAny = 1,  ///< selects the segment or takes its selection away
    NSSegmentSwitchTrackingMomentary = 2,  ///< selects it as long as the action runs
};

/// The segments of a segmented control, counted from 0. An index that is not below the number of segments
/// raises NSRangeException.
///
///     cell->setSegmentCount(3);
///     cell->setLabel_forSegment(u"Left"_ns, 0);
///     cell->setSelectedSegment(0);
///
/// Main thread.
class PELVOR_EXPORT NSSegmentedCell : public NSActionCell {
    PELVOR_CLASS(NSSegmentedCell, NSActionCell);
    PELVOR_INHERITED_CREATORS(init, initTextCell, initImageCell);

  public:
    int segmentCount() { return static_cast<int>(_segments.size()); }
    /// Adds empty segments or takes segments away, at the end. Raises NSRangeException for a negative number
    /// or one above 2048.
    void setSegmentCount(int count);
    NSSegmentSwitchTracking trackingMode() { return _trackingMode; }
    void setTrackingMode(NSSegmentSwitchTracking mode) { _trackingMode = mode; }

    /// The segment that was selected last, -1 for none.
    int selectedSegment() { return _selected; }
    /// Selects the segment; -1 takes the selection away where one is selected at a time.
    void setSelectedSegment(int segment);
    bool isSelectedForSegment(int segment);
    void setSelected_forSegment(bool isSelected, int segment);
    /// Selects the first segment with that tag. Returns whether there is one.
    bool selectSegmentWithTag(int tag);
    /// Selects the next or previous segment that is enabled, round the end.
    void makeNextSegmentKey() { selectBeside(1); }
    void makePreviousSegmentKey() { selectBeside(-1); }

    NSString* labelForSegment(int segment);
    /// Copies the label; null stands for none.
    void setLabel_forSegment(NSString* label, int segment);
    NSImage* imageForSegment(int segment);
    void setImage_forSegment(NSImage* image, int segment);
    /// In points; 0, as at first, for a width that fits label and image.
    float widthForSegment(int segment);
    void setWidth_forSegment(float width, int segment);
    bool isEnabledForSegment(int segment);
    void setEnabled_forSegment(bool isEnabled, int segment);
    int tagForSegment(int segment);
    void setTag_forSegment(int tag, int segment);

    /// The segment's label and image, inside its frame.
    virtual void drawSegment_inFrame_withView(int segment, NSRect frame, NSView* view);

    NSSize cellSizeForBounds(NSRect bounds) override;
    void drawInteriorWithFrame_inView(NSRect frame, NSView* view) override;
    bool startTrackingAt_inView(NSPoint start, NSView* view) override;
    bool continueTracking_at_inView(NSPoint last, NSPoint current, NSView* view) override;
    void stopTracking_at_inView_mouseIsUp(NSPoint last, NSPoint stop, NSView* view, bool mouseIsUp) override;
    static bool prefersTrackingUntilMouseUp() { return true; }

    // C++ only

    /// The frame of the segment where the cell fills `frame`.
    NSRect rectOfSegment_inFrame(int segment, NSRect frame);

  protected:
    NSSegmentedCell();
    ~NSSegmentedCell() = default;

    void takeProperties(NSCell* other) override;
    void sendAction() override;

  private:
    struct Segment {
        Retained<NSString> label;
        Retained<NSImage> image;
        float width = 0;
        int tag = 0;
        bool isEnabled = true;
        bool isSelected = false;
    };

    Segment& at(int segment, const char* operation);
    float widthOf(const Segment& segment);
    int segmentAtPoint(NSPoint point);
    void press(int segment);
    void selectBeside(int step);

    std::vector<Segment> _segments;
    NSSegmentSwitchTracking _trackingMode = NSSegmentSwitchTrackingSelectOne;
    int _selected = -1;
    int _pressed = -1;
    int _tracked = -1;
    bool _isReleasedElsewhere = false;  // so that no action is sent
    NSRect _lastFrame;
};

}  // namespace pelvor
