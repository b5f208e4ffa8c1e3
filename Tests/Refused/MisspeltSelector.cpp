// SPDX-License-Identifier: Apache-2.0
// expect: joins the selector's keywords with underscores
#include "Preamble.h"

PELVOR_DEFINE_CLASS(Lamp, refusedLibrary) {
    methods.instance<"setLevel:animate:", &Lamp::setLevel_animated>();
}
