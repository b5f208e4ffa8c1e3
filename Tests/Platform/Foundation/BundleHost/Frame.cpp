// SPDX-License-Identifier: Apache-2.0
#include "Frame.h"

#include "Runtime/Registry.h"

namespace pelvor {

extern Library frameLibrary;

PELVOR_DEFINE_CLASS(Frame, frameLibrary) {}

namespace {

constexpr Class* kClasses[] = {&Frame::classRecord};

}  // namespace

constinit Library frameLibrary{"Frame", {}, kClasses, {}};

}  // namespace pelvor
