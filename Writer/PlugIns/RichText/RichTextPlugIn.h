// SPDX-License-Identifier: Apache-2.0
// The list of the plug-in RichText.
#pragma once

#include "Runtime/Registry.h"

namespace pelvor {

extern Library richTextPlugIn;

}  // namespace pelvor
