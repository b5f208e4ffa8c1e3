// SPDX-License-Identifier: Apache-2.0
// expect: takes one argument a colon
#include "Preamble.h"

PELVOR_DEFINE_CLASS(Lamp, refusedLibrary) { methods.instanceAs<"setLevel:", &Lamp::setLevel_animated>(); }
