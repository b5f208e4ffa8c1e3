// SPDX-License-Identifier: Apache-2.0
// Headers and footers as a user writes them.
#pragma once

#include "Foundation/NSAttributedString.h"
#include "Foundation/NSDictionary.h"

namespace pelvor {

class StyleSheet;

// In the texts of users "{page}", "{pages}" and "{title}" stand for the characters of PlugInProtocol.h.

/// The attributes of a header or footer in the style of that name, or else in that of plain text; null if the
/// sheet has neither. Borrowed.
PELVOR_EXPORT NSDictionary* attributesOfLine(const StyleSheet& sheet, NSString* style);
/// A header or footer with the text. Where `old`, which may be null, has some text, what is the same in it
/// keeps its formats and pictures, and the attributes are not needed.
PELVOR_EXPORT Retained<NSAttributedString> lineWithText(NSString* text, NSDictionary* attributes,
                                                        NSAttributedString* old = nullptr);
/// The text of a header or footer, in one line, borrowed; "" for null.
PELVOR_EXPORT NSString* textOfLine(NSAttributedString* line);
/// Whether the header or footer, which may be null, has the number of the page.
PELVOR_EXPORT bool hasPageNumber(NSAttributedString* line);
/// The footer with a centred paragraph for the number of the page behind all others; or without the
/// paragraphs that have it. The footer may be null, and the result may be empty.
PELVOR_EXPORT Retained<NSAttributedString> footerWithPageNumber(NSAttributedString* footer,
                                                                NSDictionary* attributes);
PELVOR_EXPORT Retained<NSAttributedString> footerWithoutPageNumber(NSAttributedString* footer);

}  // namespace pelvor
