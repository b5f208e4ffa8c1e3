// SPDX-License-Identifier: Apache-2.0
#include "Frame.h"

#include "Runtime/Registry.h"

namespace pelvor {

extern Library frameLibrary;

PELVOR_DEFINE_CLASS(Frame, frameLibrary) {}

constexpr Class* kClasses[] = {&Frame::classRecord};

constinit Library frameLibrary{"Frame", {}, kClasses, {}};

}  // namespace pelvor
