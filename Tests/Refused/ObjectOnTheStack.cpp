// SPDX-License-Identifier: Apache-2.0
// expect: protected
#include "Preamble.h"

void stand() { Lamp lamp; }
