// SPDX-License-Identifier: Apache-2.0
// Takes the markup out of one paragraph of Markdown text.
#pragma once

#include <string>
#include <string_view>

namespace pelvor {

/// The paragraph without emphasis, code marks, link targets, escapes and entities.
std::u16string textOfMarkdownParagraph(std::u16string_view source);

}  // namespace pelvor
