// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/Pages/PagesPlugIn.h"

#include "Writer/Pages/PagesLibrary.h"
#include "Writer/PlugIns/Pages/WRPageSetter.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&pagesLibrary};
constexpr Class* kClasses[] = {&WRPageSetter::classRecord};

}  // namespace

constinit Library pagesPlugIn{"Pages", kDependencies, kClasses, {}};

}  // namespace pelvor

PELVOR_PLUGIN(pelvor::pagesPlugIn)
