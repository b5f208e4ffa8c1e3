// SPDX-License-Identifier: Apache-2.0
// Strings cut, trimmed and wrapped.
#include <algorithm>

#include "CodepointsPrivate.h"
#include "Foundation/NSCharacterSet.h"
#include "Foundation/UnitBuffer.h"
#include "NSString-PelvorAdditions.h"
#include "UnitFindingPrivate.h"

namespace pelvor {
namespace {

using Units = std::u16string_view;

bool splitsPair(Units text, std::size_t index) {
    return index > 0 && index < text.size() && isLowSurrogate(text[index]) &&
           isHighSurrogate(text[index - 1]);
}

class Wrapper {
  public:
    Wrapper(Units text, NSUInteger width)
        : _text(text), _width(std::max(width, NSUInteger{1})), _result(text.size() + text.size() / 16) {}

    NSString* wrap() {
        while (_width <= _text.size() - _countStart) {
            const unichar* first = _text.data() + _countStart;
            const unichar* lineEnd = findEither(first, first + _width, u'\n', u'\f');
            if (lineEnd != first + _width) {
                _lineStart = _countStart = static_cast<std::size_t>(lineEnd - _text.data()) + 1;
            } else {
                breakAt(placeOfBreak());
            }
        }
        _result.append(_text.substr(_written));
        return _result.takeString();
    }

  private:
    bool isWhitespace(std::size_t index) const {
        unichar unit = _text[index];
        return _whitespace[unit >> 3] >> (unit & 7) & 1;
    }

    // Before which unit the line breaks whose counted units reach the width.
    std::size_t placeOfBreak() const {
        std::size_t last = _countStart + _width - 1;
        if (isWhitespace(last)) return last;
        std::size_t wordStart = last;
        while (wordStart > _countStart && !isWhitespace(wordStart - 1)) --wordStart;
        // The unit at `last` counts twice. That is how texts have always been wrapped.
        std::size_t wordSize = last - wordStart + 1;
        for (std::size_t i = last; wordSize < _width && i < _text.size() && !isWhitespace(i); ++i) ++wordSize;
        return wordSize < _width ? wordStart - 1 : outsidePair(last);
    }

    // Before the pair that the index is inside of, or after it where the line would have nothing in it.
    std::size_t outsidePair(std::size_t index) const {
        if (!splitsPair(_text, index)) return index;
        return index - 1 > _lineStart ? index - 1 : index + 1;
    }

    void breakAt(std::size_t place) {
        bool isBroken = place == _text.size() || _text[place] == u'\n' || _text[place] == u'\f';
        if (!isBroken) {
            _result.append(_text.substr(_written, place - _written));
            _result.append(u"\n");
            _written = place;
        }
        _lineStart = place;
        _countStart = isBroken ? place : place + 1;
    }

    Units _text;
    std::size_t _width;
    std::size_t _lineStart = 0;
    std::size_t _countStart = 0;  // the unit after a line feed that has been put in is not counted
    std::size_t _written = 0;     // how much of the text the result has
    UnitBuffer _result;
    const std::uint8_t* _whitespace = NSCharacterSet::whitespaceAndNewlineCharacterSet()->basicPlaneBitmap();
};

}  // namespace

NSString* stringByHardWrappingToLineLength(NSString* string, NSUInteger length) {
    if (string->length() <= length) return string;
    StringUnits units(string);
    return Wrapper(units, length).wrap();
}

NSString* stringByPrettyTruncationToLength(NSString* string, NSUInteger length) {
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
    NSUInteger count = string->length();
    NSRange range = nonwhitespaceRangeForRange(string, {0, count});
    if (range.length == count && count > 0) return string;
    return string->substringWithRange(range);
}

}  // namespace pelvor
