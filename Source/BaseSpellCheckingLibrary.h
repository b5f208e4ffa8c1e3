// SPDX-License-Identifier: Apache-2.0
// The list of the classes and categories of PelvorBaseSpellChecking.
#pragma once

#include "Runtime/Registry.h"

namespace pelvor {

extern PELVOR_EXPORT Library baseSpellCheckingLibrary;

}  // namespace pelvor
