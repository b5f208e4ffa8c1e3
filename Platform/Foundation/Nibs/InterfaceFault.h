// SPDX-License-Identifier: Apache-2.0
// InterfaceFault: why an interface file cannot be used; for its reader and its builder.
#pragma once

#include <string>

namespace pelvor {

/// Thrown inside the reader and the builder, and turned into an NSNibError where they are called.
struct InterfaceFault {
    std::string object;  ///< its identifier; "" for the file itself
    std::string key;     ///< "" for none
    std::string reason;
};

}  // namespace pelvor
