// SPDX-License-Identifier: Apache-2.0
// A plug-in whose second class raises while its methods are defined.
#include "Runtime/NSException.h"
#include "Runtime/Registry.h"

namespace pelvor {

extern Library raisingLibrary;

class Sound : public NSObject {
    PELVOR_CLASS(Sound, NSObject);
};
PELVOR_DEFINE_CLASS(Sound, raisingLibrary) {}

class Cracked : public NSObject {
    PELVOR_CLASS(Cracked, NSObject);
};
PELVOR_DEFINE_CLASS(Cracked, raisingLibrary) { throw NSException("PlugInException", "no methods today"); }

constexpr Class* kClasses[] = {&Sound::classRecord, &Cracked::classRecord};

constinit Library raisingLibrary{"Raising", {}, kClasses, {}};

}  // namespace pelvor

PELVOR_PLUGIN(pelvor::raisingLibrary)
