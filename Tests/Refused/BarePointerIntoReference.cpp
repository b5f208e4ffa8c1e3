// SPDX-License-Identifier: Apache-2.0
// expect: could not convert
#include "Preamble.h"

Retained<Lamp> keep(Lamp* lamp) { return lamp; }
