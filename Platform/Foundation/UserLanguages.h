// SPDX-License-Identifier: Apache-2.0
// The languages that the user reads.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSArray;

/// The user default that holds the user's languages, an array of identifiers.
extern PELVOR_EXPORT NSString* const PelvorLanguages;

/// The user's languages in the order of preference, as identifiers: "de-AT", "de", "sr-Latn-RS". The user
/// default `PelvorLanguages` if it is an array of strings with anything in it; else what the environment
/// says: LANGUAGE, a list, where LC_ALL, LC_MESSAGES or LANG do not choose the C locale, else the first of
/// those three that is set. A language of a country is followed by the language alone. English where nothing
/// is said. Borrowed. Any thread, as long as none changes the environment.
PELVOR_EXPORT NSArray* userLanguages();

}  // namespace pelvor
