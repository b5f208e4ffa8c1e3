// SPDX-License-Identifier: Apache-2.0
// expect: the class lacks PELVOR_CLASS
#include "Preamble.h"

class Candle : public Lamp {};
Retained<Candle> light() { return make<Candle>(); }
