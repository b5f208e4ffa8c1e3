// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSSegmentedControl.h"

#include "Interface/Drawing/Direction.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSEvent.h"
#include "Runtime/NSException.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSSegmentedControl, interfaceLibrary) {
    methods.classLevel<"cellClass", &NSSegmentedControl::cellClass>();
    methods.instance<"segmentCount", &NSSegmentedControl::segmentCount>();
    methods.instance<"setSegmentCount:", &NSSegmentedControl::setSegmentCount>();
    methods.instance<"selectedSegment", &NSSegmentedControl::selectedSegment>();
    methods.instance<"setSelectedSegment:", &NSSegmentedControl::setSelectedSegment>();
    methods.instance<"isSelectedForSegment:", &NSSegmentedControl::isSelectedForSegment>();
    methods.instance<"setSelected:forSegment:", &NSSegmentedControl::setSelected_forSegment>();
    methods.instance<"selectSegmentWithTag:", &NSSegmentedControl::selectSegmentWithTag>();
    methods.instance<"labelForSegment:", &NSSegmentedControl::labelForSegment>();
    methods.instance<"setLabel:forSegment:", &NSSegmentedControl::setLabel_forSegment>();
    methods.instance<"imageForSegment:", &NSSegmentedControl::imageForSegment>();
    methods.instance<"setImage:forSegment:", &NSSegmentedControl::setImage_forSegment>();
    methods.instance<"widthForSegment:", &NSSegmentedControl::widthForSegment>();
    methods.instance<"setWidth:forSegment:", &NSSegmentedControl::setWidth_forSegment>();
    methods.instance<"isEnabledForSegment:", &NSSegmentedControl::isEnabledForSegment>();
    methods.instance<"setEnabled:forSegment:", &NSSegmentedControl::setEnabled_forSegment>();
}

// The control's cell, which a program may have replaced by a cell without segments.
NSSegmentedCell* NSSegmentedControl::segmentedCell(const char* operation) {
    auto* segmented = cast<NSSegmentedCell>(cell());
    if (!segmented) raiseBadArgument(operation, "the control's cell has no segments");
    return segmented;
}

int NSSegmentedControl::segmentCount() { return segmentedCell("segmentCount")->segmentCount(); }

void NSSegmentedControl::setSegmentCount(int count) {
    segmentedCell("setSegmentCount:")->setSegmentCount(count);
}

int NSSegmentedControl::selectedSegment() { return segmentedCell("selectedSegment")->selectedSegment(); }

void NSSegmentedControl::setSelectedSegment(int segment) {
    segmentedCell("setSelectedSegment:")->setSelectedSegment(segment);
}

bool NSSegmentedControl::isSelectedForSegment(int segment) {
    return segmentedCell("isSelectedForSegment:")->isSelectedForSegment(segment);
}

void NSSegmentedControl::setSelected_forSegment(bool isSelected, int segment) {
    segmentedCell("setSelected:forSegment:")->setSelected_forSegment(isSelected, segment);
}

bool NSSegmentedControl::selectSegmentWithTag(int tag) {
    return segmentedCell("selectSegmentWithTag:")->selectSegmentWithTag(tag);
}

NSString* NSSegmentedControl::labelForSegment(int segment) {
    return segmentedCell("labelForSegment:")->labelForSegment(segment);
}

void NSSegmentedControl::setLabel_forSegment(NSString* label, int segment) {
    segmentedCell("setLabel:forSegment:")->setLabel_forSegment(label, segment);
}

NSImage* NSSegmentedControl::imageForSegment(int segment) {
    return segmentedCell("imageForSegment:")->imageForSegment(segment);
}

void NSSegmentedControl::setImage_forSegment(NSImage* image, int segment) {
    segmentedCell("setImage:forSegment:")->setImage_forSegment(image, segment);
}

float NSSegmentedControl::widthForSegment(int segment) {
    return segmentedCell("widthForSegment:")->widthForSegment(segment);
}

void NSSegmentedControl::setWidth_forSegment(float width, int segment) {
    segmentedCell("setWidth:forSegment:")->setWidth_forSegment(width, segment);
}

bool NSSegmentedControl::isEnabledForSegment(int segment) {
    return segmentedCell("isEnabledForSegment:")->isEnabledForSegment(segment);
}

void NSSegmentedControl::setEnabled_forSegment(bool isEnabled, int segment) {
    segmentedCell("setEnabled:forSegment:")->setEnabled_forSegment(isEnabled, segment);
}

bool NSSegmentedControl::acceptsFirstResponder() {
    return !isInMouseDown() && NSControl::acceptsFirstResponder();
}

void NSSegmentedControl::keyDown(NSEvent* event) {
    const unichar key = event && event->characters()->length() ? event->characters()->characterAtIndex(0) : 0;
    auto* segmented = cast<NSSegmentedCell>(cell());
    const bool isRightToLeft = runsFromRightToLeft(baseWritingDirection());
    if (!segmented || !isEnabled() || (key != NSLeftArrowFunctionKey && key != NSRightArrowFunctionKey))
        return NSControl::keyDown(event);
    if ((key == NSLeftArrowFunctionKey) == isRightToLeft)
        segmented->makeNextSegmentKey();
    else
        segmented->makePreviousSegmentKey();
    sendAction_to(action(), target());
}

}  // namespace pelvor
