// SPDX-License-Identifier: Apache-2.0
// expect: deleted function
#include "Preamble.h"

Lamp* borrow() { return make<Lamp>(); }
