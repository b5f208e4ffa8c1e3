// SPDX-License-Identifier: Apache-2.0
// The keys of Writer's settings in the user defaults.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

/// A boolean: whether misspelled words are marked while the user types. True at first.
inline constexpr NSString* WRMarksMisspellingsPreference = u"WRMarksMisspellings"_ns;

}  // namespace pelvor
