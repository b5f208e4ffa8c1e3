// SPDX-License-Identifier: Apache-2.0
#include "Writer/TextMeasure.h"

#include "Foundation/NSCharacterSet.h"
#include "PBUtil.h"
#include "Writer/WRDocument.h"

namespace pelvor {
namespace {

enum class UnitKind { other, letter, digit };

constexpr bool isHighHalf(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool isLowHalf(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

// Walks once through the text; what joins two parts of a word is looked at together with its neighbours.
class WordWalk {
  public:
    explicit WordWalk(std::u16string_view text) : _text(text) {}

    NSUInteger countWords() {
        NSUInteger words = 0;
        bool isInWord = false;
        for (_place = 0; _place < _text.size();) {
            const bool isPart = isPartOfWord(isInWord);
            words += isPart && !isInWord;
            isInWord = isPart;
            _place += characterLength(_place);
        }
        return words;
    }

  private:
    std::size_t characterLength(std::size_t place) const {
        return isHighHalf(_text[place]) && place + 1 < _text.size() && isLowHalf(_text[place + 1]) ? 2 : 1;
    }
    char32_t characterAt(std::size_t place) const {
        if (characterLength(place) == 1) return _text[place];
        return 0x10000 + ((_text[place] - 0xD800u) << 10) + (_text[place + 1] - 0xDC00u);
    }
    UnitKind kindAt(std::size_t place) const {
        if (place >= _text.size()) return UnitKind::other;
        const char32_t character = characterAt(place);
        if (_pbLettersCharacterSet->longCharacterIsMember(character)) return UnitKind::letter;
        if (_pbDecimalDigitCharacterSet->longCharacterIsMember(character)) return UnitKind::digit;
        return UnitKind::other;
    }
    bool isPartOfWord(bool isInWord) {
        const UnitKind kind = kindAt(_place);
        if (kind == UnitKind::other) return isInWord && joins(_text[_place]);
        _last = kind;
        return true;
    }
    bool joins(char16_t unit) const {
        const UnitKind next = kindAt(_place + 1);
        if (unit == u'.' || unit == u',') return _last == UnitKind::digit && next == UnitKind::digit;
        return _pbSingleQuotesCharacterSet->characterIsMember(unit) && _last == UnitKind::letter &&
               next == UnitKind::letter;
    }

    std::u16string_view _text;
    std::size_t _place = 0;
    UnitKind _last = UnitKind::other;
};

NSUInteger countCodePoints(std::u16string_view text) {
    NSUInteger count = 0;
    for (std::size_t i = 0; i < text.size(); ++i, ++count)
        if (isHighHalf(text[i]) && i + 1 < text.size() && isLowHalf(text[i + 1])) ++i;
    return count;
}

}  // namespace

TextMeasure measureDocument(WRDocument* document) {
    TextMeasure measure;
    const StringUnits text(document->text());
    measure.codePoints = countCodePoints(text);
    measure.words = WordWalk(text).countWords();
    for (NSUInteger i = 0; i < document->paragraphCount(); ++i) {
        const NSUInteger length = document->rangeOfParagraphAtIndex(i).length;
        if (length <= measure.longestLength) continue;
        measure.longestLength = length;
        measure.longestParagraph = i;
    }
    return measure;
}

NSString* firstLineOfDocument(WRDocument* document, NSUInteger length) {
    for (NSUInteger i = 0; i < document->paragraphCount(); ++i) {
        NSString* line =
            document->paragraphAtIndex(i)->stringByTrimmingCharactersInSet(_pbWhitespaceCharacterSet);
        if (line->length() == 0) continue;
        if (line->length() <= length) return line;
        const NSRange cut = line->rangeOfComposedCharacterSequenceAtIndex(length);
        return line->substringToIndex(cut.location)->stringByAppendingString(u"…"_ns);
    }
    return u""_ns;
}

}  // namespace pelvor
