// SPDX-License-Identifier: Apache-2.0
// Additions to mutable dictionaries: plain numbers as values, and some of the entries of another dictionary.
#pragma once

#include "Foundation/NSMutableDictionary.h"

namespace pelvor {

struct Category;
class NSSet;

// These store the value as a number object of its kind. They raise NSInvalidArgumentException if the key is
// null.
//
//     setInt_forKey(layout, 2, u"columns"_ns);
//     int columns = intForKey(layout, u"columns"_ns);  // from NSDictionary-PelvorAdditions.h

PELVOR_EXPORT void setBool_forKey(NSMutableDictionary* dictionary, bool value, id key);
PELVOR_EXPORT void setInt_forKey(NSMutableDictionary* dictionary, int value, id key);
PELVOR_EXPORT void setFloat_forKey(NSMutableDictionary* dictionary, float value, id key);
PELVOR_EXPORT void setDouble_forKey(NSMutableDictionary* dictionary, double value, id key);

/// Copies the entries of the other dictionary whose keys are in the set.
PELVOR_EXPORT void addObjectsFromDictionary_forKeys(NSMutableDictionary* dictionary, NSDictionary* other,
                                                    NSSet* keys);

extern const Category NSMutableDictionary_PelvorAdditions_category;

}  // namespace pelvor
