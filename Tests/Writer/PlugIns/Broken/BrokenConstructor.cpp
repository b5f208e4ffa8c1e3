// SPDX-License-Identifier: Apache-2.0
// A plug-in that throws while its code is being loaded.
#include <stdexcept>

#include "Runtime/Registry.h"

namespace pelvor {

[[maybe_unused]] const int kNothing = []() -> int { throw std::runtime_error("no paper"); }();
constinit Library constructorPlugIn{"BrokenConstructor", {}, {}, {}};

}  // namespace pelvor

PELVOR_PLUGIN(pelvor::constructorPlugIn)
