// SPDX-License-Identifier: Apache-2.0
// Arrays to and from property list files.
#pragma once

#include "Foundation/NSArray.h"

namespace pelvor {

struct PELVOR_EXPORT NSArray_PropertyList {
    /// The array that the property list in the file is, whatever its format; none if the file cannot be read,
    /// is no list, or holds something else. Asked of a mutable class, the array and all arrays and
    /// dictionaries in it are mutable. Borrowed.
    static NSArray* arrayWithContentsOfFile(NSString* path, Class* cls = NSArray::classObject());
    /// The same, owned.
    static Retained<NSArray> initWithContentsOfFile(NSString* path, Class* cls = NSArray::classObject());
};

/// Writes the array as an XML property list, new or in the place of an old file; atomically: as a whole or
/// not at all. False if the file cannot be written or the array is no property list.
PELVOR_EXPORT bool writeToFile_atomically(NSArray* array, NSString* path, bool isAtomic);

}  // namespace pelvor
