// SPDX-License-Identifier: Apache-2.0
// A plug-in that calls a function that nobody has.
#include "BaseLibrary.h"

namespace pelvor {

void functionThatNobodyHas();

namespace {
constexpr Library* kDependencies[] = {&baseLibrary};
}
constinit Library undefinedPlugIn{"BrokenUndefined", kDependencies, {}, {}};

}  // namespace pelvor

extern "C" PELVOR_EXPORT pelvor::Library* pelvorPlugInLibrary() {
    pelvor::functionThatNobodyHas();
    return &pelvor::undefinedPlugIn;
}
