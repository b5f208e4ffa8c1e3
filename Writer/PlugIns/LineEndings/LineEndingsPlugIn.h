// SPDX-License-Identifier: Apache-2.0
// The list of the plug-in LineEndings.
#pragma once

#include "Runtime/Registry.h"

namespace pelvor {

extern Library lineEndingsPlugIn;

}  // namespace pelvor
