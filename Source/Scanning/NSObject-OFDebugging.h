// SPDX-License-Identifier: Apache-2.0
// A dictionary that shows an object's state to a developer.
#pragma once

#include "Foundation/NSMutableDictionary.h"

namespace pelvor {

struct Category;

/// The debug dictionary of every object: under "__self__" it has the class and the address of the object,
/// "<OFTrie: 0x5581…>". A class with more to show has an operation of this name, which adds to the
/// dictionary. Borrowed; the caller may add to the dictionary.
PELVOR_EXPORT NSMutableDictionary* debugDictionary(NSObject* object);

extern const Category NSObject_OFDebugging_category;

}  // namespace pelvor
