// SPDX-License-Identifier: Apache-2.0
// The version of the user-interface framework, as one number that the host sets.
#pragma once

#include "Runtime/Export.h"

namespace pelvor {

/// Returns the version of the user-interface framework: 1000.0, unless the host has set another. Operations
/// that depend on the version behave in the older way if it is below 743.0. Any thread.
PELVOR_EXPORT double platformVersion();

/// Sets what platformVersion() returns. A host calls it before the load-time sequence, in which classes
/// choose between old and new behaviour once and for all.
PELVOR_EXPORT void setPlatformVersion(double version);

}  // namespace pelvor
