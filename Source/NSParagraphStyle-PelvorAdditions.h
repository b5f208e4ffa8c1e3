// SPDX-License-Identifier: Apache-2.0
// Additions to paragraph styles and tab stops: their form as property lists, and the tab stop that a tab
// advances to.
//
//     NSDictionary* list = propertyListRepresentation(style);
//     auto same = NSParagraphStyle_PelvorAdditions::initWithPropertyListRepresentation(list);
//     NSTextTab* tab =
//         textTabForGlyphLocation_writingDirection_maxLocation(style, 40, NSWritingDirectionNatural, 400);
#pragma once

#include "Text/NSMutableParagraphStyle.h"
#include "Text/NSTextTab.h"

namespace pelvor {

struct Category;

/// Creators of paragraph styles.
struct PELVOR_EXPORT NSParagraphStyle_PelvorAdditions {
    /// A mutable style: the default one with the properties that are in the dictionary. Its line height
    /// multiple is at least 1. Numbers may be strings; other objects that are no numbers raise. A class of
    /// mutable styles makes styles of its own. Raises NSInvalidArgumentException for null.
    static Retained<NSParagraphStyle> initWithPropertyListRepresentation(
        NSDictionary* propertyList, Class* cls = NSParagraphStyle::classObject());
};

/// Creators of tab stops.
struct PELVOR_EXPORT NSTextTab_PropertyListSerializing {
    /// From platform version 743 on, the alignment and the options count and the type is passed over; below,
    /// the other way round. What is missing is 0 or empty. Raises NSInvalidArgumentException for null.
    static Retained<NSTextTab> initWithPropertyListRepresentation(NSDictionary* propertyList,
                                                                  Class* cls = NSTextTab::classObject());
};

// Property lists, borrowed

/// The properties of the style under their names, all but the hyphenation factor, the tab stops under
/// "tabStops", and what the style returns for `customValueKeys`, if it has that operation and the result is
/// not null.
PELVOR_EXPORT NSDictionary* propertyListRepresentation(NSParagraphStyle* style);
/// The tab's location, its type unless that is left, and from platform version 743 on its alignment unless
/// that is left and its options unless there are none.
PELVOR_EXPORT NSDictionary* propertyListRepresentation(NSTextTab* tab);

// Tab stops, borrowed

/// A copy of the tab at another location.
PELVOR_EXPORT NSTextTab* textTabBySettingLocation(NSTextTab* tab, float location);

/// The stop that a tab at `location` advances to; null if none lies before `maxLocation`. In their order:
/// what the style returns for `firstLineHeadIndentTextTab`, if it has that operation; the first-line indent;
/// the indent of the other lines, or a tab of the style before it; the tabs of the style; stops at the
/// default interval. The direction is not asked: that of the style counts.
PELVOR_EXPORT NSTextTab* textTabForGlyphLocation_writingDirection_maxLocation(NSParagraphStyle* style,
                                                                              float location,
                                                                              NSWritingDirection direction,
                                                                              float maxLocation);

/// The first of the tabs, in their order, that lies behind `location`; null if it does not lie before
/// `maxLocation`. Where `pullsBack` is true, such a tab at whose location text ends, by the direction of the
/// style, is moved to just before `maxLocation`.
PELVOR_EXPORT NSTextTab* _PBFirstTextTabInList(NSArray* tabs, NSParagraphStyle* style, bool pullsBack,
                                               float location, float maxLocation);

extern const Category NSParagraphStyle_PelvorAdditions_category;
extern const Category NSTextTab_PropertyListSerializing_category;

}  // namespace pelvor
