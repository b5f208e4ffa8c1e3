// SPDX-License-Identifier: Apache-2.0
// expect: the class names the creators that it declares in PELVOR_CREATORS
#include "Preamble.h"

class Candle : public NSObject {
    PELVOR_CLASS(Candle, NSObject);

  public:
    static Retained<Candle> initWithWax(int wax, Class* cls = classObject());
};
PELVOR_DEFINE_CLASS(Candle, refusedLibrary) { methods.creator<"initWithWax:", &Candle::initWithWax>(); }
