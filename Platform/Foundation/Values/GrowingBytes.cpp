// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Values/GrowingBytes.h"

#include <sys/mman.h>

#include <cstdint>

namespace pelvor {

void* resizedBlock(void* block, std::size_t size) {
    constexpr std::size_t kLarge = 4 << 20, kPage = 2 << 20;
    void* bytes = std::realloc(block, size);
    if (!bytes) throw std::bad_alloc();
    if (size >= kLarge) {
        const auto start = reinterpret_cast<std::uintptr_t>(bytes);
        const auto first = (start + kPage - 1) / kPage * kPage, end = (start + size) / kPage * kPage;
        (void)::madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
    }
    return bytes;
}

}  // namespace pelvor
