// SPDX-License-Identifier: Apache-2.0
// A plug-in that calls a function that nobody has.
#include "Runtime/Registry.h"

namespace pelvor {

void functionThatNobodyHas();
constinit Library undefinedPlugIn{"BrokenUndefined", {}, {}, {}};

}  // namespace pelvor

extern "C" PELVOR_EXPORT pelvor::Library* pelvorPlugInLibrary() {
    pelvor::functionThatNobodyHas();
    return &pelvor::undefinedPlugIn;
}
