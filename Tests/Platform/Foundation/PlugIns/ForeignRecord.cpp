// SPDX-License-Identifier: Apache-2.0
// A plug-in whose library record is another thing, large enough to be read as one.
#include "Runtime/Registry.h"

namespace {

alignas(pelvor::Library) constexpr char kText[sizeof(pelvor::Library)] =
    "the list of a library of another make";

}  // namespace

extern "C" PELVOR_EXPORT pelvor::Library* pelvorPlugInLibrary() {
    return const_cast<pelvor::Library*>(reinterpret_cast<const pelvor::Library*>(kText));
}
