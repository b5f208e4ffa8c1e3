// SPDX-License-Identifier: Apache-2.0
// A plug-in whose code cannot be set up.
#include "Runtime/NSException.h"

[[maybe_unused]] static const bool isSetUp = []() -> bool {
    throw pelvor::NSException("PlugInException", "no lamp oil");
}();
