// SPDX-License-Identifier: Apache-2.0
// expect: is protected
#include "Preamble.h"

void stand() { Lamp lamp; }
