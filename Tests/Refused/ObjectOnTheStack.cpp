// SPDX-License-Identifier: Apache-2.0
// expect: is protected
#include "Preamble.h"

namespace pelvor {

void stand() { Lamp lamp; }

}  // namespace pelvor
