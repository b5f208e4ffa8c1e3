// SPDX-License-Identifier: Apache-2.0
// What makes the bundle one that can be loaded; tests link the rest.
#include "Writer/Windows/WindowsLibrary.h"

PELVOR_PLUGIN(pelvor::windowsLibrary)
