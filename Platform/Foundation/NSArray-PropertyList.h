// SPDX-License-Identifier: Apache-2.0
// Arrays to and from property list files.
#pragma once

#include "Foundation/NSArray.h"

namespace pelvor {

struct PELVOR_EXPORT NSArray_PropertyList {
    /// Returns the array that the property list in the file is, whatever its format; borrowed. Returns null
    /// if the file cannot be read, holds no list, or holds a list of another kind;
    /// NSPropertyListSerialization tells why. Sent to a mutable class, returns a mutable array, with mutable
    /// arrays and dictionaries in it.
    static NSArray* arrayWithContentsOfFile(NSString* path, Class* cls = NSArray::classObject());
    /// Does the same; the result is owned.
    static Retained<NSArray> initWithContentsOfFile(NSString* path, Class* cls = NSArray::classObject());
};

/// Writes the array as an XML property list, to a new file or in the place of an old one. Atomically means as
/// a whole or not at all. Returns false if the file cannot be written or the array is no property list.
PELVOR_EXPORT bool writeToFile_atomically(NSArray* array, NSString* path, bool isAtomic);

}  // namespace pelvor
