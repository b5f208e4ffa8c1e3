// SPDX-License-Identifier: Apache-2.0
// The list of SpellChecking's classes.
#pragma once

#include "Runtime/Registry.h"

namespace pelvor {

extern PELVOR_EXPORT Library spellCheckingLibrary;

}  // namespace pelvor
