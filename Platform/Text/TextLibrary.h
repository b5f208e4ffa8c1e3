// SPDX-License-Identifier: Apache-2.0
// The list of Text's classes and categories.
#pragma once

#include "Runtime/Registry.h"

namespace pelvor {

extern PELVOR_EXPORT Library textLibrary;

}  // namespace pelvor
