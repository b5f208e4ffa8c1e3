// SPDX-License-Identifier: Apache-2.0
// expect: name the StringUnits: this one ends before its view
#include "Preamble.h"

bool isEmpty(NSString* string) {
    std::u16string_view text = StringUnits(string);
    return text.empty();
}
