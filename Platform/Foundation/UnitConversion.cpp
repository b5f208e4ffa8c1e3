// SPDX-License-Identifier: Apache-2.0
#include "Foundation/UnitConversionPrivate.h"

#include <unicode/ustring.h>

namespace pelvor {
namespace {

// Loops over blocks of a fixed size become vector code.
constexpr std::size_t kBlock = 32;

template <class Char>
bool isAsciiBlock(const Char* text) {
    std::make_unsigned_t<Char> all = 0;
    for (std::size_t i = 0; i < kBlock; ++i) all |= static_cast<std::make_unsigned_t<Char>>(text[i]);
    return all < 0x80;
}

template <class Char>
std::size_t prefixOf(std::basic_string_view<Char> text) {
    std::size_t i = 0;
    while (i + kBlock <= text.size() && isAsciiBlock(text.data() + i)) i += kBlock;
    while (i < text.size() && static_cast<std::make_unsigned_t<Char>>(text[i]) < 0x80) ++i;
    return i;
}

template <class From, class To>
void copyEach(std::basic_string_view<From> from, To* to) {
    using Plain = std::make_unsigned_t<From>;
    std::size_t i = 0;
    for (; i + kBlock <= from.size(); i += kBlock)
        for (std::size_t k = 0; k < kBlock; ++k) to[i + k] = static_cast<To>(static_cast<Plain>(from[i + k]));
    for (; i < from.size(); ++i) to[i] = static_cast<To>(static_cast<Plain>(from[i]));
}

// Text without multi-byte characters at its front is copied; ICU takes the rest. `substitute` below 0: fail.
std::optional<std::u16string> decode(std::string_view bytes, UChar32 substitute) {
    std::size_t prefix = asciiPrefix(bytes);
    std::u16string units(bytes.size(), u'\0');
    widen(bytes.substr(0, prefix), units.data());
    if (prefix == bytes.size()) return units;
    UErrorCode error = U_ZERO_ERROR;
    int32_t size = 0;
    auto rest = static_cast<int32_t>(bytes.size() - prefix);
    u_strFromUTF8WithSub(units.data() + prefix, rest, &size, bytes.data() + prefix, rest, substitute, nullptr,
                         &error);
    if (U_FAILURE(error)) return std::nullopt;
    units.resize(prefix + static_cast<std::size_t>(size));
    return units;
}

std::optional<std::string> encode(std::u16string_view units, UChar32 substitute) {
    std::size_t prefix = asciiPrefix(units), rest = units.size() - prefix;
    std::string bytes(prefix + rest * 3, '\0');
    narrow(units.substr(0, prefix), bytes.data());
    if (rest == 0) return bytes;
    UErrorCode error = U_ZERO_ERROR;
    int32_t size = 0;
    u_strToUTF8WithSub(bytes.data() + prefix, static_cast<int32_t>(rest * 3), &size, units.data() + prefix,
                       static_cast<int32_t>(rest), substitute, nullptr, &error);
    if (U_FAILURE(error)) return std::nullopt;
    bytes.resize(prefix + static_cast<std::size_t>(size));
    return bytes;
}

}  // namespace

std::size_t asciiPrefix(std::string_view bytes) { return prefixOf(bytes); }

std::size_t asciiPrefix(std::u16string_view units) { return prefixOf(units); }

void widen(std::string_view bytes, char16_t* units) { copyEach(bytes, units); }

void narrow(std::u16string_view units, char* bytes) { copyEach(units, bytes); }

std::optional<std::u16string> unitsFromUTF8(std::string_view bytes) { return decode(bytes, U_SENTINEL); }

std::u16string unitsFromUTF8Mending(std::string_view bytes) { return *decode(bytes, 0xFFFD); }

std::optional<std::string> utf8FromUnits(std::u16string_view units) { return encode(units, U_SENTINEL); }

std::string utf8FromUnitsMending(std::u16string_view units) { return *encode(units, 0xFFFD); }

}  // namespace pelvor
