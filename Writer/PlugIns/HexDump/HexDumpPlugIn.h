// SPDX-License-Identifier: Apache-2.0
// The list of the plug-in HexDump.
#pragma once

#include "Runtime/Registry.h"

namespace pelvor {

extern Library hexDumpPlugIn;

}  // namespace pelvor
