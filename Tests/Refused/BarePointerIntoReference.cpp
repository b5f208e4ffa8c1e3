// SPDX-License-Identifier: Apache-2.0
// expect: could not convert
// expect: no viable conversion
#include "Preamble.h"

Retained<Lamp> keep(Lamp* lamp) { return lamp; }
