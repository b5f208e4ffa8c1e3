// SPDX-License-Identifier: Apache-2.0
// The classes of Text, for headers that only name them: the floor's table of contents.
#pragma once

#include "Foundation/Forward.h"

namespace pelvor {

// Paragraphs
class NSMutableParagraphStyle;  ///< a paragraph style that can be changed
class NSParagraphStyle;         ///< how the lines of a paragraph are set
class NSTextTab;                ///< a tab stop

}  // namespace pelvor
