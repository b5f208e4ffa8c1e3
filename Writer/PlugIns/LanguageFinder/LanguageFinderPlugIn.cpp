// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/LanguageFinder/LanguageFinderPlugIn.h"

#include "BaseLibrary.h"
#include "Writer/PlugIns/LanguageFinder/WRLanguageFinder.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseLibrary};
constexpr Class* kClasses[] = {&WRLanguageFinder::classRecord};

}  // namespace

constinit Library languageFinderPlugIn{"LanguageFinder", kDependencies, kClasses, {}};

}  // namespace pelvor

PELVOR_PLUGIN(pelvor::languageFinderPlugIn)
