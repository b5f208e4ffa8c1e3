// SPDX-License-Identifier: Apache-2.0
// A plug-in that raises when it is asked for its library.
#include <stdexcept>

#include "Runtime/Registry.h"

extern "C" PELVOR_EXPORT pelvor::Library* pelvorPlugInLibrary() { throw std::runtime_error("not at home"); }
