// SPDX-License-Identifier: Apache-2.0
// The list of Interface's classes and categories.
#pragma once

#include "Runtime/Registry.h"

namespace pelvor {

extern PELVOR_EXPORT Library interfaceLibrary;

}  // namespace pelvor
