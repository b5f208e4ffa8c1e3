// SPDX-License-Identifier: Apache-2.0
#include "_PBAssertionWarning.h"

#include "BaseLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(_PBAssertionWarning, baseLibrary) {
    methods.classLevel<"load", &_PBAssertionWarning::load>();
    methods.classLevel<"didLoad", &_PBAssertionWarning::didLoad>();
}

}  // namespace pelvor
