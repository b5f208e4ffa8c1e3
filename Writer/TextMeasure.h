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

    bool operator==(const TextCount&) const = default;
};

/// A paragraph, and where the next one starts.
struct TextParagraph {
    NSUInteger start = 0;
    NSUInteger contentsEnd = 0;
    NSUInteger end = 0;
};

/// Goes on to the paragraph that starts where this one ends; false at the end of the text.
bool nextParagraph(NSString* text, TextParagraph& paragraph);

/// Returns the number of words that begin in the range; a word that begins before the range does not count.
/// Words and quantities, as `wordRangeForRange_includePreviousWord` finds them, count as words. To be used
/// after the load-time hooks ran.
PELVOR_EXPORT NSUInteger countWordsInRange(NSString* text, NSRange range);

/// Counts a text piece by piece, words as `countWordsInRange` does; the text must not change meanwhile.
class TextCounter {
  public:
    explicit TextCounter(NSString* text) : _text(Retained<NSString>::retaining(text)) {}

    /// Counts about `units` more units: at least one, and at most up to the end.
    void advance(NSUInteger units);
    /// How many units were counted.
    NSUInteger position() const { return _position; }
    bool isDone() const { return _position == _text->length(); }
    const TextCount& count() const { return _count; }

  private:
    void countWords(NSUInteger limit);
    void countParagraphs();

    Retained<NSString> _text;
    TextCount _count;
    NSUInteger _position = 0;
    TextParagraph _paragraph;  // the last one that was counted
};

/// The first paragraph that is not blank, without white space around it, cut at `length` units; "" where all
/// are blank. Borrowed.
NSString* firstLineOfText(NSString* text, NSUInteger length);

/// The text. A longer text than `length` units is cut there, between two characters, and gets an ellipsis.
/// Borrowed.
NSString* excerptOfText(NSString* text, NSUInteger length);

}  // namespace pelvor
