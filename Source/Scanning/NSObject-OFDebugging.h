// SPDX-License-Identifier: Apache-2.0
// A dictionary that shows an object's state to a developer.
#pragma once

#include "Foundation/NSMutableDictionary.h"

namespace pelvor {

struct Category;

/// The debug dictionary of any object: under "__self__" it has class and address, "<OFTrie: 0x5581…>".
/// Classes with more to show have an operation of the same name, which adds to this dictionary. Borrowed; the
/// caller may add to it.
PELVOR_EXPORT NSMutableDictionary* debugDictionary(NSObject* object);

extern const Category NSObject_OFDebugging_category;

}  // namespace pelvor
