// SPDX-License-Identifier: Apache-2.0
// The memory of the branches and leaves of a trie.
#pragma once

#include <cstdlib>

#include "Runtime/NSException.h"

namespace pelvor {

/// Memory that `std::free` frees. Raises NSMallocException if there is none.
inline void* allocateForTrie(std::size_t size) {
    void* memory = std::malloc(size);
    if (!memory) throw NSException(NSMallocException, "no memory for a trie");
    return memory;
}

}  // namespace pelvor
