// SPDX-License-Identifier: Apache-2.0
// The list of the classes that set documents in pages.
#pragma once

#include "Runtime/Registry.h"

namespace pelvor {

extern PELVOR_EXPORT Library pagesLibrary;

}  // namespace pelvor
