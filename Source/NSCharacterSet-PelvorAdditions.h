// SPDX-License-Identifier: Apache-2.0
// Named character sets for work with text, beside the platform's own.
//
//     NSCharacterSet* breaks = NSCharacterSet_PelvorAdditions::paragraphBreakCharacterSet();
//     bool isBreak = breaks->characterIsMember(text->characterAtIndex(0));
#pragma once

#include "Foundation/NSCharacterSet.h"

namespace pelvor {

struct Category;

/// Class operations of NSCharacterSet. A set is made by the first call and lives as long as the process,
/// unless the operation says otherwise. Main thread only.
struct PELVOR_EXPORT NSCharacterSet_PelvorAdditions {
    /// 0-9, a-f and A-F.
    static NSCharacterSet* hexCodeCharacterSet();
    /// Colon and slash. Each call returns a new borrowed set.
    static NSCharacterSet* illegalFilenameCharacterSet();
    /// U+000A to U+000D and U+0085.
    static NSCharacterSet* newlineCharacterSet();
    /// U+000A, U+000C, U+000D, U+0085 and U+2029; the line tabulation U+000B is no member.
    static NSCharacterSet* paragraphBreakCharacterSet();
    /// The members of `cls`'s paragraph break set, and U+2028.
    static NSCharacterSet* lineBreakCharacterSet(Class* cls = NSCharacterSet::classObject());
    /// The members of the three sets above and of the platform's whitespace-and-newline set.
    static NSCharacterSet* allWhitespaceCharacterSet(Class* cls = NSCharacterSet::classObject());
    /// The marks U+200E and U+200F and the embedding and override controls U+202A to U+202E.
    static NSCharacterSet* directionalityCharacterSet();
    /// Control characters that show nothing and mean nothing in text, and the private-use characters up to
    /// U+F6FF. Breaks, the tab, U+0080, U+0081 and U+0084 are no members.
    static NSCharacterSet* gremlinCharacterSet();
    /// Gremlins, all white space, U+00A0, U+3000, U+200E and U+200F.
    static NSCharacterSet* nonPrintingCharacterSet(Class* cls = NSCharacterSet::classObject());
};

/// The set that `lineBreakCharacterSet` returns; null before its first call.
extern PELVOR_EXPORT NSCharacterSet* _PBLineBreakCharacterSet;

/// An owned immutable set with the members of this set.
PELVOR_EXPORT Retained<NSCharacterSet> immutableCopy(NSCharacterSet* set);

extern const Category NSCharacterSet_PelvorAdditions_category;

}  // namespace pelvor
