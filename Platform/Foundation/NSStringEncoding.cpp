// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSStringEncoding.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/utf16.h>

#include <algorithm>

#include "Foundation/Strings/CanonicalText.h"
#include "Foundation/Strings/EncodingConverter.h"
#include "Foundation/Strings/EncodingList.h"

namespace pelvor {

// MARK: Names

bool isEncodingAvailable(NSStringEncoding encoding) { return findEncoding(encoding) != nullptr; }

std::vector<NSStringEncoding> availableEncodings() {
    std::vector<NSStringEncoding> numbers;
    for (const EncodingEntry& entry : allEncodings()) numbers.push_back(entry.number);
    return numbers;
}

std::string_view nameOfEncoding(NSStringEncoding encoding) {
    const EncodingEntry* entry = findEncoding(encoding);
    return entry ? entry->name : "";
}

std::string_view ianaNameOfEncoding(NSStringEncoding encoding) {
    const EncodingEntry* entry = findEncoding(encoding);
    return entry ? entry->documentName : "";
}

std::vector<std::string_view> namesOfEncoding(NSStringEncoding encoding) {
    const EncodingEntry* entry = findEncoding(encoding);
    return entry ? namesOf(*entry) : std::vector<std::string_view>();
}

NSStringEncoding encodingForName(std::string_view name) {
    const EncodingEntry* entry = findEncodingNamed(name);
    return entry ? entry->number : 0;
}

// MARK: Loss

namespace {

using Units = std::u16string_view;

struct Likeness {
    char16_t character;
    Units text;
};

// Characters that are alike, although normalisation does not know it. Sorted.
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
std::u16string replacementFor(char32_t c, EncodingConverter& converter) {
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
    bool fits = std::all_of(text.begin(), text.end(),
                            [&](char16_t unit) { return isSurrogate(unit) || converter.canEncode(unit); });
    return fits && !text.empty() ? text : std::u16string(1, converter.substitute());
}

std::u16string encodableText(Units units, EncodingConverter& converter) {
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

// MARK: Conversion

std::optional<std::u16string> decodeBytes(std::string_view bytes, NSStringEncoding encoding) {
    auto converter = makeConverter(encoding);
    std::u16string units;
    if (!converter || !converter->decode(bytes, units, true)) return std::nullopt;
    return units;
}

std::optional<std::string> encodeUnits(std::u16string_view units, NSStringEncoding encoding,
                                       EncodingLoss loss) {
    auto converter = makeConverter(encoding);
    if (!converter) return std::nullopt;
    auto bytes = converter->encode(units);
    if (loss == EncodingLoss::refused) {
        const bool isExact = bytes && (converter->isFaithful() || decodeBytes(*bytes, encoding) == units);
        return isExact ? bytes : std::nullopt;
    }
    if (bytes) return bytes;
    return converter->encode(encodableText(units, *converter));
}

TextDecoder::TextDecoder(NSStringEncoding encoding) : _converter(makeConverter(encoding)) {}
TextDecoder::TextDecoder(TextDecoder&&) noexcept = default;
TextDecoder& TextDecoder::operator=(TextDecoder&&) noexcept = default;
TextDecoder::~TextDecoder() = default;

bool TextDecoder::decode(std::string_view bytes, std::u16string& units) {
    return _converter && _converter->decode(bytes, units, false);
}

bool TextDecoder::finish(std::u16string& units) { return _converter && _converter->decode({}, units, true); }

bool TextDecoder::decode(std::string_view bytes, UnitBuffer& units) {
    return _converter && _converter->decodeInto(units, bytes, false);
}

bool TextDecoder::finish(UnitBuffer& units) { return _converter && _converter->decodeInto(units, {}, true); }

}  // namespace pelvor
