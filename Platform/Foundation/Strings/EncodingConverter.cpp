// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Strings/EncodingConverter.h"

#include <unicode/ucnv.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <charconv>
#include <utility>

#include "Foundation/Strings/CanonicalText.h"
#include "Foundation/Strings/EncodingList.h"
#include "Foundation/UnitBuffer.h"
#include "Shared/UTF8.h"

namespace pelvor {

std::string_view EncodingConverter::wholeCharacters(std::string_view bytes, bool isLast,
                                                    std::string& joined) {
    if (!_cutCharacter.empty()) {
        joined = std::exchange(_cutCharacter, {}).append(bytes);
        bytes = joined;
    }
    if (!isLast) {
        const std::size_t whole = bytes.size() - lengthOfCutCharacter(bytes);
        _cutCharacter = bytes.substr(whole);
        bytes = bytes.substr(0, whole);
    }
    return bytes;
}

bool EncodingConverter::decode(std::string_view bytes, std::u16string& units, bool isLast) {
    std::string joined;
    return decodeWhole(wholeCharacters(bytes, isLast, joined), units);
}

bool EncodingConverter::decodeInto(UnitBuffer& units, std::string_view bytes, bool isLast) {
    std::u16string text;
    if (!decode(bytes, text, isLast)) return false;
    units.append(text);
    return true;
}

namespace {

using Units = std::u16string_view;
using Bytes = std::string_view;

class UTF8Converter final : public EncodingConverter {
    bool decodeInto(UnitBuffer& units, Bytes bytes, bool isLast) override {
        std::string joined;
        bytes = wholeCharacters(bytes, isLast, joined);
        const DecodedUTF8 decoded = decodeUTF8(bytes, {units.room(bytes.size()), bytes.size()});
        units.take(decoded.unitCount);
        return decoded.isValid;
    }
    bool decodeWhole(Bytes bytes, std::u16string& units) override {
        const std::size_t start = units.size();
        units.resize(start + unitCountOfUTF8(bytes));
        const DecodedUTF8 decoded = decodeUTF8(bytes, std::span(units).subspan(start));
        units.resize(start + decoded.unitCount);
        return decoded.isValid;
    }
    std::size_t lengthOfCutCharacter(Bytes bytes) override {
        for (std::size_t back = 1; back <= std::min<std::size_t>(3, bytes.size()); ++back) {
            const auto byte = static_cast<unsigned char>(bytes[bytes.size() - back]);
            const std::size_t length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
            if (byte >= 0xC0) return back < length ? back : 0;
            if (byte < 0x80) return 0;
        }
        return 0;
    }
    std::optional<std::string> encode(Units units) override { return utf8FromUnits(units); }
    bool canEncode(char32_t c) override { return !isSurrogate(c); }
    char16_t substitute() override { return 0xFFFD; }
};

// A byte a character: ASCII below 0x80, a table above, which may be short.
class TableConverter final : public EncodingConverter {
  public:
    explicit TableConverter(Units upperHalf) : _upperHalf(upperHalf) {}

  private:
    bool decodeWhole(Bytes bytes, std::u16string& units) override {
        const std::size_t start = units.size();
        units.resize(start + bytes.size());
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            auto byte = static_cast<unsigned char>(bytes[i]);
            if (byte >= 0x80 && byte - 0x80u >= _upperHalf.size()) return false;
            units[start + i] = byte < 0x80 ? byte : _upperHalf[byte - 0x80u];
        }
        return true;
    }
    std::optional<std::string> encode(Units units) override {
        std::string bytes(units.size(), '\0');
        for (std::size_t i = 0; i < units.size(); ++i) {
            auto byte = byteOf(units[i]);
            if (!byte) return std::nullopt;
            bytes[i] = static_cast<char>(*byte);
        }
        return bytes;
    }
    bool canEncode(char32_t c) override { return byteOf(c).has_value(); }

    std::optional<unsigned char> byteOf(char32_t c) const {
        if (c < 0x80) return static_cast<unsigned char>(c);
        if (c > 0xFFFF) return std::nullopt;
        // Most tables have many characters where ISO Latin 1 has them.
        if (c < 0x100 && c - 0x80 < _upperHalf.size() && _upperHalf[c - 0x80] == c)
            return static_cast<unsigned char>(c);
        std::size_t place = _upperHalf.find(static_cast<char16_t>(c));
        if (place == Units::npos) return std::nullopt;
        return static_cast<unsigned char>(0x80 + place);
    }

