// SPDX-License-Identifier: Apache-2.0
// The bounds that reading and writing property lists keep.
#pragma once

#include <cstdint>

#include "Runtime/Export.h"

namespace pelvor {

/// What a property list may ask of its reader and writer. Lists beyond a bound are refused with an error.
struct PropertyListLimits {
    /// How deep arrays and dictionaries may be nested, in reading and in writing. Releasing and comparing
    /// nested objects takes stack in proportion, so a host that raises it answers for the stack.
    std::uint32_t maximumDepth = 512;
    /// How many objects more than it stores a binary list may stand for by referring to its arrays and
    /// dictionaries repeatedly.
    std::uint32_t maximumSharedObjects = 1u << 20;
};

/// The bounds in force. Any thread.
PELVOR_EXPORT PropertyListLimits propertyListLimits();
/// Sets the bounds for every list read or written from now on. Any thread.
PELVOR_EXPORT void setPropertyListLimits(PropertyListLimits limits);

}  // namespace pelvor
