// SPDX-License-Identifier: Apache-2.0
// expect: PELVOR_CLASS names another class than the superclass
#include "Preamble.h"

class Lantern : public Lamp, Lamp::HiddenCreators {
    PELVOR_CLASS(Lantern, NSObject);
    PELVOR_CREATORS();
};
PELVOR_DEFINE_CLASS(Lantern, refusedLibrary) {}
