// SPDX-License-Identifier: Apache-2.0
#include "assertions.h"

#include "BaseLibrary.h"
#include "Foundation/NSLog.h"

namespace pelvor {

void PBAssertFailed(const char*, const char*, const char*, int) {}

void PBSoftAssertFailed(const char* type, const char* expression, const char* file, int lineNumber) {
    NSLog(u"*** %s failed: requires '%s', file %s, line %d"_ns, type, expression, file, lineNumber);
}

}  // namespace pelvor
