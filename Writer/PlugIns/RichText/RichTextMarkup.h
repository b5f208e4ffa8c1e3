// SPDX-License-Identifier: Apache-2.0
// Writes text with attributes as rich text (RTF 1.9).
#pragma once

#include <set>
#include <string>

#include "Foundation/NSAttributedString.h"

namespace pelvor {

class NSDictionary;

struct RichTextMarkup {
    std::string bytes;  ///< ASCII
    /// What the format has no room for: names of attributes and of properties.
    std::set<std::u16string> leftOut;
};

/// The text and the settings, which may be null, of PlugInProtocol.h. Reading the bytes gives equal texts
/// again, but for what was left out: every paragraph ends with a line feed, and lengths are rounded to the
/// format's units. Headers show the name of the file where the settings have no title; it may be null.
RichTextMarkup markupOfRichText(NSAttributedString* text, NSDictionary* settings,
                                NSString* fileName = nullptr);

}  // namespace pelvor
