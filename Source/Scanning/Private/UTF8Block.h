// SPDX-License-Identifier: Apache-2.0
// What the bytes of a block of UTF-8 are; for the forms of the decoder in wide instructions.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

namespace pelvor {

/// The first `count` of 64.
inline std::uint64_t firstBits(unsigned count) {
    return count < 64 ? (std::uint64_t{1} << count) - 1 : ~std::uint64_t{0};
}

/// Of up to 64 bytes: bit i is byte i.
struct UTF8Block {
    std::uint64_t beyond;         // not ASCII
    std::uint64_t continuations;  // 10xxxxxx
    std::uint64_t leads3;         // of three bytes or more
    std::uint64_t leads4;         // of four bytes or more
    std::uint64_t
        strange;  // leads of four bytes whose value is below 0x10000 or above 0x10FFFF, and those of more

    /// How many of the first bytes are whole characters that need no second look. A character that the end
    /// cuts in two is not among them. `size` is how many there may be.
    unsigned wholeCount(unsigned count, unsigned size) const {
        std::uint64_t leads = beyond & ~continuations;
        std::uint64_t expected = (leads << 1 | leads3 << 2 | leads4 << 3) & firstBits(size);
        if (std::uint64_t wrong = (expected ^ continuations) | strange) [[unlikely]] {
            unsigned place = static_cast<unsigned>(std::countr_zero(wrong));
            bool isMissing = (expected & ~continuations) >> place & 1;
            if (!isMissing) return place;
            return 63 - static_cast<unsigned>(std::countl_zero(~continuations & firstBits(place)));
        }
        std::uint64_t open = (leads & std::uint64_t{1} << (size - 1)) |
                             (leads3 & std::uint64_t{3} << (size - 2)) |
                             (leads4 & std::uint64_t{7} << (size - 3));
        return std::min(static_cast<unsigned>(std::countr_zero(open)), count);
    }
    /// Where units go, in as many bytes from the front: to the last byte of each character, the first half of
    /// a pair to the byte before.
    std::uint64_t unitPlaces(unsigned count) const {
        std::uint64_t kept = firstBits(count);
        return (kept & ~((continuations & kept) >> 1)) | (leads4 << 2 & kept);
    }
};

}  // namespace pelvor
