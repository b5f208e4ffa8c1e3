// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Runtime/Registry.h"

namespace letters {

using namespace pelvor;

/// The list of what Letters brings.
extern Library lettersLibrary;

}  // namespace letters
