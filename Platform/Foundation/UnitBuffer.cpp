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

void askForHugePages(void* memory, std::size_t size) {
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto start = (reinterpret_cast<std::uintptr_t>(memory) + page - 1) / page * page;
    madvise(reinterpret_cast<void*>(start), size - page, MADV_HUGEPAGE);
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
