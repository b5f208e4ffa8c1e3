// SPDX-License-Identifier: Apache-2.0
// expect: deleted function
#include "Preamble.h"

namespace pelvor {

Lamp* borrow() { return make<Lamp>(); }

}  // namespace pelvor
