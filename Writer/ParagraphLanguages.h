// SPDX-License-Identifier: Apache-2.0
// The languages of a text that names none.
#pragma once

#include "Foundation/NSMutableAttributedString.h"

namespace pelvor {

class PBProfileSet;
class WRLanguage;

/// Gives paragraphs their languages, so that words are divided and checked by them:
///
///     ParagraphLanguages languages(registry()->profilesOfType(PBProfileDocumentServiceType));
///     languages.addTo(text, {0, text->length()});
///
/// A plug-in tells the languages; without one nothing is changed. A paragraph that is too short to tell has
/// the language of the paragraph before it, or else of the one behind it: so have the greetings of a letter,
/// and the address above it. Empty paragraphs and those that cannot be told are passed over in this.
class PELVOR_EXPORT ParagraphLanguages {
  public:
    /// Asks the first service of the profiles that tells the languages of texts.
    explicit ParagraphLanguages(PBProfileSet* profiles);

    /// Sets WRLanguageAttributeKey for the paragraphs that begin in the range, unless they have a language or
    /// neither they nor their neighbours tell one. Goes on behind the range, for some pages at most, while
    /// the last paragraphs wait for a language from behind. Returns where the last paragraph ends that was
    /// looked at.
    NSUInteger addTo(NSMutableAttributedString* text, NSRange range);

    /// The language of a paragraph, without its end, that has been written: the one that it tells now, or
    /// else that of the paragraph before it. A paragraph that somebody still writes in has to be clear: it
    /// has 80 units or more, and both halves tell the same language. Null if there is no language, or the
    /// paragraph is not clear.
    WRLanguage* languageOfWritten(NSAttributedString* text, NSRange contents, bool isFinished);

  private:
    WRLanguage* languageToldBy(NSAttributedString* text, NSRange range);
    WRLanguage* languageOf(NSMutableAttributedString* text, NSRange paragraph);

    Retained<Object> _finder;  // null if there is no such service
};

}  // namespace pelvor
