// SPDX-License-Identifier: Apache-2.0
// expect: and none by reference
#include "Preamble.h"

PELVOR_DEFINE_CLASS(Lamp, refusedLibrary) { methods.instance<"refer:", &Lamp::refer>(); }
