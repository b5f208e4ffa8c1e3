// SPDX-License-Identifier: Apache-2.0
// Plain numbers into dictionaries, and some entries of another.
#pragma once

#include "Foundation/NSMutableDictionary.h"

namespace pelvor {

struct Category;
class NSSet;

// Store the value as a number object of that kind.

PELVOR_EXPORT void setBool_forKey(NSMutableDictionary* dictionary, bool value, id key);
PELVOR_EXPORT void setInt_forKey(NSMutableDictionary* dictionary, int value, id key);
PELVOR_EXPORT void setFloat_forKey(NSMutableDictionary* dictionary, float value, id key);
PELVOR_EXPORT void setDouble_forKey(NSMutableDictionary* dictionary, double value, id key);

/// Copies the other's entries whose keys are in the set; its walk is over the smaller of the two.
PELVOR_EXPORT void addObjectsFromDictionary_forKeys(NSMutableDictionary* dictionary, NSDictionary* other,
                                                    NSSet* keys);

extern const Category NSMutableDictionary_PelvorAdditions_category;

}  // namespace pelvor
