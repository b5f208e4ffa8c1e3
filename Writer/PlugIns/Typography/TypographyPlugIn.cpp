// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/Typography/TypographyPlugIn.h"

#include "BaseLibrary.h"
#include "Writer/PlugIns/Typography/WRTypography.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseLibrary};
constexpr Class* kClasses[] = {&WRTypography::classRecord};

}  // namespace

constinit Library typographyPlugIn{"Typography", kDependencies, kClasses, {}};

}  // namespace pelvor

PELVOR_PLUGIN(pelvor::typographyPlugIn)
