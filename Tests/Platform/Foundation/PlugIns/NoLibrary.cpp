// SPDX-License-Identifier: Apache-2.0
// A plug-in that has no library to give.
#include "Runtime/Registry.h"

extern "C" PELVOR_EXPORT pelvor::Library* pelvorPlugInLibrary() { return nullptr; }