    Units _upperHalf;
};

// ASCII in which "\\\\" is a backslash, "\\351" a character below U+0100 and "\\u20ac" any other unit.
class EscapeConverter final : public EncodingConverter {
    std::optional<std::string> encode(Units units) override {
        std::string bytes;
        for (char16_t unit : units) {
            if (unit == u'\\')
                bytes += "\\\\";
            else if (unit < 0x80)
                bytes += static_cast<char>(unit);
            else if (unit < 0x100)
                appendDigits(bytes += '\\', unit, 8, 3);
            else
                appendDigits(bytes += "\\u", unit, 16, 4);
        }
        return bytes;
    }
    bool decodeWhole(Bytes bytes, std::u16string& units) override {
        for (std::size_t i = 0; i < bytes.size();) {
            const std::size_t length = std::min(lengthOfCharacter(bytes, i), bytes.size() - i);
            auto unit = unitOf(bytes.substr(i, length));
            if (!unit) return false;
            units += *unit;
            i += length;
        }
        return true;
    }
    std::size_t lengthOfCutCharacter(Bytes bytes) override {
        for (std::size_t i = 0; (i = bytes.find('\\', i)) != bytes.npos; i += lengthOfCharacter(bytes, i))
            if (i + lengthOfCharacter(bytes, i) > bytes.size()) return bytes.size() - i;
        return 0;
    }
    bool canEncode(char32_t) override { return true; }

    static void appendDigits(std::string& bytes, unsigned value, unsigned base, unsigned count) {
        for (unsigned divisor = base == 8 ? 64 : 4096; count-- > 0; divisor /= base)
            bytes += "0123456789abcdef"[value / divisor % base];
    }
    // The length of the character, which its first two bytes tell; for a character that is cut, the length
    // reaches beyond the end.
    static std::size_t lengthOfCharacter(Bytes bytes, std::size_t place) {
        if (bytes[place] != '\\') return 1;
        if (place + 1 == bytes.size() || bytes[place + 1] == '\\') return 2;
        return bytes[place + 1] == 'u' ? 6 : 4;
    }
    static std::optional<char16_t> unitOf(Bytes character) {
        if (static_cast<signed char>(character[0]) < 0) return std::nullopt;
        if (character[0] != '\\') return static_cast<char16_t>(character[0]);
        if (character == "\\\\") return u'\\';
        return character.starts_with("\\u") ? readDigits(character.substr(2), 16, 4)
                                            : readDigits(character.substr(1), 8, 3);
    }
    static std::optional<char16_t> readDigits(Bytes digits, int base, std::size_t count) {
        std::uint16_t value = 0;
        auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
        if (digits.size() != count || error != std::errc() || end != digits.data() + count)
            return std::nullopt;
        return value;
    }
};

enum class ByteOrder { little, big };

// Values of two or four bytes.
template <class Value>
class WideConverter final : public EncodingConverter {
  public:
    // Without an order, a mark at the front tells it, and one is written.
    explicit WideConverter(std::optional<ByteOrder> order) : _order(order) {}

  private:
    static constexpr std::size_t kSize = sizeof(Value);

    bool decodeWhole(Bytes bytes, std::u16string& units) override {
        if (bytes.size() % kSize != 0) return false;
        if (!_readOrder && !bytes.empty()) bytes.remove_prefix(findOrder(bytes));
        units.reserve(units.size() + bytes.size() / kSize);
        for (std::size_t i = 0; i < bytes.size(); i += kSize)
            if (!append(units, read(bytes, i, *_readOrder))) return false;
        return true;
    }
    std::size_t lengthOfCutCharacter(Bytes bytes) override { return bytes.size() % kSize; }

    std::optional<std::string> encode(Units units) override {
        std::string bytes;
        bytes.reserve((units.size() + 1) * kSize);
        if (!_order) write(bytes, 0xFEFF);
        for (std::size_t i = 0; i < units.size();) {
            char32_t c = kSize == 2 ? units[i] : codePointAt(units, i);
            if (!canEncode(c)) return std::nullopt;
            write(bytes, c);
            i += unitCount(c);
        }
        return bytes;
    }
    bool canEncode(char32_t c) override { return kSize == 2 || !isSurrogate(c); }
    char16_t substitute() override { return 0xFFFD; }

