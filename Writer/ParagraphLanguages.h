// SPDX-License-Identifier: Apache-2.0
// The languages of a text that names none.
#pragma once

#include "Foundation/NSMutableAttributedString.h"

namespace pelvor {

class PBProfileSet;

/// Gives paragraphs their languages, so that words are divided and checked by them:
///
///     ParagraphLanguages languages(registry()->profilesOfType(PBProfileDocumentServiceType));
///     languages.addTo(text, {0, text->length()});
///
/// A plug-in tells the languages; without one nothing is changed.
class PELVOR_EXPORT ParagraphLanguages {
  public:
    /// Asks the first service of the profiles that tells the languages of texts.
    explicit ParagraphLanguages(PBProfileSet* profiles);

    bool canTell() const { return static_cast<bool>(_finder); }
    /// Sets WRLanguageAttributeKey for the paragraphs that begin in the range, as far as their languages can
    /// be told; paragraphs with a language keep it. Returns where the last of them ends.
    NSUInteger addTo(NSMutableAttributedString* text, NSRange range);

  private:
    Retained<Object> _finder;  // null if there is no such service
};

}  // namespace pelvor
