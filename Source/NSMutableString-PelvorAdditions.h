// SPDX-License-Identifier: Apache-2.0
// Changes to a whole text: its line endings, and all occurrences of something.
//
//     replaceAllLineEndingsWithString(text, u"\n"_ns);  // CR LF and CR become LF
//     removeCharactersInSet(text, NSCharacterSet_PelvorAdditions::gremlinCharacterSet());
//
// A null argument raises NSInvalidArgumentException. A platform string is rebuilt in one change; strings of
// other classes see one change for each place that changes, from the front to the back.
#pragma once

#include "Foundation/NSMutableString.h"

namespace pelvor {

class NSCharacterSet;
struct Category;

PELVOR_EXPORT void appendCharacter(NSMutableString* string, unichar character);
/// Replaces each CR LF, CR and LF by the ending.
PELVOR_EXPORT void replaceAllLineEndingsWithString(NSMutableString* string, NSString* ending);
PELVOR_EXPORT void removeCharactersInSet(NSMutableString* string, NSCharacterSet* set);
/// Replaces each occurrence of the target, compared unit by unit from the front; an empty target occurs
/// nowhere. Returns whether anything was replaced. Strings of every class see one change.
PELVOR_EXPORT bool replaceAllOccurrencesOfString_withString(NSMutableString* string, NSString* target,
                                                            NSString* replacement);
PELVOR_EXPORT void replaceAllOccurrencesOfCharactersInSet_withString(NSMutableString* string,
                                                                     NSCharacterSet* set,
                                                                     NSString* replacement);

extern const Category NSMutableString_PelvorAdditions_category;

}  // namespace pelvor
