// SPDX-License-Identifier: Apache-2.0
// Members of a set as one text, and members taken out of a set together.
#pragma once

#include "Foundation/NSMutableSet.h"

namespace pelvor {

struct Category;

/// The members' descriptions one after the other, in the order of the set. The separator is not used:
/// nothing stands between them.
PELVOR_EXPORT NSString* componentsJoinedByString(NSSet* set, NSString* separator);
/// Removes each object of the array, from the last to the first.
PELVOR_EXPORT void removeObjectsInArray(NSMutableSet* set, NSArray* objects);

extern const Category NSSet_PelvorAdditions_category;
extern const Category NSMutableSet_PelvorAdditions_category;

}  // namespace pelvor
