// SPDX-License-Identifier: Apache-2.0
// The functions that failed assertions call.
#pragma once

#include "Runtime/Export.h"

namespace pelvor {

// `type` is the kind of assertion, `expression` the condition that failed, `file` and `lineNumber` its place.
// Texts are UTF-8.

/// Called when a condition fails that the code cannot do without. Does nothing, so that the caller goes on.
PELVOR_EXPORT void PBAssertFailed(const char* type, const char* expression, const char* file, int lineNumber);

/// Called when a condition fails that the code can do without. Logs one line, "*** Assertion failed: requires
/// 'count > 0', file PBTrie.cpp, line 12", and the caller goes on.
PELVOR_EXPORT void PBSoftAssertFailed(const char* type, const char* expression, const char* file,
                                      int lineNumber);

}  // namespace pelvor
