// SPDX-License-Identifier: Apache-2.0
// What of a text is spelled, and in which form dictionaries know it.
#pragma once

#include <string>
#include <string_view>

#include "Foundation/NSRange.h"
#include "Foundation/TextBoundaries.h"

namespace pelvor {

class NSString;

/// A longer word, in units, is never misspelled.
inline constexpr NSUInteger kLongestWord = 100;

/// The word as dictionaries have it: with straight apostrophes, plain hyphens and composed letters, without
/// soft hyphens. The result shows `word` or `room`.
std::u16string_view plainWord(std::u16string_view word, std::u16string& room);
/// Whether the word has an apostrophe that is not straight.
bool hasCurlyApostrophe(std::u16string_view word);

/// Whether a dictionary has nothing to say about the word itself: one with digits, underscores, ideographs or
/// kana, or a name such as "notes.txt".
bool isUnspelledWord(std::u16string_view word);
/// Whether the stretch between blanks is an address or a path: what NSSpellChecker.h lists.
bool isAddress(std::u16string_view stretch);

/// Walks the words of a text by the rules of a language:
///
///     WordWalk walk(boundaries, text, 0);
///     for (NSRange word; walk.next(word);) …
class WordWalk {
  public:
    /// The text must not change while it is walked. A start inside a word stands for the word's end.
    WordWalk(TextBoundaries& boundaries, NSString* text, NSUInteger start);
    ~WordWalk() { _boundaries.setString(nullptr); }

    bool next(NSRange& word);

  private:
    TextBoundaries& _boundaries;
    NSUInteger _place;
};

/// The stretch without blanks around a word, with at most 256 units on each side.
NSRange stretchAround(NSString* text, NSRange word);
/// The word with all that hyphens, raised and lowered figures join to it: "ad-lib", "HfO₂". The word itself
/// if there is no more, or if the whole is too long.
NSRange joinedWordAround(NSString* text, NSRange word);

}  // namespace pelvor
