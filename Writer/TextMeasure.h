// SPDX-License-Identifier: Apache-2.0
// What Writer tells about any text.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

struct TextCount {
    NSUInteger codePoints = 0;
    NSUInteger words = 0;
    NSUInteger paragraphs = 0;
    NSUInteger longestParagraph = 0;  ///< the index; the first one of several, 0 without paragraphs
    NSUInteger longestLength = 0;     ///< in UTF-16 units
};

/// Counts a text piece by piece; the text must not change meanwhile. Words are runs of letters and digits,
/// with single apostrophes between letters and single stops and commas between digits. The shared character
/// sets must have been made: not before the load-time hooks ran.
class TextCounter {
  public:
    explicit TextCounter(NSString* text) : _text(Retained<NSString>::retaining(text)) {}

    /// Goes on by about so many units, at least one and at most to the end.
    void advance(NSUInteger units);
    /// How many units were counted.
    NSUInteger position() const { return _position; }
    bool isDone() const { return _position == _text->length(); }
    const TextCount& count() const { return _count; }

  private:
    void countWords(std::u16string_view text, std::size_t limit);
    void countParagraphs(std::u16string_view text);

    Retained<NSString> _text;
    TextCount _count;
    NSUInteger _position = 0;
    NSUInteger _paragraphStart = 0;
    bool _isInWord = false;
    bool _wasLetter = false;
};

/// The first paragraph that is not blank, without white space around it, cut at `length` units between two
/// characters; "" where all are blank. Borrowed.
NSString* firstLineOfText(NSString* text, NSUInteger length);

}  // namespace pelvor
