// SPDX-License-Identifier: Apache-2.0
// Rich text that goes from one program to another: what text views ask of attributed strings.
#pragma once

#include "Foundation/NSAttributedString.h"
#include "Runtime/Registry.h"

namespace pelvor {

class NSData;
class NSDictionary;

/// The units of the range as rich text. The dictionary may be null, or hold settings of PlugInProtocol.h.
/// Raises NSRangeException for a range outside. Borrowed.
NSData* RTFFromRange_documentAttributes(NSAttributedString* text, NSRange range, NSDictionary* settings);

/// The text of the data; null for data that are no rich text. Where the last paragraph has no end of its own
/// in the data, it has none in the text. Borrowed.
struct RichTextPasteboard {
    static NSAttributedString* initWithRTF_documentAttributes(NSData* data, id unused);
};

extern const Category NSAttributedString_RichText_category;

}  // namespace pelvor
