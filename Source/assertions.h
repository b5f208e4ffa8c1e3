// SPDX-License-Identifier: Apache-2.0
// The functions that failed assertions call.
#pragma once

#include "Runtime/Export.h"

namespace pelvor {

// What these functions are given: `type` is the kind of assertion, `expression` the condition that failed,
// and `file` and `lineNumber` the place of the assertion in the source. Texts are UTF-8.

/// To be called when a condition fails without which the code cannot do its work. This function does nothing
/// and returns, so the caller goes on.
PELVOR_EXPORT void PBAssertFailed(const char* type, const char* expression, const char* file, int lineNumber);

/// To be called when a condition fails without which the code can still do its work. Logs one line, "***
/// Assertion failed: requires 'count > 0', file PBTrie.cpp, line 12", and the caller goes on.
PELVOR_EXPORT void PBSoftAssertFailed(const char* type, const char* expression, const char* file,
                                      int lineNumber);

}  // namespace pelvor
