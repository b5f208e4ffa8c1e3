// SPDX-License-Identifier: Apache-2.0
// expect: ambiguous
#include "Preamble.h"

class Candle : public Lamp, Lamp::HiddenCreators {
    PELVOR_CLASS(Candle, Lamp);
};
auto light() { return Candle::initWithLevel(1); }
