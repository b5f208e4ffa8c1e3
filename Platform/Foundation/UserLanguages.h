// SPDX-License-Identifier: Apache-2.0
// The languages that the user reads.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSArray;

/// The user default that holds the user's languages, an array of identifiers.
extern PELVOR_EXPORT NSString* const PelvorLanguages;

/// Returns the user's languages in the order of preference, as identifiers: "de-AT", "de", "sr-Latn-RS";
/// borrowed. They come from the first of these that names any:
///
/// - the user default `PelvorLanguages`, if it is an array of strings that is not empty;
/// - the environment variable LANGUAGE, a list with colons, unless LC_ALL, LC_MESSAGES or LANG choose the C
///   locale;
/// - the first of LC_ALL, LC_MESSAGES and LANG that is set;
/// - else the language is English.
///
/// A language of a country is followed by the language alone. Any thread, as long as no thread changes the
/// environment.
PELVOR_EXPORT NSArray* userLanguages();

}  // namespace pelvor
