// SPDX-License-Identifier: Apache-2.0
// The list of the classes and categories of PelvorBaseInterface: what PelvorBase adds to menus, views and
// tables.
#pragma once

#include "Runtime/Registry.h"

namespace pelvor {

extern PELVOR_EXPORT Library baseInterfaceLibrary;

}  // namespace pelvor
