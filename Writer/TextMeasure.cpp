// SPDX-License-Identifier: Apache-2.0
#include "Writer/TextMeasure.h"

#include <algorithm>

#include "NSString-PelvorAdditions.h"

namespace pelvor {

NSUInteger countWordsInRange(NSString* text, NSRange range) {
    NSUInteger count = 0;
    for (NSUInteger place = range.location; place < NSMaxRange(range);) {
        const NSRange word = wordRangeForRange_includePreviousWord(text, {place, 0}, false);
        count += word.length > 0 && word.location >= range.location;
        place = std::max(NSMaxRange(word), place + 1);
    }
    return count;
}

bool nextParagraph(NSString* text, TextParagraph& paragraph) {
    const NSUInteger length = text->length();
    if (paragraph.end == length) return false;
    paragraph.start = paragraph.end;
    getParagraphStart_end_contentsEnd_forRange(text, nullptr, &paragraph.end, &paragraph.contentsEnd,
                                               {paragraph.start, 0});
    if (paragraph.contentsEnd == NSNotFound) paragraph.contentsEnd = length;
    return true;
}

void TextCounter::advance(NSUInteger units) {
    const NSUInteger start = _position;
    countWords(start + std::clamp<NSUInteger>(units, 1, _text->length() - start));
    countParagraphs();
    _count.codePoints += countCodepointsInRange(_text, {start, _position - start});
}

// A word that begins before the limit is counted as a whole. No piece ends with the first half of a pair:
// what follows it belongs to its code point.
void TextCounter::countWords(NSUInteger limit) {
    const NSUInteger length = _text->length();
    auto isInPair = [&] { return (_text->characterAtIndex(_position - 1) & 0xFC00) == 0xD800; };
    while (_position < limit || (_position < length && isInPair())) {
        const NSRange word = wordRangeForRange_includePreviousWord(_text, {_position, 0}, false);
        _count.words += word.length > 0;
        _position = std::max(NSMaxRange(word), _position + 1);
    }
}

// Those that begin before the position; the last of them may go on behind it.
void TextCounter::countParagraphs() {
    while (_paragraph.end < _position && nextParagraph(_text, _paragraph)) {
        const NSUInteger length = _paragraph.contentsEnd - _paragraph.start;
        if (length > _count.longestLength) {
            _count.longestLength = length;
            _count.longestParagraph = _count.paragraphs;
        }
        ++_count.paragraphs;
    }
}

NSString* firstLineOfText(NSString* text, NSUInteger length) {
    for (TextParagraph paragraph; nextParagraph(text, paragraph);) {
        const NSRange line =
            nonwhitespaceRangeForRange(text, {paragraph.start, paragraph.contentsEnd - paragraph.start});
        if (line.length) return excerptOfText(text->substringWithRange(line), length);
    }
    return u""_ns;
}

NSString* excerptOfText(NSString* text, NSUInteger length) {
    if (text->length() <= length) return text;
    const NSRange cut = PBRangeOfComposedCharacterSequenceAtIndex(text, length);
    return text->substringToIndex(cut.location)->stringByAppendingString(u"…"_ns);
}

}  // namespace pelvor
