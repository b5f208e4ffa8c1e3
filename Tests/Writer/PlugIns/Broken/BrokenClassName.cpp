// SPDX-License-Identifier: Apache-2.0
// A plug-in with a class whose name another plug-in has taken.
#include "Runtime/Registry.h"

namespace pelvor {

class WRPlainTextReader : public NSObject {
    PELVOR_CLASS(WRPlainTextReader, NSObject);
};

constexpr Class* kClasses[] = {&WRPlainTextReader::classRecord};
constinit Library classNamePlugIn{"BrokenClassName", {}, kClasses, {}};
PELVOR_DEFINE_CLASS(WRPlainTextReader, classNamePlugIn) {}

}  // namespace pelvor

PELVOR_PLUGIN(pelvor::classNamePlugIn)
