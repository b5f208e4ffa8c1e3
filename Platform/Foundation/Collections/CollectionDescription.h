// SPDX-License-Identifier: Apache-2.0
// The texts of collections, in the form of old-style property lists; for Foundation's own sources.
#pragma once

#include "Runtime/Object.h"

namespace pelvor {

class NSCountedSet;

/// The text of an array, set or dictionary, over several lines. Strings are quoted where they hold more
/// than letters, digits, "_", "$", "." and ":"; other objects give their descriptions. A collection
/// inside itself is named by class and address. Borrowed.
NSString* describeCollection(Object* collection);

}  // namespace pelvor
