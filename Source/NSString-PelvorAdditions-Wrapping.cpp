// SPDX-License-Identifier: Apache-2.0
// Strings cut, trimmed and wrapped.
#include <algorithm>

#include "Foundation/NSCharacterSet.h"
#include "Foundation/UnitBuffer.h"
#include "NSString-PelvorAdditions.h"
#include "Private/UnitFinding.h"
#include "Private/WhiteSpace.h"
#include "Shared/ArgumentChecks.h"
#include "Shared/Codepoints.h"

namespace pelvor {
namespace {

using Units = std::u16string_view;

// Lines end where paragraphs end, so each paragraph is wrapped by itself. Bits tell where its white space is,
// so no branch depends on the lengths of its words.
class Wrapper {
  public:
    Wrapper(Units text, NSUInteger width)
        : _text(text),
          _width(std::max(width, NSUInteger{1})),
          _whiteSpace(text),
          _result(text.size() + text.size() / 16) {}

    NSString* wrap() {
        std::size_t place = 0;
        while (_width <= _text.size() - place) {
            std::size_t end = _whiteSpace.readParagraph(place);
            wrapParagraph(place, end);
            if (end == _text.size()) break;
            place = end + 1;
        }
        _result.append(_text.substr(_written));
        return _result.takeString();
    }

  private:
    void wrapParagraph(std::size_t start, std::size_t end) {
        _paragraph = _text.substr(start, end - start);
        std::size_t lineStart = 0, countStart = 0;
        while (_width <= _paragraph.size() - countStart) {
            lineStart = placeOfBreak(lineStart, countStart);
            if (lineStart == _paragraph.size()) return;
            _result.appendPart(_text, _written, start + lineStart - _written);
            _result.append(u'\n');
            _written = start + lineStart;
            countStart = lineStart + 1;  // the unit after a line feed that has been put in is not counted
        }
    }

    // The index of the unit before which a line breaks whose counted units reach the width.
    std::size_t placeOfBreak(std::size_t lineStart, std::size_t countStart) const {
        std::size_t last = countStart + _width - 1;
        std::size_t wordStart = _whiteSpace.behindLast(countStart, last + 1);
        // The unit at `last` counts twice. That is how texts have always been wrapped.
        std::size_t wordEnd = _whiteSpace.first(last, std::min(last + _width, _paragraph.size()));
        std::size_t wordSize = last + 1 - wordStart + (wordEnd - last);
        return outsidePair(wordSize < _width ? wordStart - 1 : last, lineStart);
    }

    // The index before the surrogate pair that `index` would divide, or behind the pair if the line would be
    // empty.
    std::size_t outsidePair(std::size_t index, std::size_t lineStart) const {
        if (!splitsPair(_paragraph, index)) return index;
        return index - 1 > lineStart ? index - 1 : index + 1;
    }

    Units _text;
    std::size_t _width;
    Units _paragraph;
    WhiteSpace _whiteSpace;    // of the paragraph
    std::size_t _written = 0;  // how much of the text the result has
    UnitBuffer _result;
};

}  // namespace

NSString* stringByHardWrappingToLineLength(NSString* string, NSUInteger length) {
    requireArgument(string, "stringByHardWrappingToLineLength:", "the string");
    if (string->length() <= length) return string;
    StringUnits units(string);
    return Wrapper(units, length).wrap();
}

NSString* stringByPrettyTruncationToLength(NSString* string, NSUInteger length) {
    requireArgument(string, "stringByPrettyTruncationToLength:", "the string");
    if (string->length() <= length) return string;
    // One more unit, to see whether a pair would be cut.
    StringUnits units(string, {0, length + 1});
    NSRange space = string->rangeOfCharacterFromSet_options_range(
        NSCharacterSet::whitespaceAndNewlineCharacterSet(), NSBackwardsSearch, {0, length});
    NSUInteger end = space.location != NSNotFound ? space.location : length - splitsPair(units, length);
    return string->substringToIndex(end)->stringByTrimmingCharactersInSet(
        NSCharacterSet::whitespaceCharacterSet());
}

NSString* stringByRemovingSurroundingWhitespace(NSString* string) {
    requireArgument(string, "stringByRemovingSurroundingWhitespace", "the string");
    NSUInteger count = string->length();
    NSRange range = nonwhitespaceRangeForRange(string, {0, count});
    if (range.length == count && count > 0) return string;
    return string->substringWithRange(range);
}

}  // namespace pelvor
