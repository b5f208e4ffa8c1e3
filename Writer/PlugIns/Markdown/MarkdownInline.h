// SPDX-License-Identifier: Apache-2.0
// Takes the markup out of one paragraph of Markdown text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace pelvor {

/// What the markup said about a unit, joined by "|": at most one kind of paragraph, and marks of characters.
enum MarkdownStyle : std::uint8_t {
    kMarkdownPlain = 0,
    kMarkdownEmphasis = 1,
    kMarkdownStrong = 2,
    kMarkdownCode = 4,
    kMarkdownHeading = 8,  ///< and 1 to 6 times 16 for its level
    kMarkdownLevel = 16,
    kMarkdownListItem = 128,
    kMarkdownCodeLine = 128 | 16,
    kMarkdownQuote = 128 | 32,
};

/// Text without markup, and a MarkdownStyle for each of its units.
struct MarkdownText {
    std::u16string text;
    std::basic_string<std::uint8_t> styles;
};

/// The paragraph without emphasis, code marks, link targets, escapes and entities.
MarkdownText textOfMarkdownParagraph(std::u16string_view source);

}  // namespace pelvor
