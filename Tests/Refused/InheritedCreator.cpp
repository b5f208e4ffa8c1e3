// SPDX-License-Identifier: Apache-2.0
// expect: the inherited creator initWithLevel would make an object of another class
#include "Preamble.h"

class Candle : public Lamp {
    PELVOR_CLASS(Candle, Lamp);
};
PELVOR_DEFINE_CLASS(Candle, refusedLibrary) {}
