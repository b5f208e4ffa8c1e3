// SPDX-License-Identifier: Apache-2.0
// The list of the plug-in LanguageFinder.
#pragma once

#include "Runtime/Registry.h"

namespace pelvor {

extern Library languageFinderPlugIn;

}  // namespace pelvor
