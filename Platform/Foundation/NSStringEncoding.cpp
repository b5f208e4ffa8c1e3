// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSStringEncoding.h"

#include <unicode/uchar.h>
#include <unicode/ucnv.h>
#include <unicode/unorm2.h>
#include <unicode/uset.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <memory>

#include "Foundation/Strings/CanonicalText.h"
#include "Foundation/Strings/UnitConversion.h"

namespace pelvor {
namespace {

using Units = std::u16string_view;
using Bytes = std::string_view;

struct Encoding {
    NSStringEncoding number;
    const char* icuName;  // none: converted by our own code
    const char* ianaName;
    const char* name;
};

// Encodings without a name of their own in the interface: 0x80000000 and the platform's other number for
// them.
constexpr NSStringEncoding kKOI8R = 0x80000A02;
constexpr NSStringEncoding kMacRomanLatin1 = 0x80000A04;

constexpr Encoding kEncodings[] = {
    {NSASCIIStringEncoding, nullptr, "us-ascii", "Western (ASCII)"},
    {NSNEXTSTEPStringEncoding, nullptr, "x-nextstep", "Western (NextStep)"},
    {NSJapaneseEUCStringEncoding, "euc-jp-2007", "euc-jp", "Japanese (EUC)"},
    {NSUTF8StringEncoding, nullptr, "utf-8", "Unicode (UTF-8)"},
    {NSISOLatin1StringEncoding, nullptr, "iso-8859-1", "Western (ISO Latin 1)"},
    {NSNonLossyASCIIStringEncoding, nullptr, "x-nonlossy-ascii", "Non-lossy ASCII"},
    {NSShiftJISStringEncoding, "ibm-943_P15A-2003", "shift_jis", "Japanese (Windows, DOS)"},
    {NSISOLatin2StringEncoding, "ibm-912_P100-1995", "iso-8859-2", "Central European (ISO Latin 2)"},
    {NSUnicodeStringEncoding, nullptr, "utf-16", "Unicode (UTF-16)"},
    {NSWindowsCP1251StringEncoding, "ibm-5347_P100-1998", "windows-1251", "Cyrillic (Windows)"},
    {NSWindowsCP1252StringEncoding, "ibm-5348_P100-1997", "windows-1252", "Western (Windows Latin 1)"},
    {NSWindowsCP1253StringEncoding, "ibm-5349_P100-1998", "windows-1253", "Greek (Windows)"},
    {NSWindowsCP1254StringEncoding, "ibm-5350_P100-1998", "windows-1254", "Turkish (Windows Latin 5)"},
    {NSWindowsCP1250StringEncoding, "ibm-5346_P100-1998", "windows-1250",
     "Central European (Windows Latin 2)"},
    {NSISO2022JPStringEncoding, "ISO_2022,locale=ja,version=0", "iso-2022-jp", "Japanese (ISO 2022-JP)"},
    {NSMacOSRomanStringEncoding, "macos-0_2-10.2", "macintosh", "Western (Mac OS Roman)"},
    {kKOI8R, "ibm-878_P100-1996", "koi8-r", "Cyrillic (KOI8-R)"},
    {kMacRomanLatin1, nullptr, "x-mac-roman-latin1", "Western (Mac OS Roman, Latin 1 order)"},
    {NSUTF16BigEndianStringEncoding, nullptr, "utf-16be", "Unicode (UTF-16BE)"},
    {NSUTF16LittleEndianStringEncoding, nullptr, "utf-16le", "Unicode (UTF-16LE)"},
    {NSUTF32StringEncoding, nullptr, "utf-32", "Unicode (UTF-32)"},
    {NSUTF32BigEndianStringEncoding, nullptr, "utf-32be", "Unicode (UTF-32BE)"},
    {NSUTF32LittleEndianStringEncoding, nullptr, "utf-32le", "Unicode (UTF-32LE)"},
};

const Encoding* findEncoding(NSStringEncoding number) {
    auto found = std::find_if(std::begin(kEncodings), std::end(kEncodings),
                              [&](const Encoding& encoding) { return encoding.number == number; });
    return found == std::end(kEncodings) ? nullptr : found;
}

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

// A converter between one encoding and UTF-16, which refuses what does not fit exactly.
class Converter {
  public:
    virtual ~Converter() = default;
    virtual std::optional<std::u16string> decode(Bytes bytes) = 0;
    virtual std::optional<std::string> encode(Units units) = 0;
    virtual bool canEncode(char32_t c) = 0;
    /// What stands in for what cannot be encoded.
    virtual char16_t substitute() { return u'?'; }
};

bool isHalf(char32_t c) { return c >= 0xD800 && c < 0xE000; }

class UTF8Converter final : public Converter {
    std::optional<std::u16string> decode(Bytes bytes) override { return unitsFromUTF8(bytes); }
    std::optional<std::string> encode(Units units) override { return utf8FromUnits(units); }
    bool canEncode(char32_t c) override { return !isHalf(c); }
    char16_t substitute() override { return 0xFFFD; }
};

// A byte a character: ASCII below 0x80, a table above, which may be short.
class TableConverter final : public Converter {
  public:
    explicit TableConverter(Units upperHalf) : _upperHalf(upperHalf) {}

