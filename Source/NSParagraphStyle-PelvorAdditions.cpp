// SPDX-License-Identifier: Apache-2.0
#include "NSParagraphStyle-PelvorAdditions.h"

#include <algorithm>
#include <cmath>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/PlatformVersion.h"
#include "NSDictionary-PelvorAdditions.h"
#include "NSMutableDictionary-PelvorAdditions.h"
#include "Runtime/Message.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

constexpr double kFirstVersionWithAlignedTabs = 743;
constexpr float kFallbackTabInterval = 36;
constexpr double kPullBack = 0.001;

bool hasAlignedTabs() { return std::floor(platformVersion()) >= kFirstVersionWithAlignedTabs; }

bool isRightToLeft(NSParagraphStyle* style) {
    return style->baseWritingDirection() == NSWritingDirectionRightToLeft;
}

// The properties in the order in which they are written and read.
template <class Integer, class Float>
void eachProperty(Integer integer, Float real) {
    using Style = NSParagraphStyle;
    using Mutable = NSMutableParagraphStyle;
    integer(u"alignment"_ns, &Style::alignment, &Mutable::setAlignment);
    integer(u"baseWritingDirection"_ns, &Style::baseWritingDirection, &Mutable::setBaseWritingDirection);
    real(u"defaultTabInterval"_ns, &Style::defaultTabInterval, &Mutable::setDefaultTabInterval);
    real(u"firstLineHeadIndent"_ns, &Style::firstLineHeadIndent, &Mutable::setFirstLineHeadIndent);
    real(u"headIndent"_ns, &Style::headIndent, &Mutable::setHeadIndent);
    integer(u"lineBreakMode"_ns, &Style::lineBreakMode, &Mutable::setLineBreakMode);
    real(u"lineHeightMultiple"_ns, &Style::lineHeightMultiple, &Mutable::setLineHeightMultiple);
    real(u"lineSpacing"_ns, &Style::lineSpacing, &Mutable::setLineSpacing);
    real(u"maximumLineHeight"_ns, &Style::maximumLineHeight, &Mutable::setMaximumLineHeight);
    real(u"minimumLineHeight"_ns, &Style::minimumLineHeight, &Mutable::setMinimumLineHeight);
    real(u"paragraphSpacing"_ns, &Style::paragraphSpacing, &Mutable::setParagraphSpacing);
    real(u"paragraphSpacingBefore"_ns, &Style::paragraphSpacingBefore, &Mutable::setParagraphSpacingBefore);
    real(u"tailIndent"_ns, &Style::tailIndent, &Mutable::setTailIndent);
}

void defineStyleAdditions(MethodTable<NSParagraphStyle>& methods) {
    methods.instanceAs<"propertyListRepresentation",
                       static_cast<NSDictionary* (*)(NSParagraphStyle*)>(&propertyListRepresentation)>();
    methods.creatorAs<"initWithPropertyListRepresentation:",
                      &NSParagraphStyle_PelvorAdditions::initWithPropertyListRepresentation>();
    methods.instance<"textTabForGlyphLocation:writingDirection:maxLocation:",
                     &textTabForGlyphLocation_writingDirection_maxLocation>();
}

void defineTabAdditions(MethodTable<NSTextTab>& methods) {
    methods.instanceAs<"propertyListRepresentation",
                       static_cast<NSDictionary* (*)(NSTextTab*)>(&propertyListRepresentation)>();
    methods.creatorAs<"initWithPropertyListRepresentation:",
                      &NSTextTab_PropertyListSerializing::initWithPropertyListRepresentation>();
    methods.instance<"textTabBySettingLocation:", &textTabBySettingLocation>();
}

}  // namespace

constinit const Category NSParagraphStyle_PelvorAdditions_category =
    Category::of<NSParagraphStyle, defineStyleAdditions>("PelvorAdditions");
constinit const Category NSTextTab_PropertyListSerializing_category =
    Category::of<NSTextTab, defineTabAdditions>("PropertyListSerializing");

