// SPDX-License-Identifier: Apache-2.0
// Dictionaries to and from property list files.
#pragma once

#include "Foundation/NSDictionary.h"

namespace pelvor {

struct PELVOR_EXPORT NSDictionary_PropertyList {
    /// The dictionary that the property list in the file is, whatever its format; none if the file cannot be
    /// read, is no list, or holds something else. Asked of a mutable class, the dictionary and all arrays and
    /// dictionaries in it are mutable. Borrowed.
    static NSDictionary* dictionaryWithContentsOfFile(NSString* path,
                                                      Class* cls = NSDictionary::classObject());
    /// The same, owned.
    static Retained<NSDictionary> initWithContentsOfFile(NSString* path,
                                                         Class* cls = NSDictionary::classObject());
};

/// Writes the dictionary as an XML property list, new or in the place of an old file; atomically: as a whole
/// or not at all. False if the file cannot be written or the dictionary is no property list.
PELVOR_EXPORT bool writeToFile_atomically(NSDictionary* dictionary, NSString* path, bool isAtomic);

}  // namespace pelvor
