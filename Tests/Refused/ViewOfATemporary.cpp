// SPDX-License-Identifier: Apache-2.0
// expect: name the StringUnits: this one ends before its view
#include "Preamble.h"

int sum(NSString* string) {
    int total = 0;
    for (unichar unit : StringUnits(string).view()) total += unit;
    return total;
}
