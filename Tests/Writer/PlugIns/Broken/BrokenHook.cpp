// SPDX-License-Identifier: Apache-2.0
// A plug-in whose load-time hook throws, and whose service throws what is no exception of the platform.
#include "Foundation/NSDictionary.h"
#include "Runtime/NSException.h"
#include "Runtime/Registry.h"

namespace pelvor {

class WRBrokenHook : public NSObject {
    PELVOR_CLASS(WRBrokenHook, NSObject);

  public:
    static void didLoad() { throw NSException("Fault", "no ink"); }
    NSDictionary* examineDocument(id document) { throw 7; }
};

constexpr Class* kClasses[] = {&WRBrokenHook::classRecord};
constinit Library hookPlugIn{"BrokenHook", {}, kClasses, {}};
PELVOR_DEFINE_CLASS(WRBrokenHook, hookPlugIn) {
    methods.classLevel<"didLoad", &WRBrokenHook::didLoad>();
    methods.instance<"examineDocument:", &WRBrokenHook::examineDocument>();
}

}  // namespace pelvor

PELVOR_PLUGIN(pelvor::hookPlugIn)
