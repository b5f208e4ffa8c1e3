// SPDX-License-Identifier: Apache-2.0
// The list of the classes that show Writer's windows.
#pragma once

#include "Runtime/Registry.h"

namespace pelvor {

extern Library windowsLibrary;

}  // namespace pelvor
