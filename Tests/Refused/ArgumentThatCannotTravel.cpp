// SPDX-License-Identifier: Apache-2.0
// expect: only plain values, objects and pointers travel in messages
#include "Preamble.h"

PELVOR_DEFINE_CLASS(Lamp, refusedLibrary) { methods.instance<"show:", &Lamp::show>(); }
