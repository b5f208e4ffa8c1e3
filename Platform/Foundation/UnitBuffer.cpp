// SPDX-License-Identifier: Apache-2.0
#include "Foundation/UnitBuffer.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

namespace pelvor {
namespace {

// Texts of this many bytes and more take huge pages where the system gives them: without, most of the time of
// reading a large file goes into making small ones.
constexpr std::size_t kLarge = std::size_t{8} << 20;

// With the pages at the ends that the units share: memory that is advised in part cannot be made larger where
// it is, but has to be copied.
void askForHugePages(void* memory, std::size_t size) {
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto place = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t start = place / page * page, end = (place + size + page - 1) / page * page;
    madvise(reinterpret_cast<void*>(start), end - start, MADV_HUGEPAGE);
}

}  // namespace

void UnitBuffer::reserve(std::size_t capacity) {
    const std::size_t size = capacity * sizeof(unichar);
    auto* units = static_cast<unichar*>(std::realloc(_units, size));
    if (!units) throw NSException(NSMallocException, "UnitBuffer: there is no memory for the text");
    if (size >= kLarge) askForHugePages(units, size);
    _units = units;
    _capacity = capacity;
}

}  // namespace pelvor
