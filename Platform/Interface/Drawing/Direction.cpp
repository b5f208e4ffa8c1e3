// SPDX-License-Identifier: Apache-2.0
#include "Interface/Drawing/Direction.h"

namespace pelvor {

bool interfaceRunsFromRightToLeft() {
    return NSParagraphStyle::defaultWritingDirectionForLanguage(nullptr) == NSWritingDirectionRightToLeft;
}

bool runsFromRightToLeft(NSWritingDirection direction) {
    return direction == NSWritingDirectionNatural ? interfaceRunsFromRightToLeft()
                                                  : direction == NSWritingDirectionRightToLeft;
}

}  // namespace pelvor
