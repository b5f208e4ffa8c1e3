// SPDX-License-Identifier: Apache-2.0
// Named character sets of text work, beside the platform's own.
#pragma once

#include "Foundation/NSCharacterSet.h"

namespace pelvor {

struct Category;

/// Class operations of NSCharacterSet. Each set is made on the first call and lives as long as the process,
/// unless it says otherwise. Main thread.
struct PELVOR_EXPORT NSCharacterSet_PelvorAdditions {
    /// 0-9, a-f and A-F.
    static NSCharacterSet* hexCodeCharacterSet();
    /// Colon and slash; a new borrowed set on every call.
    static NSCharacterSet* illegalFilenameCharacterSet();
    /// U+000A to U+000D and U+0085.
    static NSCharacterSet* newlineCharacterSet();
    /// U+000A, U+000C, U+000D, U+0085 and U+2029: without the line tabulation.
    static NSCharacterSet* paragraphBreakCharacterSet();
    /// The receiving class's paragraph breaks and U+2028.
    static NSCharacterSet* lineBreakCharacterSet(Class* cls = NSCharacterSet::classObject());
    /// All of the three sets above and the platform's whitespace and newlines.
    static NSCharacterSet* allWhitespaceCharacterSet(Class* cls = NSCharacterSet::classObject());
    /// The marks U+200E and U+200F, the embedding and override controls U+202A to U+202E.
    static NSCharacterSet* directionalityCharacterSet();
    /// Control characters that show nothing and mean nothing in text, and private use up to U+F6FF; the
    /// breaks, the tab, U+0080, U+0081 and U+0084 are not among them.
    static NSCharacterSet* gremlinCharacterSet();
    /// Gremlins, all whitespace, U+00A0, U+3000, U+200E and U+200F.
    static NSCharacterSet* nonPrintingCharacterSet(Class* cls = NSCharacterSet::classObject());
};

/// What `lineBreakCharacterSet` answers; none before its first call.
extern PELVOR_EXPORT NSCharacterSet* _PBLineBreakCharacterSet;

/// An owned immutable set with the members of any set.
PELVOR_EXPORT Retained<NSCharacterSet> immutableCopy(NSCharacterSet* set);

extern const Category NSCharacterSet_PelvorAdditions_category;

}  // namespace pelvor
