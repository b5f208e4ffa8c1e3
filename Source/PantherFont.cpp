// SPDX-License-Identifier: Apache-2.0
#include "PantherFont.h"

#include "BaseTextLibrary.h"
#include "PantherCompatibility.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PantherFont, baseTextLibrary) {
    methods.classLevel<"performPosing", &PantherFont::performPosing>();
    methods.classLevel<"systemFontSizeForControlSize:", &PantherFont::systemFontSizeForControlSize>();
    methods.classLevel<"menuBarFontOfSize:", &PantherFont::menuBarFontOfSize>();
}

void PantherFont::performPosing() { poseOnOldPlatforms(classObject()); }

float PantherFont::systemFontSizeForControlSize(NSControlSize controlSize) {
    const bool isSmall = controlSize == NSSmallControlSize || controlSize == NSMiniControlSize;
    return isSmall ? smallSystemFontSize() : systemFontSize();
}

NSFont* PantherFont::menuBarFontOfSize(float size) { return systemFontOfSize(size); }

}  // namespace pelvor
