// SPDX-License-Identifier: Apache-2.0
// What spell-checker languages ask of the spell checker. A host that checks by other means replaces these
// operations by a category of its own.
#pragma once

#include "SpellChecking/NSSpellChecker.h"

namespace pelvor {

struct Category;

/// Class operations of the spell checker.
struct PELVOR_EXPORT NSSpellChecker_PelvorAdditions {
    /// The spell checker that the word processor uses: the platform's shared one.
    static NSSpellChecker* pelvorSpellChecker();
};

/// The language's name for users, "English (United Kingdom)" for "en_GB", in the user's language. Borrowed.
/// Raises NSInvalidArgumentException for a null name.
PELVOR_EXPORT NSString* displayNameForLanguageName(NSSpellChecker* checker, NSString* name);

extern const Category NSSpellChecker_PelvorAdditions_category;

}  // namespace pelvor
