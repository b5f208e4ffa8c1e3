// SPDX-License-Identifier: Apache-2.0
// The list of Writer's classes.
#pragma once

#include "Runtime/Registry.h"

namespace pelvor {

extern Library writerLibrary;

}  // namespace pelvor
