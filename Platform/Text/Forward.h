// SPDX-License-Identifier: Apache-2.0
// The classes of Text, for headers that only name them: the floor's table of contents.
#pragma once

#include "Foundation/Forward.h"

namespace pelvor {}  // namespace pelvor
