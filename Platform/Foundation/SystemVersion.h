// SPDX-License-Identifier: Apache-2.0
// The version of the operating system, as one number.
#pragma once

#include "Runtime/Export.h"

namespace pelvor {

/// The operating system's version as binary-coded decimals: two digits of the major version, one of the
/// minor version and one of the bug fix, 0x1049 for 10.4.9. Taken from the kernel's release on first demand,
/// unless the host set another; numbers that do not fit are 99 and 9. Any thread.
PELVOR_EXPORT int systemVersionCode();

/// Sets what systemVersionCode() answers, the low 16 bits; 0 stands for the kernel's release.
PELVOR_EXPORT void setSystemVersionCode(int code);

/// The code of a release text, "6.1.0-18-amd64"; numbers that are missing are 0.
PELVOR_EXPORT int systemVersionCodeOfRelease(const char* release);

}  // namespace pelvor
