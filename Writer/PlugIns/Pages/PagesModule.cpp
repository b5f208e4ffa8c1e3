// SPDX-License-Identifier: Apache-2.0
// What makes the plug-in one; tests link the rest.
#include "Writer/PlugIns/Pages/PagesPlugIn.h"

PELVOR_PLUGIN(pelvor::pagesPlugIn)
