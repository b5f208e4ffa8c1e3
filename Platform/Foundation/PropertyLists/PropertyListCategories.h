// SPDX-License-Identifier: Apache-2.0
// The categories that property lists add to other classes, for Foundation's list.
#pragma once

#include "Runtime/Registry.h"

namespace pelvor {

extern const Category NSArray_PropertyList_category;
extern const Category NSDictionary_PropertyList_category;
extern const Category NSString_PropertyList_category;

}  // namespace pelvor
