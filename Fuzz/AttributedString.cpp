// SPDX-License-Identifier: Apache-2.0
// Attributed strings under random edits, beside a plain array of units.
#include <cstdint>

#include "AttributedStringModel.h"
#include "Require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pelvor::AutoreleasePool pool;
    std::size_t next = 0;
    size = size < 4000 ? size : 4000;
    pelvor::AttributedStringModel model([&](unsigned limit) {
        unsigned number = 0;
        for (int i = 0; i < (limit > 256 ? 2 : 1); ++i)
            number = number << 8 | (next < size ? data[next++] : 0);
        return number % limit;
    });
    while (next < size) {
        model.step();
        pelvor::require(model.fault.empty(), model.fault.c_str());
    }
    model.checkAll();
    pelvor::require(model.fault.empty(), model.fault.c_str());
    return 0;
}
