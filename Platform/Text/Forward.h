// SPDX-License-Identifier: Apache-2.0
// The classes of Text, for headers that only name them: the floor's table of contents.
#pragma once

#include "Foundation/Forward.h"

namespace pelvor {

// Fonts and drawing
class NSColor;            ///< a colour with its opacity
class NSFont;             ///< a typeface at a size
class NSFontDescriptor;   ///< what a font is asked for by
class NSFontManager;      ///< which fonts there are, and the sisters of a font
class NSGraphicsContext;  ///< what is drawn on, an image or the pages of a document

// Paragraphs
class NSMutableParagraphStyle;  ///< a paragraph style that can be changed
class NSParagraphStyle;         ///< how the lines of a paragraph are set
class NSTextTab;                ///< a tab stop

// Text and its layout
class NSContainerRunTable;   ///< which glyphs stand in which container
class NSLayoutManager;       ///< sets a text in lines and tells where everything stands
class NSTextAttachment;      ///< what stands on an attachment character
class NSTextAttachmentCell;  ///< measures and draws an attachment
class NSTextContainer;       ///< an area that text is laid out in
class NSTextStorage;         ///< a text that tells layout managers and observers of its edits

}  // namespace pelvor
