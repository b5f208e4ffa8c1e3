// SPDX-License-Identifier: Apache-2.0
// The list of the classes and categories of PelvorBaseText: what PelvorBase adds to the text system.
#pragma once

#include "Runtime/Registry.h"

namespace pelvor {

extern PELVOR_EXPORT Library baseTextLibrary;

}  // namespace pelvor
