// SPDX-License-Identifier: Apache-2.0
// Base64 and hexadecimal text: bytes there and back, and any text beside readers that take it unit by unit.
#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Foundation/NSString.h"
#include "NSData-PelvorAdditions.h"
#include "Require.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/NSException.h"
#include "Shared/WideInstructions.h"

namespace pelvor {
namespace {

using Additions = NSData_PelvorAdditions;
using Bytes = std::vector<std::uint8_t>;

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

Bytes bytesOf(NSData* data) {
    auto* bytes = static_cast<const std::uint8_t*>(data->bytes());
    return Bytes(bytes, bytes + data->length());
}

std::string encoded(const Bytes& bytes, unsigned lineLength) {
    std::string text;
    unsigned inLine = 0;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        unsigned group = 0;
        for (std::size_t k = i; k < i + 3; ++k) group = group << 8 | (k < bytes.size() ? bytes[k] : 0u);
        for (std::size_t k = 0; k < 4; ++k)
            text += i + k <= bytes.size() ? kAlphabet[group >> (18 - 6 * k) & 63] : '=';
        inLine += 4;
        if (lineLength && inLine >= lineLength) {
            text += '\n';
            inLine = 0;
        }
    }
    return text;
}

// None where the text ends inside a group.
std::optional<Bytes> decoded(const std::u16string& text) {
    if (std::ranges::any_of(text, [](char16_t unit) { return unit > 127; })) return Bytes();
    std::vector<unsigned> group;
    Bytes bytes;
    for (char16_t unit : text) {
        std::size_t value = unit == u'=' ? 64 : kAlphabet.find(static_cast<char>(unit));
        if (value == kAlphabet.npos) continue;
        group.push_back(static_cast<unsigned>(value));
        if (group.size() < 4) continue;
        bool isPadded = std::ranges::find(group, 64u) != group.end();
        std::size_t count = group[0] == 64 || group[1] == 64 ? 0
                            : group[2] == 64                 ? 1
                            : group[3] == 64                 ? 2
                                                             : 3;
        unsigned bits =
            (group[0] & 63) << 18 | (group[1] & 63) << 12 | (group[2] & 63) << 6 | (group[3] & 63);
        for (std::size_t i = 0; i < count; ++i)
            bytes.push_back(static_cast<std::uint8_t>(bits >> (16 - 8 * i)));
        group.clear();
        if (isPadded) return bytes;
    }
    if (!group.empty()) return std::nullopt;
    return bytes;
}

void checkBase64Text(const std::u16string& text) {
    std::optional<Bytes> expected = decoded(text);
    try {
        NSData* data = Additions::dataWithBase64String(NSString::of(text));
        require(expected && bytesOf(data) == *expected, "Base64 text reads differently");
    } catch (const NSException& exception) {
        require(!expected && exception.name() == Base64Error, "Base64 text raises");
    }
}

// None for text with anything but digits.
std::optional<Bytes> hexBytes(std::u16string text) {
    while (!text.empty() && (text[0] == ' ' || (text[0] >= 9 && text[0] <= 13))) text.erase(0, 1);
    if (text.size() > 1 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) text.erase(0, 2);
    if (text.size() % 2) text.insert(0, 1, u'0');
    Bytes bytes;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        char digits[] = {static_cast<char>(text[i]), static_cast<char>(text[i + 1]), '\0'};
        if (!std::isxdigit(static_cast<unsigned char>(digits[0])) ||
            !std::isxdigit(static_cast<unsigned char>(digits[1])))
            return std::nullopt;
        bytes.push_back(static_cast<std::uint8_t>(std::stoul(digits, nullptr, 16)));
    }
    return bytes;
}

void checkHexText(const std::u16string& text) {
    NSData* data = Additions::dataWithHexString(NSString::of(text));
    std::optional<Bytes> expected = hexBytes(text);
    require((data != nullptr) == expected.has_value(), "other hexadecimal text is bad");
    require(!data || bytesOf(data) == *expected, "hexadecimal text reads differently");
}

void checkBytes(const Bytes& bytes, unsigned lineLength) {
    NSData* data = NSData::dataWithBytes_length(bytes.data(), static_cast<NSUInteger>(bytes.size()));
    Bytes lines = bytesOf(base64DataWithLineLength(data, lineLength));
    require(std::ranges::equal(lines, encoded(bytes, lineLength)), "Base64 lines");
    require(base64String(data)->toUTF8() == encoded(bytes, 0), "Base64 string");
    checkBase64Text(std::u16string(lines.begin(), lines.end()));
    require(bytesOf(Additions::dataWithBase64String(base64String(data))) == bytes, "Base64 there and back");
    require(bytesOf(Additions::dataWithHexString(lowercaseHexString(data))) == bytes, "hex there and back");
}

void run(const std::uint8_t* data, std::size_t size) {
    std::optional<PlainInstructionsScope> plain;
    if (data[0] & 0x80) plain.emplace();
    Bytes bytes(data + 1, data + size);
    checkBytes(bytes, data[0] % 80);
    // The bytes as units, mostly ASCII; and as text of the alphabet or of digits, with few other units.
    std::u16string text(bytes.begin(), bytes.end()), letters, digits;
    for (std::uint8_t byte : bytes) {
        bool isOther = byte >= 0xF8;
        letters +=
            isOther ? u"=\n \r\u0141\x7F=\xD801"[byte & 7] : static_cast<char16_t>(kAlphabet[byte & 63]);
        digits += byte == 0xFF ? static_cast<char16_t>(0x3000 + bytes[0])
                               : static_cast<char16_t>("0123456789abcdefABCDEF"[byte % 22]);
    }
    checkBase64Text(text);
    checkBase64Text(letters);
    checkHexText(text);
    checkHexText(digits);
}

}  // namespace
}  // namespace pelvor

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pelvor::AutoreleasePool pool;
    if (size >= 2) pelvor::run(data, std::min<std::size_t>(size, 4000));
    return 0;
}