  private:
    std::optional<std::u16string> decode(Bytes bytes) override {
        std::u16string units(bytes.size(), u'\0');
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            auto byte = static_cast<unsigned char>(bytes[i]);
            if (byte >= 0x80 && byte - 0x80u >= _upperHalf.size()) return std::nullopt;
            units[i] = byte < 0x80 ? byte : _upperHalf[byte - 0x80u];
        }
        return units;
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

// ASCII in which "\\" is a backslash, "\351" a character below U+0100 and "\u20ac" any other unit.
class EscapeConverter final : public Converter {
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
    std::optional<std::u16string> decode(Bytes bytes) override {
        std::u16string units;
        for (std::size_t i = 0; i < bytes.size();) {
            if (static_cast<signed char>(bytes[i]) < 0) return std::nullopt;
            if (bytes[i] != '\\') {
                units += static_cast<char16_t>(bytes[i++]);
                continue;
            }
            auto unit = readEscape(bytes, ++i);
            if (!unit) return std::nullopt;
            units += *unit;
        }
        return units;
    }
    bool canEncode(char32_t) override { return true; }

    static void appendDigits(std::string& bytes, unsigned value, unsigned base, unsigned count) {
        for (unsigned divisor = base == 8 ? 64 : 4096; count-- > 0; divisor /= base)
            bytes += "0123456789abcdef"[value / divisor % base];
    }
    static std::optional<char16_t> readEscape(Bytes bytes, std::size_t& place) {
        if (place < bytes.size() && bytes[place] == '\\') {
            ++place;
            return u'\\';
        }
        if (place < bytes.size() && bytes[place] == 'u') return readDigits(bytes, ++place, 16, 4);
        return readDigits(bytes, place, 8, 3);
    }
    static std::optional<char16_t> readDigits(Bytes bytes, std::size_t& place, int base, std::size_t count) {
        if (place + count > bytes.size()) return std::nullopt;
        unsigned value = 0;
        for (std::size_t end = place + count; place < end; ++place) {
            int digit = u_digit(static_cast<UChar32>(bytes[place]), static_cast<int8_t>(base));
            if (digit < 0) return std::nullopt;
            value = value * static_cast<unsigned>(base) + static_cast<unsigned>(digit);
        }
        return static_cast<char16_t>(value);
    }
};

enum class ByteOrder { little, big };

// Values of two or four bytes.
template <class Value>
class WideConverter final : public Converter {
  public:
    // Without an order, a mark at the front tells it, and one is written.
    explicit WideConverter(std::optional<ByteOrder> order) : _order(order) {}

  private:
    static constexpr std::size_t kSize = sizeof(Value);

    std::optional<std::u16string> decode(Bytes bytes) override {
        if (bytes.size() % kSize != 0) return std::nullopt;
        ByteOrder order = _order.value_or(ByteOrder::little);
        if (!_order && !bytes.empty()) {
            bool isBig = read(bytes, 0, ByteOrder::big) == 0xFEFF;
            if (isBig) order = ByteOrder::big;
            if (isBig || read(bytes, 0, ByteOrder::little) == 0xFEFF) bytes.remove_prefix(kSize);
        }
        std::u16string units;
        units.reserve(bytes.size() / kSize);
        for (std::size_t i = 0; i < bytes.size(); i += kSize)
            if (!append(units, read(bytes, i, order))) return std::nullopt;
        return units;
    }

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
    bool canEncode(char32_t c) override { return kSize == 2 || !isHalf(c); }
    char16_t substitute() override { return 0xFFFD; }

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
        if (value > 0x10FFFF || (kSize == 4 && isHalf(value))) return false;
        if (value > 0xFFFF) units += U16_LEAD(value);
        units += value > 0xFFFF ? U16_TRAIL(value) : static_cast<char16_t>(value);
        return true;
    }

