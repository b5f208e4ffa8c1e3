// SPDX-License-Identifier: Apache-2.0
// What a fuzz target demands of its input's results.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace pelvor {

inline void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

}  // namespace pelvor
