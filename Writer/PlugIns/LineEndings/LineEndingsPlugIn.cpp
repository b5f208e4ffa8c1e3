// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/LineEndings/LineEndingsPlugIn.h"

#include "BaseLibrary.h"
#include "Writer/PlugIns/LineEndings/WRLineEndings.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseLibrary};
constexpr Class* kClasses[] = {&WRLineEndings::classRecord};

}  // namespace

constinit Library lineEndingsPlugIn{"LineEndings", kDependencies, kClasses, {}};

}  // namespace pelvor

PELVOR_PLUGIN(pelvor::lineEndingsPlugIn)
