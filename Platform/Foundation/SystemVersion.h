// SPDX-License-Identifier: Apache-2.0
// The version of the operating system, as one number.
#pragma once

#include "Runtime/Export.h"

namespace pelvor {

/// The operating system's version as binary-coded decimals: two digits of the major version, one of the minor
/// version and one of the bug fix, 0x1049 for 10.4.9. Unless the host has set another version, it is the
/// version of the kernel. A major version above 99 is given as 99, another number above 9 as 9. Any thread.
PELVOR_EXPORT int systemVersionCode();

/// Sets what systemVersionCode() returns, of which the low 16 bits count; 0 stands for the kernel's release.
PELVOR_EXPORT void setSystemVersionCode(int code);

/// Returns the code of the text of a release, "6.1.0-18-amd64"; numbers that are missing are 0, as is the
/// code of null.
PELVOR_EXPORT int systemVersionCodeOfRelease(const char* release);

}  // namespace pelvor
