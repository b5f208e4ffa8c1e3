// SPDX-License-Identifier: Apache-2.0
// Numbers as the user writes them.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

/// The number, as formats of strings write it ("12.7"), with the decimal separator of the first of the user's
/// languages: "12,7" in German. Borrowed. Any thread, as long as no thread changes the environment.
PELVOR_EXPORT NSString* localizedNumber(NSString* number);

/// What the user has written, "12,7" or "12.7", as scanners read it: "12.7". Borrowed. Any thread.
PELVOR_EXPORT NSString* plainNumber(NSString* written);

}  // namespace pelvor
