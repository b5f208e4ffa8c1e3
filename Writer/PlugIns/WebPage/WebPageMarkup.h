// SPDX-License-Identifier: Apache-2.0
// The markup of web pages.
#pragma once

#include <string>
#include <string_view>

namespace pelvor {

/// An HTML page with the paragraphs of the text. The first paragraph is its title.
std::u16string webPageOfText(std::u16string_view text, std::u16string_view encodingName);

/// The page with everything beyond ASCII written by number, "&#233;".
std::u16string withCharacterNumbers(std::u16string_view page);

}  // namespace pelvor
