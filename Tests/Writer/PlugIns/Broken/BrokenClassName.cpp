// SPDX-License-Identifier: Apache-2.0
// A plug-in with a class whose name another plug-in has taken.
#include "BaseLibrary.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseLibrary};

class WRPlainTextReader : public NSObject {
    PELVOR_CLASS(WRPlainTextReader, NSObject);
};

constexpr Class* kClasses[] = {&WRPlainTextReader::classRecord};

}  // namespace

constinit Library classNamePlugIn{"BrokenClassName", kDependencies, kClasses, {}};

PELVOR_DEFINE_CLASS(WRPlainTextReader, classNamePlugIn) {}

}  // namespace pelvor

PELVOR_PLUGIN(pelvor::classNamePlugIn)
