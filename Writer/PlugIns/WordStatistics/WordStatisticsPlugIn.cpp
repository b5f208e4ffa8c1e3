// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/WordStatistics/WordStatisticsPlugIn.h"

#include "BaseLibrary.h"
#include "Writer/PlugIns/WordStatistics/WRWordStatistics.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseLibrary};
constexpr Class* kClasses[] = {&WRWordStatistics::classRecord};

}  // namespace

constinit Library wordStatisticsPlugIn{"WordStatistics", kDependencies, kClasses, {}};

}  // namespace pelvor

PELVOR_PLUGIN(pelvor::wordStatisticsPlugIn)
