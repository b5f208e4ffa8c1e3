// SPDX-License-Identifier: Apache-2.0
// A class in the library of a framework.
#pragma once

#include "Runtime/NSObject.h"

namespace pelvor {

class PELVOR_EXPORT Frame : public NSObject {
    PELVOR_CLASS(Frame, NSObject);
};

}  // namespace pelvor
