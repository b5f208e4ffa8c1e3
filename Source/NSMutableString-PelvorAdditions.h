// SPDX-License-Identifier: Apache-2.0
// Changes to a whole text: line endings, and replacing or removing all of something.
#pragma once

#include "Foundation/NSMutableString.h"

namespace pelvor {

class NSCharacterSet;
struct Category;

// A platform string is rebuilt in one change; other classes see a change for each place that changes, from
// the front to the back.

PELVOR_EXPORT void appendCharacter(NSMutableString* string, unichar character);
/// Makes each CR LF, CR and LF the ending.
PELVOR_EXPORT void replaceAllLineEndingsWithString(NSMutableString* string, NSString* ending);
PELVOR_EXPORT void removeCharactersInSet(NSMutableString* string, NSCharacterSet* set);
/// Finds the target unit by unit, from the front, an empty one nowhere. Whether anything was replaced; always
/// one change.
PELVOR_EXPORT bool replaceAllOccurrencesOfString_withString(NSMutableString* string, NSString* target,
                                                            NSString* replacement);
PELVOR_EXPORT void replaceAllOccurrencesOfCharactersInSet_withString(NSMutableString* string,
                                                                     NSCharacterSet* set,
                                                                     NSString* replacement);

extern const Category NSMutableString_PelvorAdditions_category;

}  // namespace pelvor
