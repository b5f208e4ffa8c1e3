// SPDX-License-Identifier: Apache-2.0
// Replaces the whole of a text and keeps its formats.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSMutableAttributedString;

/// Makes `text` the string of the rich text. The two are compared word by word: what stands between white
/// space takes the place of the word with the same number and keeps its formats, letter by letter if it is as
/// long. A word that is the front of the old one leaves the rest for the next word, so that a text whose
/// lines were wrapped anew keeps all formats.
void replaceWords(NSMutableAttributedString* richText, NSString* text);

}  // namespace pelvor
