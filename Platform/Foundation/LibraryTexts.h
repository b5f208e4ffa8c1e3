// SPDX-License-Identifier: Apache-2.0
// The library's own texts for users, from the string tables in Resources.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

/// Returns the text for the key in the first of the user's languages that the library has a table for, else
/// in English; null if the tables lack the key. The tables are built into the library, so that they are there
/// wherever it is installed. Borrowed. Any thread.
PELVOR_EXPORT NSString* localizedLibraryText(NSString* key);

}  // namespace pelvor
