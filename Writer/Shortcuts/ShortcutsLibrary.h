// SPDX-License-Identifier: Apache-2.0
// The list of the classes of shortcuts.
#pragma once

#include "Runtime/Registry.h"

namespace pelvor {

extern Library shortcutsLibrary;

}  // namespace pelvor
