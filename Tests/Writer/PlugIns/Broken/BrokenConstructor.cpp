// SPDX-License-Identifier: Apache-2.0
// A plug-in that throws while its code is being loaded.
#include <stdexcept>

#include "BaseLibrary.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseLibrary};

struct Thrower {
    Thrower() { throw std::runtime_error("no paper"); }
};
[[maybe_unused]] Thrower theThrower;

}  // namespace

constinit Library constructorPlugIn{"BrokenConstructor", kDependencies, {}, {}};

}  // namespace pelvor

PELVOR_PLUGIN(pelvor::constructorPlugIn)