// MARK: Property lists

NSDictionary* propertyListRepresentation(NSTextTab* tab) {
    requireArgument(tab, "propertyListRepresentation", "the tab");
    auto list = NSMutableDictionary::init();
    setFloat_forKey(list, tab->location(), u"location"_ns);
    if (tab->tabStopType() != NSLeftTabStopType) setInt_forKey(list, tab->tabStopType(), u"tabStopType"_ns);
    if (hasAlignedTabs()) {
        if (tab->alignment() != NSLeftTextAlignment) setInt_forKey(list, tab->alignment(), u"alignment"_ns);
        if (tab->options()->count() > 0) list->setObject_forKey(tab->options(), u"options"_ns);
    }
    return std::move(list).autorelease();
}

Retained<NSTextTab> NSTextTab_PropertyListSerializing::initWithPropertyListRepresentation(NSDictionary* list,
                                                                                          Class* cls) {
    requireArgument(list, "initWithPropertyListRepresentation:", "the property list");
    const float location = floatForKey(list, u"location"_ns);
    if (!hasAlignedTabs())
        return NSTextTab::initWithType_location(
            static_cast<NSTextTabType>(intForKey(list, u"tabStopType"_ns)), location, cls);
    const auto alignment = static_cast<NSTextAlignment>(intForKey(list, u"alignment"_ns));
    return NSTextTab::initWithTextAlignment_location_options(
        alignment, location, cast<NSDictionary>(list->objectForKey(u"options"_ns)), cls);
}

NSDictionary* propertyListRepresentation(NSParagraphStyle* style) {
    requireArgument(style, "propertyListRepresentation", "the style");
    auto list = NSMutableDictionary::init();
    eachProperty([&](NSString* key, auto get, auto) { setInt_forKey(list, (style->*get)(), key); },
                 [&](NSString* key, auto get, auto) { setFloat_forKey(list, (style->*get)(), key); });
    if (style->respondsToSelector("customValueKeys"_sel))
        if (id custom = send<id>(style, "customValueKeys"_sel))
            list->setObject_forKey(custom, u"customValueKeys"_ns);
    auto tabs = NSMutableArray::init();
    for (id tab : style->tabStops()) tabs->addObject(send<id>(tab, "propertyListRepresentation"_sel));
    list->setObject_forKey(tabs, u"tabStops"_ns);
    return std::move(list).autorelease();
}

Retained<NSParagraphStyle> NSParagraphStyle_PelvorAdditions::initWithPropertyListRepresentation(
    NSDictionary* list, Class* cls) {
    requireArgument(list, "initWithPropertyListRepresentation:", "the property list");
    Retained<NSMutableParagraphStyle> style;
    if (cls->isNativeSubclassOf(NSMutableParagraphStyle::classObject())) {
        style = make<NSMutableParagraphStyle>(cls);
        style->setParagraphStyle(NSParagraphStyle::defaultParagraphStyle());
    } else {
        style = NSParagraphStyle::defaultParagraphStyle()->mutableCopy();
    }
    eachProperty(
        [&]<class Value>(NSString* key, auto, void (NSMutableParagraphStyle::*set)(Value)) {
            if (list->objectForKey(key)) (style.get()->*set)(static_cast<Value>(intForKey(list, key)));
        },
        [&](NSString* key, auto, auto set) {
            if (list->objectForKey(key)) (style.get()->*set)(floatForKey(list, key));
            // A style from a property list never sets lines closer than their fonts do.
            if (set == &NSMutableParagraphStyle::setLineHeightMultiple && style->lineHeightMultiple() < 1)
                style->setLineHeightMultiple(1);
        });
    const SEL setCustom = "setCustomValueKeys:"_sel;
    if (id custom = list->objectForKey(u"customValueKeys"_ns); custom && style->respondsToSelector(setCustom))
        send(style.get(), setCustom, custom);
    if (auto lists = cast<NSArray>(list->objectForKey(u"tabStops"_ns))) {
        auto tabs = NSMutableArray::init();
        for (id each : lists)
            if (auto tab = cast<NSDictionary>(each))
                tabs->addObject(
                    NSTextTab_PropertyListSerializing::initWithPropertyListRepresentation(tab).get());
        style->setTabStops(tabs);
    }
    return style;
}

