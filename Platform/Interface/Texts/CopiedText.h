// SPDX-License-Identifier: Apache-2.0
// What setters keep of a text.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

/// A copy of the text; "" for null.
inline Retained<NSString> copiedText(NSString* text) { return (text ? text : u""_ns)->copy(); }

}  // namespace pelvor