    // How long the mark is that tells the order; without one, bytes are little-endian.
    std::size_t findOrder(Bytes bytes) {
        const bool isBig = read(bytes, 0, ByteOrder::big) == 0xFEFF;
        _readOrder = isBig ? ByteOrder::big : ByteOrder::little;
        return isBig || read(bytes, 0, ByteOrder::little) == 0xFEFF ? kSize : 0;
    }
    static char32_t read(Bytes bytes, std::size_t place, ByteOrder order) {
        char32_t value = 0;
        for (std::size_t i = 0; i < kSize; ++i) {
            std::size_t index = order == ByteOrder::big ? i : kSize - 1 - i;
            value = value << 8 | static_cast<unsigned char>(bytes[place + index]);
        }
        return value;
    }
    void write(std::string& bytes, char32_t value) const {
        for (std::size_t i = 0; i < kSize; ++i) {
            std::size_t shift = _order == ByteOrder::big ? kSize - 1 - i : i;
            bytes += static_cast<char>(value >> shift * 8);
        }
    }
    static bool append(std::u16string& units, char32_t value) {
        if (value > 0x10FFFF || (kSize == 4 && isSurrogate(value))) return false;
        appendCodepoint(units, value);
        return true;
    }

    std::optional<ByteOrder> _order;
    std::optional<ByteOrder> _readOrder = _order;
};

class ICUConverter final : public EncodingConverter {
  public:
    explicit ICUConverter(const char* name) {
        UErrorCode error = U_ZERO_ERROR;
        _converter.reset(ucnv_open(name, &error));
        if (!_converter) return;
        ucnv_setToUCallBack(_converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
        ucnv_setFromUCallBack(_converter.get(), &refuse, nullptr, nullptr, nullptr, &error);
        ucnv_setFallback(_converter.get(), false);
    }
    bool isOpen() const { return _converter != nullptr; }

  private:
    // Leaves the error as it is. ICU's own callback for stopping passes over invisible characters, as if they
    // had been encoded.
    static void refuse(const void*, UConverterFromUnicodeArgs*, const UChar*, int32_t, UChar32,
                       UConverterCallbackReason, UErrorCode*) {}

    // ICU refuses larger pieces.
    static constexpr std::ptrdiff_t kLongestPiece = 1 << 28;

    // Converts what stands from `source` to `end`, which `step` does as far as there is room. Whether all is
    // converted.
    template <class Source, class Text, class Step>
    static bool convert(const Source* source, const Source* end, Text& text, Step step) {
        std::size_t size = text.size();
        UErrorCode error = U_ZERO_ERROR;
        do {
            const Source* pieceEnd = source + std::min(end - source, kLongestPiece);
            text.resize(size + static_cast<std::size_t>(pieceEnd - source) + 16);
            auto* target = text.data() + size;
            error = U_ZERO_ERROR;
            step(&target, text.data() + text.size(), &source, pieceEnd, pieceEnd == end, error);
            size = static_cast<std::size_t>(target - text.data());
        } while (error == U_BUFFER_OVERFLOW_ERROR || (U_SUCCESS(error) && source < end));
        text.resize(size);
        return U_SUCCESS(error);
    }
    bool decode(Bytes bytes, std::u16string& units, bool isLast) override {
        auto step = [&](char16_t** target, const char16_t* limit, const char** source, const char* end,
                        bool isEnd, UErrorCode& error) {
            ucnv_toUnicode(_converter.get(), target, limit, source, end, nullptr, isLast && isEnd, &error);
        };
        return convert(bytes.data(), bytes.data() + bytes.size(), units, step);
    }
    std::optional<std::string> encode(Units units) override {
        auto step = [&](char** target, const char* limit, const char16_t** source, const char16_t* end,
                        bool isEnd, UErrorCode& error) {
            ucnv_fromUnicode(_converter.get(), target, limit, source, end, nullptr, isEnd, &error);
        };
        std::string bytes;
        ucnv_resetFromUnicode(_converter.get());
        if (!convert(units.data(), units.data() + units.size(), bytes, step)) return std::nullopt;
        return bytes;
    }
    // These two of ICU's converters forget, now and then, which script they have switched to.
    bool isFaithful() override {
        const UConverterType type = ucnv_getType(_converter.get());
        return type != UCNV_COMPOUND_TEXT && type != UCNV_ISCII;
    }
    // For some converters, ICU's own set of the characters that they can convert is too large.
    bool canEncode(char32_t c) override {
        char16_t units[2];
        auto count = static_cast<int32_t>(writeCodepoint(c, units) - units);
        char bytes[64];
        UErrorCode error = U_ZERO_ERROR;
        ucnv_fromUChars(_converter.get(), bytes, sizeof bytes, units, count, &error);
        return U_SUCCESS(error);
    }

    std::unique_ptr<UConverter, void (*)(UConverter*)> _converter{nullptr, &ucnv_close};
};

// The upper half of the NEXTSTEP table; its last two places are empty.
constexpr char16_t kNextStep[] =
    u"\u00A0\u00C0\u00C1\u00C2\u00C3\u00C4\u00C5\u00C7\u00C8\u00C9\u00CA\u00CB\u00CC\u00CD\u00CE\u00CF"
    u"\u00D0\u00D1\u00D2\u00D3\u00D4\u00D5\u00D6\u00D9\u00DA\u00DB\u00DC\u00DD\u00DE\u00B5\u00D7\u00F7"
    u"\u00A9\u00A1\u00A2\u00A3\u2044\u00A5\u0192\u00A7\u00A4\u2019\u201C\u00AB\u2039\u203A\uFB01\uFB02"
    u"\u00AE\u2013\u2020\u2021\u00B7\u00A6\u00B6\u2022\u201A\u201E\u201D\u00BB\u2026\u2030\u00AC\u00BF"
    u"\u00B9\u02CB\u00B4\u02C6\u02DC\u00AF\u02D8\u02D9\u00A8\u00B2\u02DA\u00B8\u00B3\u02DD\u02DB\u02C7"
    u"\u2014\u00B1\u00BC\u00BD\u00BE\u00E0\u00E1\u00E2\u00E3\u00E4\u00E5\u00E7\u00E8\u00E9\u00EA\u00EB"
    u"\u00EC\u00C6\u00ED\u00AA\u00EE\u00EF\u00F0\u00F1\u0141\u00D8\u0152\u00BA\u00F2\u00F3\u00F4\u00F5"
    u"\u00F6\u00E6\u00F9\u00FA\u00FB\u0131\u00FC\u00FD\u0142\u00F8\u0153\u00DF\u00FE\u00FF";
static_assert(std::size(kNextStep) == 127);

Units latin1Half() {
    static const std::u16string half = [] {
        std::u16string units(128, u'\0');
        for (char16_t i = 0; i < 128; ++i) units[i] = static_cast<char16_t>(0x80 + i);
        return units;
    }();
    return half;
}

// Mac Roman with its characters moved to where ISO Latin 1 has them; the characters that ISO Latin 1 lacks
// fill the other places in their own order.
Units macRomanLatin1Half() {
    static const std::u16string half = [] {
        std::string bytes(128, '\0');
        for (unsigned i = 0; i < 128; ++i) bytes[i] = static_cast<char>(0x80 + i);
        std::u16string roman = decodeBytes(bytes, NSMacOSRomanStringEncoding).value_or(std::u16string());
        std::u16string units(roman.size(), u'\0');
        auto isLatin1 = [](char16_t unit) { return unit >= 0x80 && unit <= 0xFF; };
        for (char16_t unit : roman)
            if (isLatin1(unit)) units[unit - 0x80u] = unit;
        for (char16_t unit : roman)
            if (!isLatin1(unit)) units[units.find(u'\0')] = unit;
        return units;
    }();
    return half;
}

constexpr NSStringEncoding kMacRomanLatin1 = 0x80000A04;

}  // namespace

std::unique_ptr<EncodingConverter> makeConverter(NSStringEncoding encoding) {
    switch (encoding) {
        case NSUTF8StringEncoding:
            return std::make_unique<UTF8Converter>();
        case NSASCIIStringEncoding:
            return std::make_unique<TableConverter>(Units());
        case NSNEXTSTEPStringEncoding:
            return std::make_unique<TableConverter>(kNextStep);
        case NSISOLatin1StringEncoding:
            return std::make_unique<TableConverter>(latin1Half());
        case kMacRomanLatin1:
            return std::make_unique<TableConverter>(macRomanLatin1Half());
        case NSNonLossyASCIIStringEncoding:
            return std::make_unique<EscapeConverter>();
        case NSUnicodeStringEncoding:
            return std::make_unique<WideConverter<char16_t>>(std::nullopt);
        case NSUTF16BigEndianStringEncoding:
            return std::make_unique<WideConverter<char16_t>>(ByteOrder::big);
        case NSUTF16LittleEndianStringEncoding:
            return std::make_unique<WideConverter<char16_t>>(ByteOrder::little);
        case NSUTF32StringEncoding:
            return std::make_unique<WideConverter<char32_t>>(std::nullopt);
        case NSUTF32BigEndianStringEncoding:
            return std::make_unique<WideConverter<char32_t>>(ByteOrder::big);
        case NSUTF32LittleEndianStringEncoding:
            return std::make_unique<WideConverter<char32_t>>(ByteOrder::little);
        default: {
            const EncodingEntry* entry = findEncoding(encoding);
            if (!entry || !entry->converterName) return nullptr;
            auto converter = std::make_unique<ICUConverter>(entry->converterName);
            return converter->isOpen() ? std::move(converter) : nullptr;
        }
    }
}

}  // namespace pelvor
