// SPDX-License-Identifier: Apache-2.0
// The version of the user-interface framework, as one number that the host sets.
#pragma once

#include "Runtime/Export.h"

namespace pelvor {

/// The user-interface framework's version; 1000.0 unless the host set another. Behaviour that differs between
/// releases divides at 743.0: below it the older one holds. May be called on any thread.
PELVOR_EXPORT double platformVersion();

/// Sets what platformVersion() answers. To be called before the load-time sequence, which classes use to
/// choose between old and new behaviour once and for all.
PELVOR_EXPORT void setPlatformVersion(double version);

}  // namespace pelvor
