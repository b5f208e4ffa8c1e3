// SPDX-License-Identifier: Apache-2.0
// The list of the Runtime's own classes.
#pragma once

#include "Runtime/Registry.h"

namespace pelvor {

extern PELVOR_EXPORT Library runtimeLibrary;

}  // namespace pelvor
