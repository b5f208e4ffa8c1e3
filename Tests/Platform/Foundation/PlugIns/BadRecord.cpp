// SPDX-License-Identifier: Apache-2.0
// Plug-ins that give no library of this platform, each in the way that is called like the plug-in.
#include <stdexcept>

#include "Runtime/Registry.h"

namespace pelvor {

alignas(Library) constexpr char kText[sizeof(Library)] = "the list of a library of another make";
alignas(Library) std::byte zeros[sizeof(Library)];
constinit Library library{"OtherInterface", {}, {}, {}};

struct Ways {
    static Library* NoLibrary() { return nullptr; }
    static Library* RaisingFunction() { throw std::runtime_error("not at home"); }
    static Library* ZeroedRecord() { return reinterpret_cast<Library*>(zeros); }
    static Library* ForeignRecord() { return const_cast<Library*>(reinterpret_cast<const Library*>(kText)); }
    static Library* OtherInterface() {
        library.interfaceVersion = 4711;
        return &library;
    }
};

}  // namespace pelvor

extern "C" PELVOR_EXPORT pelvor::Library* pelvorPlugInLibrary() { return pelvor::Ways::PLUG_IN(); }
