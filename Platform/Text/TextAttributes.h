// SPDX-License-Identifier: Apache-2.0
// The keys of the attributes that the text system reads, and the codes of their values.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

// Each key is named with the class of its value, and with what holds for text without it.

extern PELVOR_EXPORT NSString* const NSFontAttributeName;             ///< NSFont; the user font at 12 points
extern PELVOR_EXPORT NSString* const NSParagraphStyleAttributeName;   ///< NSParagraphStyle; the default style
extern PELVOR_EXPORT NSString* const NSForegroundColorAttributeName;  ///< NSColor; black
extern PELVOR_EXPORT NSString* const NSBackgroundColorAttributeName;  ///< NSColor; none is drawn
extern PELVOR_EXPORT NSString* const NSUnderlineStyleAttributeName;   ///< NSNumber, an NSUnderlineStyle; none
extern PELVOR_EXPORT NSString* const NSUnderlineColorAttributeName;   ///< NSColor; the text's colour
extern PELVOR_EXPORT NSString* const
    NSStrikethroughStyleAttributeName;  ///< NSNumber, an NSUnderlineStyle; none
extern PELVOR_EXPORT NSString* const NSStrikethroughColorAttributeName;  ///< NSColor; the text's colour
extern PELVOR_EXPORT NSString* const
    NSSuperscriptAttributeName;  ///< NSNumber: levels up, or down if negative, in smaller letters; 0
extern PELVOR_EXPORT NSString* const NSBaselineOffsetAttributeName;  ///< NSNumber: points up; 0
extern PELVOR_EXPORT NSString* const NSKernAttributeName;  ///< NSNumber: points added after each character; 0
extern PELVOR_EXPORT NSString* const
    NSLigatureAttributeName;  ///< NSNumber: 0 none, 1 the usual ones, 2 all; 1
extern PELVOR_EXPORT NSString* const NSObliquenessAttributeName;  ///< NSNumber: the slant as a tangent; 0
extern PELVOR_EXPORT NSString* const
    NSExpansionAttributeName;  ///< NSNumber: logarithm of the width's factor; 0
extern PELVOR_EXPORT NSString* const
    NSAttachmentAttributeName;                                 ///< NSTextAttachment, on NSAttachmentCharacter
extern PELVOR_EXPORT NSString* const NSLanguageAttributeName;  ///< NSString: a BCP 47 name, "en-GB"; unknown
extern PELVOR_EXPORT NSString* const NSLinkAttributeName;      ///< NSString: an address; none
extern PELVOR_EXPORT NSString* const NSToolTipAttributeName;   ///< NSString: a help text; none

/// The character that an attachment stands on.
inline constexpr unichar NSAttachmentCharacter = 0xFFFC;

/// The lines of underlined and struck text.
enum NSUnderlineStyle : int {
    NSUnderlineStyleNone = 0,
    NSUnderlineStyleSingle = 1,
    NSUnderlineStyleThick = 2,
    NSUnderlineStyleDouble = 9,
};

/// How the lines of a paragraph stand between their margins.
enum NSTextAlignment : int {
    NSLeftTextAlignment = 0,
    NSRightTextAlignment = 1,
    NSCenterTextAlignment = 2,
    NSJustifiedTextAlignment = 3,
    NSNaturalTextAlignment = 4,  ///< left, or right in a paragraph that runs from right to left
};

enum NSWritingDirection : int {
    NSWritingDirectionNatural = -1,  ///< as the first letter of the paragraph has it
    NSWritingDirectionLeftToRight = 0,
    NSWritingDirectionRightToLeft = 1,
};

/// What happens to text that is too long for its line.
enum NSLineBreakMode : int {
    NSLineBreakByWordWrapping = 0,
    NSLineBreakByCharWrapping = 1,
    NSLineBreakByClipping = 2,
    NSLineBreakByTruncatingHead = 3,
    NSLineBreakByTruncatingTail = 4,
    NSLineBreakByTruncatingMiddle = 5,
};

}  // namespace pelvor
