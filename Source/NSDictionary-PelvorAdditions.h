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

/// Whether one of the keys, in a set or of another dictionary, is a key of the dictionary.
PELVOR_EXPORT bool containsKeyInSet(NSDictionary* dictionary, NSSet* keys);
PELVOR_EXPORT bool containsKeyInDictionary(NSDictionary* dictionary, NSDictionary* other);

/// Whether the other dictionary has an equal value for every key of the dictionary. If the other is null, it
/// counts as an empty one.
PELVOR_EXPORT bool isSubdictionaryOf(NSDictionary* dictionary, NSDictionary* other);
/// Whether the other dictionary has an equal value for every key of the dictionary that is not in `ignored`.
/// A key that only the other has is not noticed. False if the other is null.
PELVOR_EXPORT bool isEqualToDictionary_ignoringKeys(NSDictionary* dictionary, NSDictionary* other,
                                                    NSSet* ignored);
/// Whether for each of the keys, an array or a set, both dictionaries have equal values or none. False if the
/// other is null.
PELVOR_EXPORT bool isEqualToDictionary_forKeys(NSDictionary* dictionary, NSDictionary* other, id keys);

// Changed copies, borrowed. The dictionary itself stays as it is.

/// A copy with the object under the key. Raises NSInvalidArgumentException if one of them is null.
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
