// SPDX-License-Identifier: Apache-2.0
#include "PantherCursor.h"

#include "BaseInterfaceLibrary.h"
#include "PantherCompatibility.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PantherCursor, baseInterfaceLibrary) {
    methods.classLevel<"performPosing", &PantherCursor::performPosing>();
    methods.classLevel<"closedHandCursor", &PantherCursor::closedHandCursor>();
    methods.classLevel<"crosshairCursor", &PantherCursor::crosshairCursor>();
    methods.classLevel<"openHandCursor", &PantherCursor::openHandCursor>();
    methods.classLevel<"resizeLeftCursor", &PantherCursor::resizeLeftCursor>();
    methods.classLevel<"resizeRightCursor", &PantherCursor::resizeRightCursor>();
    methods.classLevel<"resizeLeftRightCursor", &PantherCursor::resizeLeftRightCursor>();
    methods.classLevel<"resizeUpCursor", &PantherCursor::resizeUpCursor>();
    methods.classLevel<"resizeDownCursor", &PantherCursor::resizeDownCursor>();
    methods.classLevel<"resizeUpDownCursor", &PantherCursor::resizeUpDownCursor>();
    methods.classLevel<"pointingHandCursor", &PantherCursor::pointingHandCursor>();
}

void PantherCursor::performPosing() { poseOnOldPlatforms(classObject()); }

NSCursor* PantherCursor::closedHandCursor() { return NSCursor::closedHandCursor(); }
NSCursor* PantherCursor::crosshairCursor() { return NSCursor::crosshairCursor(); }
NSCursor* PantherCursor::openHandCursor() { return NSCursor::openHandCursor(); }
NSCursor* PantherCursor::resizeLeftCursor() { return NSCursor::resizeLeftCursor(); }
NSCursor* PantherCursor::resizeRightCursor() { return NSCursor::resizeRightCursor(); }
NSCursor* PantherCursor::resizeLeftRightCursor() { return NSCursor::resizeLeftRightCursor(); }
NSCursor* PantherCursor::resizeUpCursor() { return NSCursor::resizeUpDownCursor(); }
NSCursor* PantherCursor::resizeDownCursor() { return NSCursor::resizeUpDownCursor(); }
NSCursor* PantherCursor::resizeUpDownCursor() { return NSCursor::resizeUpDownCursor(); }
NSCursor* PantherCursor::pointingHandCursor() { return NSCursor::arrowCursor(); }

}  // namespace pelvor
