// SPDX-License-Identifier: Apache-2.0
// A plug-in whose library record was built with another interface version than its Info.plist says.
#include "Runtime/Registry.h"

namespace {

constinit pelvor::Library library{"OtherInterface", {}, {}, {}};

}  // namespace

extern "C" PELVOR_EXPORT pelvor::Library* pelvorPlugInLibrary() {
    library.interfaceVersion = 4711;
    return &library;
}
