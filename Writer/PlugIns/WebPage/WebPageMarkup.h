// SPDX-License-Identifier: Apache-2.0
// The markup of web pages.
#pragma once

#include <string>
#include <string_view>

namespace pelvor {

/// An HTML page whose paragraphs are those of the text, titled by the first one.
std::u16string webPageOfText(std::u16string_view text, std::u16string_view encodingName);

/// The page with everything beyond ASCII written by number, "&#233;".
std::u16string withCharacterNumbers(std::u16string_view page);

}  // namespace pelvor
