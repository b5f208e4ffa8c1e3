// SPDX-License-Identifier: Apache-2.0
// What nearly every source of the libraries includes anyway, for the build to compile once. Sources include
// what they use nevertheless, since a build without precompiled headers has to work.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Runtime/NSException.h"
#include "Runtime/Registry.h"
