// SPDX-License-Identifier: Apache-2.0
#include "Text/TextAttributes.h"

namespace pelvor {

constinit NSString* const NSFontAttributeName = u"NSFont"_ns;
constinit NSString* const NSParagraphStyleAttributeName = u"NSParagraphStyle"_ns;
constinit NSString* const NSForegroundColorAttributeName = u"NSColor"_ns;
constinit NSString* const NSBackgroundColorAttributeName = u"NSBackgroundColor"_ns;
constinit NSString* const NSUnderlineStyleAttributeName = u"NSUnderline"_ns;
constinit NSString* const NSUnderlineColorAttributeName = u"NSUnderlineColor"_ns;
constinit NSString* const NSStrikethroughStyleAttributeName = u"NSStrikethrough"_ns;
constinit NSString* const NSStrikethroughColorAttributeName = u"NSStrikethroughColor"_ns;
constinit NSString* const NSSuperscriptAttributeName = u"NSSuperScript"_ns;
constinit NSString* const NSBaselineOffsetAttributeName = u"NSBaselineOffset"_ns;
constinit NSString* const NSKernAttributeName = u"NSKern"_ns;
constinit NSString* const NSLigatureAttributeName = u"NSLigature"_ns;
constinit NSString* const NSObliquenessAttributeName = u"NSObliqueness"_ns;
constinit NSString* const NSExpansionAttributeName = u"NSExpansion"_ns;
constinit NSString* const NSAttachmentAttributeName = u"NSAttachment"_ns;
constinit NSString* const NSLanguageAttributeName = u"NSLanguage"_ns;
constinit NSString* const NSLinkAttributeName = u"NSLink"_ns;
constinit NSString* const NSToolTipAttributeName = u"NSToolTip"_ns;

}  // namespace pelvor
