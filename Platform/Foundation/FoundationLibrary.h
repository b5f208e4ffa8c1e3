// SPDX-License-Identifier: Apache-2.0
// The list of Foundation's classes and categories.
#pragma once

#include "Runtime/Registry.h"

namespace pelvor {

/// The list of the classes and categories of Foundation. A library or plug-in that uses them names this list
/// among its dependencies (Runtime/Registry.h).
extern PELVOR_EXPORT Library foundationLibrary;

}  // namespace pelvor
