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
    /// Reads a file that holds a dictionary as a property list in any format, and returns the dictionary,
    /// borrowed. Returns null for a null path, if the file cannot be read, and if the file holds anything
    /// else: NSFileError tells which, NSPropertyListSerialization where a list is damaged. If `cls` is
    /// NSMutableDictionary or a subclass, the dictionary and all arrays and dictionaries inside are mutable.
    /// Raises NSInvalidArgumentException if `cls` is null.
    static NSDictionary* dictionaryWithContentsOfFile(NSString* path,
                                                      Class* cls = NSDictionary::classObject());
    /// Like `dictionaryWithContentsOfFile`, but the result is owned.
    static Retained<NSDictionary> initWithContentsOfFile(NSString* path,
                                                         Class* cls = NSDictionary::classObject());
};

/// Writes the dictionary as an XML property list to the file; `NSData::writeToFile_atomically` explains
/// `isAtomic`. Returns false if the file cannot be written, if a property list cannot hold the dictionary,
/// and for a null dictionary or path.
PELVOR_EXPORT bool writeToFile_atomically(NSDictionary* dictionary, NSString* path, bool isAtomic);

}  // namespace pelvor
