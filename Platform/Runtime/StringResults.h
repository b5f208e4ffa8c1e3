// SPDX-License-Identifier: Apache-2.0
// Operations of the Runtime that return strings, whose class is Foundation's; for the Runtime's own sources.
#pragma once

#include "Runtime/Object.h"

namespace pelvor {

/// The object's `description` as the method table takes it. Foundation defines it, together with the
/// descriptions of the Runtime's classes.
id describeObject(Object* object);

}  // namespace pelvor
