// SPDX-License-Identifier: Apache-2.0
// What was read from a rich text file, as objects.
#pragma once

#include "Foundation/NSAttributedString.h"
#include "Foundation/NSDictionary.h"
#include "Writer/PlugIns/RichText/RichTextReading.h"

namespace pelvor {

/// Objects of PlugInProtocol.h.
struct RichTextObjects {
    Retained<NSString> string;  // of the text, in one piece
    Retained<NSAttributedString> text;
    Retained<NSDictionary> settings;  ///< null without any
};

/// Uses up the texts of what was read.
RichTextObjects objectsOf(RichText& read);

/// The settings that are numbers and that are strings, in the order of PageNumber and DocumentField.
extern NSString* const kPageNumberKeys[static_cast<std::size_t>(PageNumber::count)];
extern NSString* const kDocumentFieldKeys[static_cast<std::size_t>(DocumentField::count)];

}  // namespace pelvor
