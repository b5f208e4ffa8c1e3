// SPDX-License-Identifier: Apache-2.0
// Dictionaries as records: typed values, comparison of some keys, changed copies.
#pragma once

#include "Foundation/NSDictionary.h"

namespace pelvor {

struct Category;
class NSSet;

// The value converted by its own operation of that name (`boolValue` …), which numbers and strings have;
// NO or 0 without an entry.

PELVOR_EXPORT bool boolForKey(NSDictionary* dictionary, id key);
PELVOR_EXPORT int intForKey(NSDictionary* dictionary, id key);
PELVOR_EXPORT float floatForKey(NSDictionary* dictionary, id key);
PELVOR_EXPORT double doubleForKey(NSDictionary* dictionary, id key);

/// Whether a member of the set, or a key of the other dictionary, is a key of the dictionary.
PELVOR_EXPORT bool containsKeyInSet(NSDictionary* dictionary, NSSet* keys);
PELVOR_EXPORT bool containsKeyInDictionary(NSDictionary* dictionary, NSDictionary* other);

/// Whether the other has an equal value for every key of the dictionary. No other counts as an empty one.
PELVOR_EXPORT bool isSubdictionaryOf(NSDictionary* dictionary, NSDictionary* other);
/// The same for all keys outside the set: keys that only the other has are not noticed. NO without other.
PELVOR_EXPORT bool isEqualToDictionary_ignoringKeys(NSDictionary* dictionary, NSDictionary* other,
                                                    NSSet* ignored);
/// Whether the values for these keys, an array or a set, are equal or missing from both. NO without other.
PELVOR_EXPORT bool isEqualToDictionary_forKeys(NSDictionary* dictionary, NSDictionary* other, id keys);

// Changed copies, borrowed; the dictionary itself stays as it is.

PELVOR_EXPORT NSDictionary* dictionarySettingObject_forKey(NSDictionary* dictionary, id object, id key);
/// The dictionary itself if it lacks the key.
PELVOR_EXPORT NSDictionary* dictionaryRemovingObjectForKey(NSDictionary* dictionary, id key);
/// The dictionary itself if there is nothing to add, else a mutable one; of equal keys the other's count.
PELVOR_EXPORT NSDictionary* dictionaryByAddingEntriesFromDictionary(NSDictionary* dictionary,
                                                                    NSDictionary* other);

/// The entries whose keys are in the set; a mutable dictionary if the set has several members.
PELVOR_EXPORT Retained<NSDictionary> createSubdictionaryWithKeys(NSDictionary* dictionary, NSSet* keys);

extern const Category NSDictionary_PelvorAdditions_category;

}  // namespace pelvor
