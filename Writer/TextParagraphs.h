// SPDX-License-Identifier: Apache-2.0
// Walks through the paragraphs of a text.
#pragma once

#include <string_view>

namespace pelvor {

/// Returns the paragraph at the front of `rest`, without its end, and moves `rest` behind it. Paragraphs end
/// with CR LF, LF, CR, or a line or paragraph separator. The end of the text ends the last paragraph; an
/// empty text has no paragraphs.
inline std::u16string_view takeParagraph(std::u16string_view& rest) {
    const std::size_t end = rest.find_first_of(u"\n\r\u2028\u2029");
    const std::u16string_view paragraph = rest.substr(0, end);
    if (end == rest.npos)
        rest = {};
    else
        rest.remove_prefix(rest.substr(end).starts_with(u"\r\n") ? end + 2 : end + 1);
    return paragraph;
}

}  // namespace pelvor
