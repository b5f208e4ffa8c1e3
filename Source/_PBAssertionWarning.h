// SPDX-License-Identifier: Apache-2.0
// _PBAssertionWarning: a place for warnings about assertions.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

/// A place for warnings about assertions when a process starts. The library that is shipped has no such
/// warnings, so the hooks do nothing.
class PELVOR_EXPORT _PBAssertionWarning : public NSObject {
    PELVOR_CLASS(_PBAssertionWarning, NSObject);

  public:
    static void load() {}
    /// A hook of the load-time sequence.
    static void didLoad() {}

  protected:
    _PBAssertionWarning() = default;
    ~_PBAssertionWarning() = default;
};

}  // namespace pelvor
