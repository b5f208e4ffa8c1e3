// SPDX-License-Identifier: Apache-2.0
// NSSegmentedControl: several buttons in a row, in a view.
#pragma once

#include "Interface/NSControl.h"
#include "Interface/NSSegmentedCell.h"

namespace pelvor {

/// A control of segments that are selected one at a time, independently, or only while they are pressed.
/// Where keys go to the control, the arrows to the left and right select other segments, and send the action.
///
///     auto alignment = NSSegmentedControl::initWithFrame({{20, 20}, {160, 24}});
///     alignment->setSegmentCount(2);
///     alignment->setLabel_forSegment(u"Left"_ns, 0);
///     alignment->setLabel_forSegment(u"Right"_ns, 1);
///
/// The operations are those of NSSegmentedCell. Main thread.
class PELVOR_EXPORT NSSegmentedControl : public NSControl {
    PELVOR_CLASS(NSSegmentedControl, NSControl);
    PELVOR_INHERITED_CREATORS(initWithFrame);

  public:
    static Class* cellClass() { return NSSegmentedCell::classObject(); }

    int segmentCount();
    void setSegmentCount(int count);
    int selectedSegment();
    void setSelectedSegment(int segment);
    bool isSelectedForSegment(int segment);
    void setSelected_forSegment(bool isSelected, int segment);
    bool selectSegmentWithTag(int tag);
    NSString* labelForSegment(int segment);
    void setLabel_forSegment(NSString* label, int segment);
    NSImage* imageForSegment(int segment);
    void setImage_forSegment(NSImage* image, int segment);
    float widthForSegment(int segment);
    void setWidth_forSegment(float width, int segment);
    bool isEnabledForSegment(int segment);
    void setEnabled_forSegment(bool isEnabled, int segment);

    bool acceptsFirstResponder() override;
    void keyDown(NSEvent* event) override;

  protected:
    NSSegmentedControl() = default;
    ~NSSegmentedControl() = default;

  private:
    NSSegmentedCell* segmentedCell(const char* operation);
};

}  // namespace pelvor
