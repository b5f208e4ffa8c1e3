// SPDX-License-Identifier: Apache-2.0
// Whether what the library draws begins at the left or at the right.
#pragma once

#include "Text/NSParagraphStyle.h"

namespace pelvor {

/// Whether menus and panels run from right to left, as the user's language is written.
bool interfaceRunsFromRightToLeft();
/// Whether a control with this base direction runs from right to left; a natural one does if menus do.
bool runsFromRightToLeft(NSWritingDirection direction);

}  // namespace pelvor
