// SPDX-License-Identifier: Apache-2.0
// Dictionaries to and from property list files.
#pragma once

#include "Foundation/NSDictionary.h"

namespace pelvor {

/// Class operations of dictionaries:
///
///     NSDictionary* styles = NSDictionary_PropertyList::dictionaryWithContentsOfFile(path);
///     bool isSaved = styles && writeToFile_atomically(styles, copyPath, true);
struct PELVOR_EXPORT NSDictionary_PropertyList {
    /// Reads the property list in the file, in any format, and returns it if it is a dictionary; borrowed.
    /// Returns null if the file cannot be read, or holds no property list, or a list that is no dictionary;
    /// NSPropertyListSerialization tells the reason. If `cls` is a mutable class, the dictionary and all
    /// arrays and dictionaries in it are mutable.
    static NSDictionary* dictionaryWithContentsOfFile(NSString* path,
                                                      Class* cls = NSDictionary::classObject());
    /// Like `dictionaryWithContentsOfFile`, but the result is owned.
    static Retained<NSDictionary> initWithContentsOfFile(NSString* path,
                                                         Class* cls = NSDictionary::classObject());
};

/// Writes the dictionary as an XML property list to the file. `isAtomic` means what it means for
/// `NSData::writeToFile_atomically`. Returns false if the file cannot be written or the dictionary is no
/// property list.
PELVOR_EXPORT bool writeToFile_atomically(NSDictionary* dictionary, NSString* path, bool isAtomic);

}  // namespace pelvor
