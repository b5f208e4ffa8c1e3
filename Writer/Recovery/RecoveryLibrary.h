// SPDX-License-Identifier: Apache-2.0
// The list of the classes that keep journals.
#pragma once

#include "Runtime/Registry.h"

namespace pelvor {

extern Library recoveryLibrary;

}  // namespace pelvor
