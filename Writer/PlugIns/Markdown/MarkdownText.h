// SPDX-License-Identifier: Apache-2.0
// Takes the markup out of Markdown text.
#pragma once

#include "Writer/PlugIns/Markdown/MarkdownInline.h"

namespace pelvor {

/// The text that a reader of the formatted document would see: one line a paragraph, heading, list item or
/// line of code, without marks of emphasis, targets of links, underlines and rules. Markup that does not come
/// in pairs is text. Takes time in proportion to the source, whatever it is. Any thread.
MarkdownText textOfMarkdown(std::u16string_view source);

}  // namespace pelvor
