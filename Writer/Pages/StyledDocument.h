// SPDX-License-Identifier: Apache-2.0
// A document that is ready to be set in pages.
#pragma once

#include <memory>

#include "Foundation/NSAttributedString.h"
#include "Foundation/NSDictionary.h"
#include "Writer/Pages/StyleSheet.h"

namespace pelvor {

/// A text in the styles that hold for it, and the settings of its pages: those that the user named, else the
/// document's own, else those of the style sheet that Writer brings.
struct PELVOR_EXPORT StyledDocument {
    /// The options are those of page setters (PlugInProtocol.h); of these the text has the formats of
    /// WRRichTextKey, if there are any.
    static StyledDocument of(NSString* text, NSDictionary* options);

    Retained<NSAttributedString> text;
    Retained<NSDictionary> settings;
    Retained<NSDictionary> plainAttributes;   ///< of text in no style
    std::shared_ptr<const StyleSheet> sheet;  ///< with all styles that the document's text can have
    NSString* problem = nullptr;              ///< why there is neither, as a sentence for the user; borrowed
};

}  // namespace pelvor
