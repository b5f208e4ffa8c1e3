// SPDX-License-Identifier: Apache-2.0
// Layout of random text under random edits, in containers of random sizes, beside layout from scratch.
#include <cstdint>

#include "Platform/Text/LayoutAuthor.h"
#include "Require.h"
#include "Runtime/AutoreleasePool.h"

// fontconfig forgets a little of what its rules for standing in make. Only the address sanitizer asks.
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig"; }

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace pelvor;
    AutoreleasePool pool;
    std::size_t next = 0;
    size = size < 400 ? size : 400;
    const auto random = [&](unsigned limit) {
        unsigned number = 0;
        for (int i = 0; i < (limit > 256 ? 2 : 1); ++i)
            number = number << 8 | (next < size ? data[next++] : 0);
        return number % limit;
    };
    LayoutAuthor::Sizes sizes;
    for (unsigned i = 0, count = 1 + random(3); i < count; ++i)
        sizes.push_back(
            {static_cast<float>(random(200)), random(2) ? 1.0e7F : static_cast<float>(random(200))});
    NSArray* exclusions = nullptr;
    if (random(2)) {
        const auto some = [&] { return static_cast<float>(random(100)); };
        exclusions = NSArray::of({NSValue::valueWithRect({{some(), some()}, {some(), some()}})});
    }
    LayoutAuthor author(random, sizes, exclusions);
    while (next < size) {
        AutoreleasePool step;
        author.step();
        require(author.fault.empty(), author.fault.c_str());
    }
    return 0;
}
