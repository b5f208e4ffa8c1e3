// SPDX-License-Identifier: Apache-2.0
// The list of the Runtime's own classes.
#pragma once

#include "Runtime/Registry.h"

namespace pelvor {

/// The list of the classes and categories of the Runtime. A library or plug-in that uses them names this list
/// among its dependencies (Runtime/Registry.h).
extern PELVOR_EXPORT Library runtimeLibrary;

}  // namespace pelvor
