// SPDX-License-Identifier: Apache-2.0
// Additions to dictionaries that are used as records: typed values, comparison by some keys, changed copies.
#pragma once

#include "Foundation/NSDictionary.h"

namespace pelvor {

struct Category;
class NSSet;

// Typed values: what the entry under the key returns for `boolValue`, `intValue`, `floatValue` or
// `doubleValue`. Numbers and strings have these operations; an object that lacks them raises
// NSInvalidArgumentException. Without an entry the result is false or 0.
//
//     int columns = intForKey(layout, u"columns"_ns);

PELVOR_EXPORT bool boolForKey(NSDictionary* dictionary, id key);
PELVOR_EXPORT int intForKey(NSDictionary* dictionary, id key);
PELVOR_EXPORT float floatForKey(NSDictionary* dictionary, id key);
PELVOR_EXPORT double doubleForKey(NSDictionary* dictionary, id key);

/// Whether the dictionary has one of the keys in the set, or one of the keys of the other dictionary.
PELVOR_EXPORT bool containsKeyInSet(NSDictionary* dictionary, NSSet* keys);
PELVOR_EXPORT bool containsKeyInDictionary(NSDictionary* dictionary, NSDictionary* other);

/// Whether the other dictionary has an equal value for every key of the dictionary. A null other dictionary
/// counts as an empty one.
PELVOR_EXPORT bool isSubdictionaryOf(NSDictionary* dictionary, NSDictionary* other);
/// Whether the other dictionary has an equal value for every key of the dictionary that is not in `ignored`.
/// Keys that only the other dictionary has do not matter. False if the other dictionary is null.
PELVOR_EXPORT bool isEqualToDictionary_ignoringKeys(NSDictionary* dictionary, NSDictionary* other,
                                                    NSSet* ignored);
/// Whether, for each key in an array or a set, both dictionaries have equal values or both have no value.
/// False if the other dictionary is null.
PELVOR_EXPORT bool isEqualToDictionary_forKeys(NSDictionary* dictionary, NSDictionary* other, id keys);

// Changed copies, borrowed. The dictionary itself stays as it is.

/// A copy with the object under the key. Raises NSInvalidArgumentException if the object or the key is null.
PELVOR_EXPORT NSDictionary* dictionarySettingObject_forKey(NSDictionary* dictionary, id object, id key);
/// A copy without the key, or the dictionary itself if it lacks the key.
PELVOR_EXPORT NSDictionary* dictionaryRemovingObjectForKey(NSDictionary* dictionary, id key);
/// A mutable copy with the entries of the other dictionary, whose values win where both have a key; the
/// dictionary itself if there is nothing to add.
PELVOR_EXPORT NSDictionary* dictionaryByAddingEntriesFromDictionary(NSDictionary* dictionary,
                                                                    NSDictionary* other);

/// Makes a dictionary of the entries whose keys are in the set. It is mutable if the set has several members.
PELVOR_EXPORT Retained<NSDictionary> createSubdictionaryWithKeys(NSDictionary* dictionary, NSSet* keys);

extern const Category NSDictionary_PelvorAdditions_category;

}  // namespace pelvor