// MARK: Tab stops

NSTextTab* textTabBySettingLocation(NSTextTab* tab, float location) {
    requireArgument(tab, "textTabBySettingLocation:", "the tab");
    auto moved =
        NSTextTab::initWithTextAlignment_location_options(tab->alignment(), location, tab->options());
    if (moved->tabStopType() == tab->tabStopType()) return std::move(moved).autorelease();
    return NSTextTab::initWithType_location(tab->tabStopType(), location).autorelease();
}

NSTextTab* _PBFirstTextTabInList(NSArray* tabs, NSParagraphStyle* style, bool pullsBack, float location,
                                 float maxLocation) {
    requireArgument(style, "_PBFirstTextTabInList", "the style");
    for (id each : tabs) {
        auto tab = cast<NSTextTab>(each);
        if (!tab || !(tab->location() > location)) continue;
        if (tab->location() < maxLocation) return tab;
        const NSTextAlignment endAlignment =
            isRightToLeft(style) ? NSLeftTextAlignment : NSRightTextAlignment;
        if (!pullsBack || tab->alignment() != endAlignment) return nullptr;
        const auto pulled = static_cast<float>(static_cast<double>(maxLocation) - kPullBack);
        return send<NSTextTab*>(tab, "textTabBySettingLocation:"_sel, pulled);
    }
    return nullptr;
}

namespace {

// The first of the stops at the interval behind `start` that lies behind the location, unless that is beyond
// the limit. The stops are sums, as rounded as they come; where there are too many of them, the rest is
// multiplied.
float stopAtInterval(float start, float interval, float location, float limit) {
    constexpr int kMostSums = 100000;
    for (int sums = 0; start < limit && location >= start; ++sums) {
        float next = start + interval;
        if (sums == kMostSums || next == start)
            next = std::max(std::nextafter(location, HUGE_VALF),
                            start + std::floor((location - start) / interval + 1) * interval);
        start = next;
    }
    return start;
}

}  // namespace

NSTextTab* textTabForGlyphLocation_writingDirection_maxLocation(NSParagraphStyle* style, float location,
                                                                NSWritingDirection, float maxLocation) {
    requireArgument(style, "textTabForGlyphLocation:writingDirection:maxLocation:", "the style");
    const SEL indentTab = "firstLineHeadIndentTextTab"_sel;
    NSArray* tabs = style->tabStops();
    auto lastTab = cast<NSTextTab>(tabs->lastObject());
    const float last = lastTab ? lastTab->location() : 0;
    if (style->respondsToSelector(indentTab))
        if (auto tab = send<NSTextTab*>(style, indentTab))
            if (tab->location() > location || (location == 0 && tab->location() == 0)) return tab;
    float stop = 0;
    if (style->firstLineHeadIndent() > location) {
        stop = style->firstLineHeadIndent();
    } else if (const float indent = style->headIndent(); indent > location) {
        if (NSTextTab* tab = _PBFirstTextTabInList(tabs, style, false, location, indent)) return tab;
        stop = indent;
    } else if (lastTab && !(location >= last)) {
        return _PBFirstTextTabInList(tabs, style, true, location, maxLocation);
    } else {
        const float interval = style->defaultTabInterval();
        stop = stopAtInterval(std::max(indent, last), interval > 0 ? interval : kFallbackTabInterval,
                              location, maxLocation);
    }
    if (!(stop < maxLocation)) return nullptr;
    return NSTextTab::initWithType_location(isRightToLeft(style) ? NSRightTabStopType : NSLeftTabStopType,
                                            stop)
        .autorelease();
}

}  // namespace pelvor
