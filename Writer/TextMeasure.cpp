// SPDX-License-Identifier: Apache-2.0
#include "Writer/TextMeasure.h"

#include <algorithm>

#include "Foundation/NSCharacterSet.h"
#include "NSString-PelvorAdditions.h"
#include "PBUtil.h"
#include "Writer/TextParagraphs.h"

namespace pelvor {
namespace {

enum class UnitKind { other, letter, digit };

constexpr bool isHighHalf(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool isLowHalf(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

std::size_t characterLength(std::u16string_view text, std::size_t place) {
    return isHighHalf(text[place]) && place + 1 < text.size() && isLowHalf(text[place + 1]) ? 2 : 1;
}

char32_t characterAt(std::u16string_view text, std::size_t place) {
    if (characterLength(text, place) == 1) return text[place];
    return 0x10000 + ((text[place] - 0xD800u) << 10) + (text[place + 1] - 0xDC00u);
}

UnitKind kindAt(std::u16string_view text, std::size_t place) {
    if (place >= text.size()) return UnitKind::other;
    const char32_t character = characterAt(text, place);
    if (_pbLettersCharacterSet->longCharacterIsMember(character)) return UnitKind::letter;
    if (_pbDecimalDigitCharacterSet->longCharacterIsMember(character)) return UnitKind::digit;
    return UnitKind::other;
}

// Whether the unit between two parts of a word, the first of which ends with a letter or a digit, joins them.
bool joins(std::u16string_view text, std::size_t place, UnitKind last) {
    const char16_t unit = text[place];
    const UnitKind next = kindAt(text, place + 1);
    if (unit == u'.' || unit == u',') return last == UnitKind::digit && next == UnitKind::digit;
    return _pbSingleQuotesCharacterSet->characterIsMember(unit) && last == UnitKind::letter &&
           next == UnitKind::letter;
}

}  // namespace

void TextCounter::advance(NSUInteger units) {
    const NSUInteger start = _position;
    const StringUnits text(_text);
    countWords(text, start + std::max<std::size_t>(1, std::min(units, text.size() - start)));
    countParagraphs(text);
    _count.codePoints += countCodepointsInRange(_text, {start, _position - start});
}

void TextCounter::countWords(std::u16string_view text, std::size_t limit) {
    std::size_t place = _position;
    for (; place < std::min(limit, text.size()); place += characterLength(text, place)) {
        const UnitKind kind = kindAt(text, place);
        const UnitKind last = _wasLetter ? UnitKind::letter : UnitKind::digit;
        const bool isPart = kind != UnitKind::other || (_isInWord && joins(text, place, last));
        _count.words += isPart && !_isInWord;
        _isInWord = isPart;
        if (kind != UnitKind::other) _wasLetter = kind == UnitKind::letter;
    }
    _position = static_cast<NSUInteger>(place);
}

// Those that begin before the position; the last of them may go on behind it.
void TextCounter::countParagraphs(std::u16string_view text) {
    while (_paragraphStart < _position) {
        std::u16string_view rest = text.substr(_paragraphStart);
        const auto length = static_cast<NSUInteger>(takeParagraph(rest).size());
        if (length > _count.longestLength) {
            _count.longestLength = length;
            _count.longestParagraph = _count.paragraphs;
        }
        ++_count.paragraphs;
        _paragraphStart = static_cast<NSUInteger>(text.size() - rest.size());
    }
}

NSString* firstLineOfText(NSString* text, NSUInteger length) {
    const StringUnits units(text);
    for (std::u16string_view rest = units; !rest.empty();) {
        NSString* line =
            NSString::of(takeParagraph(rest))->stringByTrimmingCharactersInSet(_pbWhitespaceCharacterSet);
        if (line->length() == 0) continue;
        if (line->length() <= length) return line;
        const NSRange cut = line->rangeOfComposedCharacterSequenceAtIndex(length);
        return line->substringToIndex(cut.location)->stringByAppendingString(u"…"_ns);
    }
    return u""_ns;
}

}  // namespace pelvor