    std::optional<ByteOrder> _order;
};

class ICUConverter final : public Converter {
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
    // Leaves the error as it is. ICU's own way to stop passes over characters that are not seen, as if they
    // had been encoded.
    static void refuse(const void*, UConverterFromUnicodeArgs*, const UChar*, int32_t, UChar32,
                       UConverterCallbackReason, UErrorCode*) {}

    std::optional<std::u16string> decode(Bytes bytes) override {
        // No encoding here makes more than two units of a byte.
        std::u16string units(bytes.size() * 2, u'\0');
        UErrorCode error = U_ZERO_ERROR;
        int32_t size = ucnv_toUChars(_converter.get(), units.data(), static_cast<int32_t>(units.size()),
                                     bytes.data(), static_cast<int32_t>(bytes.size()), &error);
        if (U_FAILURE(error)) return std::nullopt;
        units.resize(static_cast<std::size_t>(size));
        return units;
    }
    std::optional<std::string> encode(Units units) override {
        auto room = UCNV_GET_MAX_BYTES_FOR_STRING(static_cast<int32_t>(units.size()),
                                                  ucnv_getMaxCharSize(_converter.get()));
        std::string bytes(static_cast<std::size_t>(room), '\0');
        UErrorCode error = U_ZERO_ERROR;
        int32_t size = ucnv_fromUChars(_converter.get(), bytes.data(), room, units.data(),
                                       static_cast<int32_t>(units.size()), &error);
        if (U_FAILURE(error)) return std::nullopt;
        bytes.resize(static_cast<std::size_t>(size));
        return bytes;
    }
    bool canEncode(char32_t c) override {
        UErrorCode error = U_ZERO_ERROR;
        if (!_characters) {
            _characters.reset(uset_openEmpty());
            ucnv_getUnicodeSet(_converter.get(), _characters.get(), UCNV_ROUNDTRIP_SET, &error);
        }
        return uset_contains(_characters.get(), static_cast<UChar32>(c));
    }

    struct Closer {
        void operator()(UConverter* converter) const { ucnv_close(converter); }
        void operator()(USet* set) const { uset_close(set); }
    };
    std::unique_ptr<UConverter, Closer> _converter;
    std::unique_ptr<USet, Closer> _characters;
};

Units latin1Half() {
    static const std::u16string half = [] {
        std::u16string units(128, u'\0');
        for (char16_t i = 0; i < 128; ++i) units[i] = static_cast<char16_t>(0x80 + i);
        return units;
    }();
    return half;
}

// Mac Roman with its characters moved to where ISO Latin 1 has them; those that it lacks fill the other
// places in their own order.
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

// None for an encoding that is not at hand.
std::unique_ptr<Converter> makeConverter(NSStringEncoding encoding) {
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
            const Encoding* entry = findEncoding(encoding);
            if (!entry) return nullptr;
            auto converter = std::make_unique<ICUConverter>(entry->icuName);
            return converter->isOpen() ? std::move(converter) : nullptr;
        }
    }
}

// Loss

struct Likeness {
    char16_t character;
    Units text;
};

// What normalisation does not know to be alike. Sorted.
constexpr Likeness kLikenesses[] = {
    {u'\u00AB', u"<<"}, {u'\u00BB', u">>"}, {u'\u00C6', u"AE"}, {u'\u00D0', u"D"},  {u'\u00D7', u"x"},
    {u'\u00D8', u"O"},  {u'\u00DE', u"Th"}, {u'\u00DF', u"ss"}, {u'\u00E6', u"ae"}, {u'\u00F0', u"d"},
    {u'\u00F8', u"o"},  {u'\u00FE', u"th"}, {u'\u0110', u"D"},  {u'\u0111', u"d"},  {u'\u0131', u"i"},
    {u'\u0141', u"L"},  {u'\u0142', u"l"},  {u'\u0152', u"OE"}, {u'\u0153', u"oe"}, {u'\u2010', u"-"},
    {u'\u2012', u"-"},  {u'\u2013', u"-"},  {u'\u2014', u"-"},  {u'\u2015', u"-"},  {u'\u2018', u"'"},
    {u'\u2019', u"'"},  {u'\u201A', u"'"},  {u'\u201B', u"'"},  {u'\u201C', u"\""}, {u'\u201D', u"\""},
    {u'\u201E', u"\""}, {u'\u2022', u"*"},  {u'\u2028', u"\n"}, {u'\u2029', u"\n"}, {u'\u2032', u"'"},
    {u'\u2033', u"\""}, {u'\u2039', u"<"},  {u'\u203A', u">"},  {u'\u2044', u"/"},  {u'\u20AC', u"EUR"},
    {u'\u2212', u"-"},
};

