// SPDX-License-Identifier: Apache-2.0
// What failed assertions call.
#pragma once

#include "Runtime/NSObject.h"

namespace pelvor {

/// A condition failed that the code cannot do without. Does nothing: the caller goes on. All texts are
/// UTF-8; `type` is the kind of assertion.
PELVOR_EXPORT void PBAssertFailed(const char* type, const char* expression, const char* file, int lineNumber);

/// A condition failed that the code can do without: logs one line, "*** Assertion failed: requires 'count >
/// 0', file PBTrie.cpp, line 12". The caller goes on.
PELVOR_EXPORT void PBSoftAssertFailed(const char* type, const char* expression, const char* file,
                                      int lineNumber);

/// The place for warnings about the state of assertions when a process starts; what is shipped has none.
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
