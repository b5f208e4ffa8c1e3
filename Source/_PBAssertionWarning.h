// SPDX-License-Identifier: Apache-2.0
// _PBAssertionWarning: a place for warnings about assertions.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

/// Would print warnings about assertions when a process starts. There are no such warnings, so both
/// operations do nothing.
class PELVOR_EXPORT _PBAssertionWarning : public NSObject {
    PELVOR_CLASS(_PBAssertionWarning, NSObject);

  public:
    static void load() {}
    /// The load-time hook that PBPostLoader calls.
    static void didLoad() {}

  protected:
    _PBAssertionWarning() = default;
    ~_PBAssertionWarning() = default;
};

}  // namespace pelvor
