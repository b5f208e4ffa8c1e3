// SPDX-License-Identifier: Apache-2.0
#include "Text/NSMutableParagraphStyle.h"

#include "Foundation/NSMutableArray.h"
#include "Shared/ArgumentChecks.h"
#include "Text/NSTextTab.h"
#include "Text/TextLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSMutableParagraphStyle, textLibrary) {
    methods.instance<"setAlignment:", &NSMutableParagraphStyle::setAlignment>();
    methods.instance<"setBaseWritingDirection:", &NSMutableParagraphStyle::setBaseWritingDirection>();
    methods.instance<"setLineBreakMode:", &NSMutableParagraphStyle::setLineBreakMode>();
    methods.instance<"setDefaultTabInterval:", &NSMutableParagraphStyle::setDefaultTabInterval>();
    methods.instance<"setFirstLineHeadIndent:", &NSMutableParagraphStyle::setFirstLineHeadIndent>();
    methods.instance<"setHeadIndent:", &NSMutableParagraphStyle::setHeadIndent>();
    methods.instance<"setTailIndent:", &NSMutableParagraphStyle::setTailIndent>();
    methods.instance<"setLineHeightMultiple:", &NSMutableParagraphStyle::setLineHeightMultiple>();
    methods.instance<"setMinimumLineHeight:", &NSMutableParagraphStyle::setMinimumLineHeight>();
    methods.instance<"setMaximumLineHeight:", &NSMutableParagraphStyle::setMaximumLineHeight>();
    methods.instance<"setLineSpacing:", &NSMutableParagraphStyle::setLineSpacing>();
    methods.instance<"setParagraphSpacing:", &NSMutableParagraphStyle::setParagraphSpacing>();
    methods.instance<"setParagraphSpacingBefore:", &NSMutableParagraphStyle::setParagraphSpacingBefore>();
    methods.instance<"setHyphenationFactor:", &NSMutableParagraphStyle::setHyphenationFactor>();
    methods.instance<"setTabStops:", &NSMutableParagraphStyle::setTabStops>();
    methods.instance<"addTabStop:", &NSMutableParagraphStyle::addTabStop>();
    methods.instance<"removeTabStop:", &NSMutableParagraphStyle::removeTabStop>();
    methods.instance<"setParagraphStyle:", &NSMutableParagraphStyle::setParagraphStyle>();
}

void NSMutableParagraphStyle::setTabStops(NSArray* tabStops) {
    for (id tab : tabStops)
        if (!cast<NSTextTab>(tab)) raiseBadArgument("setTabStops:", "an object of the array is no NSTextTab");
    _tabStops = tabStops ? tabStops->copy() : NSArray::init();
}

void NSMutableParagraphStyle::addTabStop(NSTextTab* tab) {
    requireArgument(tab, "addTabStop:", "the tab");
    auto tabs = _tabStops->mutableCopy();
    NSUInteger place = tabs->count();
    while (place > 0 && cast<NSTextTab>(tabs->objectAtIndex(place - 1))->location() > tab->location())
        --place;
    tabs->insertObject_atIndex(tab, place);
    _tabStops = tabs->copy();
}

void NSMutableParagraphStyle::removeTabStop(NSTextTab* tab) {
    if (!tab) return;
    auto tabs = _tabStops->mutableCopy();
    tabs->removeObject(tab);
    _tabStops = tabs->copy();
}

void NSMutableParagraphStyle::setParagraphStyle(NSParagraphStyle* style) {
    requireArgument(style, "setParagraphStyle:", "the style");
    take(style);
}

}  // namespace pelvor
