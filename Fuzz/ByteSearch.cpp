// SPDX-License-Identifier: Apache-2.0
// Finding bytes, beside trying every place.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "NSData-PelvorAdditions.h"
#include "Require.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

using Bytes = std::vector<std::uint8_t>;

void run(const std::uint8_t* data, std::size_t size) {
    // Few different bytes, and each several times over, so that patterns almost match for long.
    unsigned kinds = 1 + data[0] % 4, times = 1 + data[0] / 4 % 64;
    Bytes bytes;
    for (std::size_t i = 4; i < size; ++i)
        bytes.insert(bytes.end(), times, static_cast<std::uint8_t>(data[i] % (kinds == 4 ? 256 : kinds)));
    std::size_t patternSize = std::min<std::size_t>(data[1], bytes.size());
    Bytes pattern(bytes.end() - static_cast<std::ptrdiff_t>(patternSize), bytes.end());
    if (data[2] & 1) bytes.resize(bytes.size() - patternSize);
    NSRange range{static_cast<NSUInteger>(std::min<std::size_t>(data[3], bytes.size())), 0};
    range.length = static_cast<NSUInteger>(bytes.size()) - range.location;
    range.length -= std::min<NSUInteger>(range.length, data[2] / 2);

    auto first = bytes.begin() + range.location, last = first + range.length;
    auto place = pattern.empty() ? last : std::search(first, last, pattern.begin(), pattern.end());
    NSRange expected{NSNotFound, 0};
    if (place != last)
        expected = {static_cast<NSUInteger>(place - bytes.begin()), static_cast<NSUInteger>(pattern.size())};

    auto patternLength = static_cast<NSUInteger>(pattern.size());
    NSData* searched = NSData::dataWithBytes_length(bytes.data(), static_cast<NSUInteger>(bytes.size()));
    require(rangeOfBytes_length_range(searched, pattern.data(), patternLength, range) == expected,
            "found elsewhere");
}

}  // namespace
}  // namespace pelvor

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pelvor::AutoreleasePool pool;
    if (size >= 4) pelvor::run(data, std::min<std::size_t>(size, 1000));
    return 0;
}
