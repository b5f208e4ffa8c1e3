// SPDX-License-Identifier: Apache-2.0
// What Letters adds to strings.
#pragma once

#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSString.h"
#include "Runtime/Registry.h"

namespace letters {

using namespace pelvor;

/// How many units of the string are in the set.
NSUInteger countOfCharactersFromSet(NSString* string, NSCharacterSet* set);

extern const Category NSString_Letters_category;

}  // namespace letters
