// SPDX-License-Identifier: Apache-2.0
// Plug-ins that give no library that can be registered, each in the way that is called like the plug-in.
#include <stdexcept>

#include "Foundation/FoundationLibrary.h"
#include "Runtime/NSException.h"

namespace pelvor {

extern Library raisingTable;

// The second class raises while its methods are defined.
class Sound : public NSObject {
    PELVOR_CLASS(Sound, NSObject);
};
PELVOR_DEFINE_CLASS(Sound, raisingTable) {}
class Cracked : public NSObject {
    PELVOR_CLASS(Cracked, NSObject);
};
PELVOR_DEFINE_CLASS(Cracked, raisingTable) { throw NSException("PlugInException", "no methods today"); }

constexpr Class* kClasses[] = {&Sound::classRecord, &Cracked::classRecord};
constinit Library raisingTable{"Raising", {}, kClasses, {}};
constinit Library otherInterface{"OtherInterface", {}, {}, {}};

alignas(Library) constexpr char kText[sizeof(Library)] = "the list of a library of another make";
alignas(Library) std::byte zeros[sizeof(Library)];

struct Ways {
    static Library* NoLibrary() { return nullptr; }
    static Library* RaisingFunction() { throw std::runtime_error("not at home"); }
    static Library* ZeroedRecord() { return reinterpret_cast<Library*>(zeros); }
    static Library* ForeignRecord() { return const_cast<Library*>(reinterpret_cast<const Library*>(kText)); }
    static Library* RaisingTable() { return &raisingTable; }
    static Library* OtherInterface() {
        otherInterface.interfaceVersion = 4711;
        return &otherInterface;
    }
};

}  // namespace pelvor

extern "C" PELVOR_EXPORT pelvor::Library* pelvorPlugInLibrary() { return pelvor::Ways::PLUG_IN(); }
