// SPDX-License-Identifier: Apache-2.0
// TextPlaces: where characters, words and paragraphs begin and end, for carets and selections.
#pragma once

#include "Foundation/TextBoundaries.h"

namespace pelvor {

/// Finds the places that a caret goes to. The text is asked about as it is at the time of each question;
/// places past its end count as its end. One thread at a time.
class TextPlaces {
  public:
    /// Null as language stands for the rules common to all languages.
    explicit TextPlaces(NSString* language)
        : _characters(TextBoundaries::Kind::Character, language),
          _words(TextBoundaries::Kind::Word, language) {}

    NSUInteger behindCharacter(NSString* text, NSUInteger place);
    NSUInteger beforeCharacter(NSString* text, NSUInteger place);
    /// The end of the first word that ends behind the place; the end of the text if there is none.
    NSUInteger behindWord(NSString* text, NSUInteger place);
    /// The beginning of the last word that begins before the place; 0 if there is none.
    NSUInteger beforeWord(NSString* text, NSUInteger place);
    /// The word at the place, or what lies between two words there.
    NSRange wordAt(NSString* text, NSUInteger place);
    /// The range widened to whole words.
    NSRange wordsAround(NSString* text, NSRange range);

  private:
    // Asks about the text, and lets it go afterwards.
    class Asking {
      public:
        Asking(TextBoundaries& boundaries, NSString* text) : _boundaries(boundaries) {
            boundaries.setString(text);
        }
        ~Asking() { _boundaries.setString(nullptr); }
        Asking(const Asking&) = delete;
        Asking& operator=(const Asking&) = delete;
        TextBoundaries* operator->() { return &_boundaries; }

      private:
        TextBoundaries& _boundaries;
    };

    TextBoundaries _characters;
    TextBoundaries _words;
};

/// The paragraphs that the range touches, with the line end of the last one.
NSRange paragraphsAround(NSString* text, NSRange range);
/// How many units the line end takes that the range of whole paragraphs ends with: 0, 1, or 2 for CR LF.
NSUInteger lengthOfLineEnd(NSString* text, NSRange paragraphs);

}  // namespace pelvor
