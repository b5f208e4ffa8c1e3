// SPDX-License-Identifier: Apache-2.0
// What is known of languages: where words, characters, sentences and lines begin and end, and in which
// direction a language is written.
#pragma once

#include <memory>
#include <string_view>

#include "Foundation/NSRange.h"
#include "Runtime/Object.h"

namespace pelvor {

class NSString;

/// Finds the boundaries of a text by the rules of a language:
///
///     TextBoundaries words(TextBoundaries::Kind::Word, u"en"_ns);
///     words.setString(u"Don't stop."_ns);
///     words.following(0);              // 5, behind "Don't"
///     words.isWordBefore(5);           // true
///     words.preceding(11);             // 10, before the full stop
///
/// Places are indexes of UTF-16 units. Both ends of a text are boundaries. The text is read where it is asked
/// about and never as a whole, so a question about one place of a long document costs what the place costs.
/// The text must not change between `setString` and the questions about it. One thread at a time.
class PELVOR_EXPORT TextBoundaries {
  public:
    enum class Kind {
        Character,  ///< what a reader takes for one character
        Word,       ///< words, and the stretches between them
        Line,       ///< where a line may end
        Sentence,
    };

    /// `language` names a language or locale, "fr" or "pt_BR"; null, and a language without rules of its own,
    /// stand for the rules common to all.
    TextBoundaries(Kind kind, NSString* language);
    ~TextBoundaries();
    TextBoundaries(TextBoundaries&&) noexcept;
    TextBoundaries& operator=(TextBoundaries&&) noexcept;

    /// The text to ask about, which is kept; null lets the text go and stands for an empty text.
    void setString(NSString* string);

    /// The first boundary behind the place; NSNotFound at the end and past it.
    NSUInteger following(NSUInteger place);
    /// The last boundary before the place; NSNotFound at the beginning. A place past the end counts as the
    /// end.
    NSUInteger preceding(NSUInteger place);
    /// False past the end.
    bool isBoundary(NSUInteger place);
    /// Whether the stretch that ends at this boundary holds letters or digits: a word, and no blanks or
    /// punctuation. For Kind::Word only; false for the others.
    bool isWordBefore(NSUInteger boundary);

  private:
    struct Walker;
    std::unique_ptr<Walker> _walker;
};

/// Whether the language or locale, "ar" or "az_Arab", is written from right to left; false for null and for
/// unknown languages. Any thread.
PELVOR_EXPORT bool isLanguageWrittenRightToLeft(NSString* language);

/// Whether the paragraph is read from right to left: the first of its characters that have a direction of
/// their own is a letter of Hebrew, Arabic or a script like these. Any thread.
PELVOR_EXPORT bool isParagraphReadRightToLeft(std::u16string_view paragraph);

}  // namespace pelvor
