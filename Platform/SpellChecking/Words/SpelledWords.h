// SPDX-License-Identifier: Apache-2.0
// What of a text is spelled, and in which form dictionaries know it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Foundation/NSRange.h"
#include "Foundation/TextBoundaries.h"

namespace pelvor {

class NSString;

/// A longer word, in units, is never misspelled.
inline constexpr NSUInteger kLongestWord = 100;

/// Returns the word as dictionaries have it: with straight apostrophes, plain hyphens and composed letters,
/// without soft hyphens. The result refers to the characters of `word` or of `room`.
std::u16string_view plainWord(std::u16string_view word, std::u16string& room);
/// Whether the word has an apostrophe that is not straight.
bool hasCurlyApostrophe(std::u16string_view word);

/// Whether no dictionary can tell if the word is right: a word with digits, underscores, ideographs or kana,
/// or a name such as "notes.txt".
bool isUnspelledWord(std::u16string_view word);
/// The scripts that a language is written in, by its name: Latin for "de_AT", Cyrillic for "ru". Every script
/// for a name that ICU does not know.
class LanguageScripts {
  public:
    explicit LanguageScripts(const std::string& language);

    /// Whether a letter of the word is of these scripts. Digits, marks and other characters that all scripts
    /// share do not count.
    bool haveLetterOf(std::u16string_view word) const;

  private:
    std::vector<int> _scripts;  // values of UScriptCode
};

/// Whether the stretch between blanks is one of the addresses and paths that NSSpellChecker.h lists.
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
/// The word with everything that hyphens, raised and lowered figures join to it: "ad-lib", "HfO₂". Nothing is
/// joined to it if the whole would be longer than `kLongestWord`.
NSRange joinedWordAround(NSString* text, NSRange word);

}  // namespace pelvor
