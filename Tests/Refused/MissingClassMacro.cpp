// SPDX-License-Identifier: Apache-2.0
// expect: the class lacks PELVOR_CLASS
#include "Preamble.h"

namespace pelvor {

class Candle : public Lamp {};
Retained<Candle> light() { return make<Candle>(); }

}  // namespace pelvor
