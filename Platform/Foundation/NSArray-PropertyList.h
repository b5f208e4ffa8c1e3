// SPDX-License-Identifier: Apache-2.0
// Arrays to and from property list files.
#pragma once

#include "Foundation/NSArray.h"

namespace pelvor {

/// Class operations of arrays:
///
///     NSArray* names = NSArray_PropertyList::arrayWithContentsOfFile(path);
///     bool isSaved = names && writeToFile_atomically(names, copyPath, true);
struct PELVOR_EXPORT NSArray_PropertyList {
    /// Reads the property list in the file, in any format, and returns it if it is an array; borrowed.
    /// Returns null if the file cannot be read, or holds no property list, or a list that is no array:
    /// NSFileError tells which, NSPropertyListSerialization where a list is damaged. If `cls` is a mutable
    /// class, the array and all arrays and dictionaries in it are mutable.
    static NSArray* arrayWithContentsOfFile(NSString* path, Class* cls = NSArray::classObject());
    /// Like `arrayWithContentsOfFile`, but the result is owned.
    static Retained<NSArray> initWithContentsOfFile(NSString* path, Class* cls = NSArray::classObject());
};

/// Writes the array as an XML property list to the file. `isAtomic` means what it means for
/// `NSData::writeToFile_atomically`. Returns false if the file cannot be written or the array is no property
/// list.
PELVOR_EXPORT bool writeToFile_atomically(NSArray* array, NSString* path, bool isAtomic);

}  // namespace pelvor
