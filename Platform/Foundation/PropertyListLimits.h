// SPDX-License-Identifier: Apache-2.0
// The bounds that reading and writing property lists keep.
#pragma once

#include <cstdint>

#include "Runtime/Export.h"

namespace pelvor {

/// What a property list may ask of its reader and writer. A list beyond a bound is refused with an error.
struct PropertyListLimits {
    /// How deep arrays and dictionaries may be nested, in reading and in writing. Releasing and comparing
    /// nested objects takes stack in proportion, so a host that raises this bound has to provide the stack.
    std::uint32_t maximumDepth = 512;
    /// A binary list may refer to one of its arrays or dictionaries repeatedly, and so stand for more objects
    /// than it stores: at most this many more.
    std::uint32_t maximumSharedObjects = 1u << 20;
};

/// Returns the bounds in force. Any thread.
PELVOR_EXPORT PropertyListLimits propertyListLimits();
/// Sets the bounds for every list read or written from now on. Any thread.
PELVOR_EXPORT void setPropertyListLimits(PropertyListLimits limits);

}  // namespace pelvor
