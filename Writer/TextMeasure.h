// SPDX-License-Identifier: Apache-2.0
// What Writer tells about any text.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class WRDocument;

struct TextMeasure {
    NSUInteger codePoints = 0;
    NSUInteger words = 0;
    NSUInteger longestParagraph = 0;  ///< the index; the first one of several, 0 without paragraphs
    NSUInteger longestLength = 0;     ///< in UTF-16 units
};

/// Words are runs of letters and digits, with single apostrophes between letters and single stops and commas
/// between digits. The shared character sets must have been made: not before the load-time hooks ran.
TextMeasure measureDocument(WRDocument* document);

/// The first paragraph that is not blank, without white space around it, cut at `length` units between two
/// characters; "" where all are blank. Borrowed.
NSString* firstLineOfDocument(WRDocument* document, NSUInteger length);

}  // namespace pelvor
