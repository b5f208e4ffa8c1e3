// SPDX-License-Identifier: Apache-2.0
// Dictionaries to and from property list files.
#pragma once

#include "Foundation/NSDictionary.h"

namespace pelvor {

struct PELVOR_EXPORT NSDictionary_PropertyList {
    /// Returns the dictionary that the property list in the file is, whatever its format; borrowed. Returns
    /// null if the file cannot be read, holds no list, or holds a list of another kind;
    /// NSPropertyListSerialization tells why. Sent to a mutable class, returns a mutable dictionary, with
    /// mutable arrays and dictionaries in it.
    static NSDictionary* dictionaryWithContentsOfFile(NSString* path,
                                                      Class* cls = NSDictionary::classObject());
    /// Does the same; the result is owned.
    static Retained<NSDictionary> initWithContentsOfFile(NSString* path,
                                                         Class* cls = NSDictionary::classObject());
};

/// Writes the dictionary as an XML property list, to a new file or in the place of an old one. Atomically
/// means as a whole or not at all. Returns false if the file cannot be written or the dictionary is no
/// property list.
PELVOR_EXPORT bool writeToFile_atomically(NSDictionary* dictionary, NSString* path, bool isAtomic);

}  // namespace pelvor
