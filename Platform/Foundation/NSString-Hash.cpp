// SPDX-License-Identifier: Apache-2.0
// The hash of a string's units.
#include <sys/random.h>

#include <atomic>
#include <bit>
#include <cstring>

#include "Foundation/Strings/NSInlineString.h"

namespace pelvor {
namespace {

// Products of 64-bit words folded to their halves' exclusive or: every bit of the words reaches every bit
// of the result.
constexpr std::uint64_t kFirst = 0x9E3779B97F4A7C15, kSecond = 0xD6E8FEB86659FD93,
                        kThird = 0xA0761D6478BD642F, kFourth = 0xE7037ED1A0B428DB;

// Another number in each process, so that nobody can make up keys that all fall on one place of a table.
// Never 0, which stands for "not yet drawn".
constinit std::atomic<std::uint64_t> secretOfProcess{0};

[[gnu::noinline]] std::uint64_t drawSecret() {
    std::uint64_t drawn = 0, none = 0;
    if (::getrandom(&drawn, sizeof drawn, GRND_NONBLOCK) != sizeof drawn)
        drawn = reinterpret_cast<std::uintptr_t>(&drawn) * kFirst;
    drawn |= 1;
    return secretOfProcess.compare_exchange_strong(none, drawn) ? drawn : none;
}

inline std::uint64_t processSecret() {
    std::uint64_t secret = secretOfProcess.load(std::memory_order_relaxed);
    return secret ? secret : drawSecret();
}

inline std::uint64_t mix(std::uint64_t a, std::uint64_t b) {
    auto product = static_cast<unsigned __int128>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

inline std::uint64_t word(const char* bytes) {
    std::uint64_t value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

// Up to 16 bytes as two words; the length tells short texts of equal words apart.
std::uint64_t mixTail(const char* bytes, std::size_t size, std::uint64_t first, std::uint64_t seed) {
    std::uint64_t a = 0, b = 0;
    if (size >= 8) {
        a = word(bytes);
        b = word(bytes + size - 8);
    } else if (size > 0) {  // nothing may be nowhere
        std::memcpy(&a, bytes, size);
    }
    return mix(a ^ first, b ^ seed);
}

}  // namespace

std::uintptr_t hashUnits(std::u16string_view units) {
    const char* bytes = reinterpret_cast<const char*>(units.data());
    std::size_t size = units.size() * sizeof(unichar);
    const std::uint64_t secret = processSecret();
    // The factors of a product have keys without a known difference: texts cannot be made to change places.
    const std::uint64_t firstKey = kFirst ^ secret, secondKey = kSecond ^ std::rotl(secret, 16),
                        thirdKey = kThird ^ std::rotl(secret, 32);
    std::uint64_t seed = kThird ^ std::rotl(secret, 40) ^ size, other = kFourth ^ std::rotl(secret, 48),
                  third = kSecond ^ std::rotl(secret, 56);
    if (size > 48) {
        for (; size > 48; bytes += 48, size -= 48) {
            seed = mix(word(bytes) ^ firstKey, word(bytes + 8) ^ seed);
            other = mix(word(bytes + 16) ^ secondKey, word(bytes + 24) ^ other);
            third = mix(word(bytes + 32) ^ thirdKey, word(bytes + 40) ^ third);
        }
        seed ^= other ^ third;
    }
    for (; size > 16; bytes += 16, size -= 16) seed = mix(word(bytes) ^ firstKey, word(bytes + 8) ^ seed);
    std::uint64_t hash = mix(mixTail(bytes, size, firstKey, seed), kSecond);
    // Strings keep half of it, and 0 stands for "not yet computed".
    auto half = static_cast<std::uint32_t>(hash ^ hash >> 32);
    if (!half) half = 1;
    return std::uintptr_t{half} << 32 | half;
}

}  // namespace pelvor
