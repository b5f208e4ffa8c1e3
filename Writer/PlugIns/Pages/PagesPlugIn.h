// SPDX-License-Identifier: Apache-2.0
// The list of the plug-in Pages.
#pragma once

#include "Runtime/Registry.h"

namespace pelvor {

extern Library pagesPlugIn;

}  // namespace pelvor
