// SPDX-License-Identifier: Apache-2.0
// A plug-in with code, which has to see the host's copy of the library's state.
#include "Foundation/PlatformVersion.h"

extern "C" PELVOR_EXPORT double platformVersionSeenByPlugIn() { return pelvor::platformVersion(); }
