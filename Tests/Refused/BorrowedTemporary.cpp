// SPDX-License-Identifier: Apache-2.0
// expect: use .get() inside one expression, or std::move(owned).autorelease()
#include "Preamble.h"

Lamp* borrow() { return make<Lamp>(); }
