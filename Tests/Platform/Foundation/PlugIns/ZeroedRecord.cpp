// SPDX-License-Identifier: Apache-2.0
// A plug-in whose library record is nothing but zeros.
#include "Runtime/Registry.h"

namespace {

alignas(pelvor::Library) std::byte zeros[sizeof(pelvor::Library)];

}  // namespace

extern "C" PELVOR_EXPORT pelvor::Library* pelvorPlugInLibrary() {
    return reinterpret_cast<pelvor::Library*>(zeros);
}
