// SPDX-License-Identifier: Apache-2.0
// Finds the paragraphs of a text.
#pragma once

#include "Text/Layout/BlockList.h"

namespace pelvor {

class NSString;

/// The characters that end a paragraph: LF, FF, CR, NEL and the paragraph separator. CR LF is one end.
constexpr bool isParagraphEnd(unichar unit) {
    return unit == 0x0A || unit == 0x0C || unit == 0x0D || unit == 0x85 || unit == 0x2029;
}
/// Those, the line separator and the line tabulation.
constexpr bool isLineEnd(unichar unit) { return isParagraphEnd(unit) || unit == 0x2028 || unit == 0x0B; }

/// The paragraphs of the range as blocks, long ones in pieces. `continues` tells whether the range begins
/// inside a paragraph, `endsText` whether the text ends with the range: then an empty block follows if the
/// text is empty or ends with a paragraph's end.
BlockList::Blocks blocksIn(NSString* text, NSRange range, bool continues, bool endsText);

/// The blocks of some ten thousand units at the front of the rest of a text, which begins with a block.
BlockList::Blocks firstBlocksIn(NSString* text, NSRange rest);

}  // namespace pelvor