Units likenessOf(char32_t c) {
    auto found =
        std::lower_bound(std::begin(kLikenesses), std::end(kLikenesses), c,
                         [](const Likeness& entry, char32_t value) { return entry.character < value; });
    return found != std::end(kLikenesses) && found->character == c ? found->text : Units();
}

// Something like the character that the encoding has: its parts without their marks, a picture of it, or
// nothing for what is not seen.
std::u16string replacementFor(char32_t c, Converter& converter) {
    auto code = static_cast<UChar32>(c);
    bool isUnseen = u_hasBinaryProperty(code, UCHAR_DEFAULT_IGNORABLE_CODE_POINT);
    if (isUnseen || (U_GET_GC_MASK(code) & U_GC_M_MASK)) return {};
    UErrorCode error = U_ZERO_ERROR;
    char16_t parts[64];
    int32_t size = unorm2_getDecomposition(unorm2_getNFKDInstance(&error), code, parts, 64, &error);
    Units source = size > 0 ? Units(parts, static_cast<std::size_t>(size)) : likenessOf(c);
    std::u16string text;
    for (std::size_t i = 0; i < source.size();) {
        char32_t part = codePointAt(source, i);
        if (converter.canEncode(part))
            text += source.substr(i, unitCount(part));
        else if (size > 0)
            text += likenessOf(part);
        i += unitCount(part);
    }
    bool fits = std::all_of(text.begin(), text.end(), [&](char16_t unit) {
        return U16_IS_SURROGATE(unit) || converter.canEncode(unit);
    });
    return fits && !text.empty() ? text : std::u16string(1, converter.substitute());
}

std::u16string encodableText(Units units, Converter& converter) {
    std::u16string text;
    for (std::size_t i = 0; i < units.size();) {
        char32_t c = codePointAt(units, i);
        if (converter.canEncode(c))
            text += units.substr(i, unitCount(c));
        else
            text += replacementFor(c, converter);
        i += unitCount(c);
    }
    return text;
}

}  // namespace

bool isEncodingAvailable(NSStringEncoding encoding) { return makeConverter(encoding) != nullptr; }

std::string_view nameOfEncoding(NSStringEncoding encoding) {
    const Encoding* entry = findEncoding(encoding);
    return entry ? entry->name : "";
}

std::string_view ianaNameOfEncoding(NSStringEncoding encoding) {
    const Encoding* entry = findEncoding(encoding);
    return entry ? entry->ianaName : "";
}

NSStringEncoding encodingForName(std::string_view name) {
    std::string wanted(name);
    for (const Encoding& encoding : kEncodings)
        if (ucnv_compareNames(wanted.c_str(), encoding.ianaName) == 0) return encoding.number;
    // Another alias of an encoding that has a name of its own in the list.
    UErrorCode error = U_ZERO_ERROR;
    const char* standard = ucnv_getStandardName(wanted.c_str(), "IANA", &error);
    for (const Encoding& encoding : kEncodings) {
        error = U_ZERO_ERROR;
        const char* own = ucnv_getStandardName(encoding.ianaName, "IANA", &error);
        if (standard && own && ucnv_compareNames(standard, own) == 0) return encoding.number;
    }
    return 0;
}

std::optional<std::u16string> decodeBytes(std::string_view bytes, NSStringEncoding encoding) {
    auto converter = makeConverter(encoding);
    return converter ? converter->decode(bytes) : std::nullopt;
}

std::optional<std::string> encodeUnits(std::u16string_view units, NSStringEncoding encoding,
                                       EncodingLoss loss) {
    auto converter = makeConverter(encoding);
    if (!converter) return std::nullopt;
    auto bytes = converter->encode(units);
    if (bytes || loss == EncodingLoss::refused) return bytes;
    return converter->encode(encodableText(units, *converter));
}

}  // namespace pelvor
