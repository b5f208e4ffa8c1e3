// SPDX-License-Identifier: Apache-2.0
// Additions to sets: the members as one text, and the removal of several members.
#pragma once

#include "Foundation/NSMutableSet.h"

namespace pelvor {

struct Category;

/// The descriptions of the members, one after the other, in the order of the set. The separator is not used:
/// the descriptions follow each other directly.
PELVOR_EXPORT NSString* componentsJoinedByString(NSSet* set, NSString* separator);
/// Removes each object of the array, from the last to the first. A null array removes nothing.
PELVOR_EXPORT void removeObjectsInArray(NSMutableSet* set, NSArray* objects);

extern const Category NSSet_PelvorAdditions_category;
extern const Category NSMutableSet_PelvorAdditions_category;

}  // namespace pelvor
