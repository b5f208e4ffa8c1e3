// SPDX-License-Identifier: Apache-2.0
#include "Text/NSParagraphStyle.h"

#include <unicode/uloc.h>

#include <functional>
#include <string>

#include "Foundation/NSCoder.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableString.h"
#include "Foundation/UserLanguages.h"
#include "Shared/ArgumentChecks.h"
#include "Text/NSMutableParagraphStyle.h"
#include "Text/NSTextTab.h"
#include "Text/TextLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSParagraphStyle, textLibrary) {
    methods.classLevel<"defaultParagraphStyle", &NSParagraphStyle::defaultParagraphStyle>();
    methods.classLevel<"defaultWritingDirectionForLanguage:",
                       &NSParagraphStyle::defaultWritingDirectionForLanguage>();
    methods.creator<"init", &NSParagraphStyle::init>();
    methods.creatorAs<"new", &NSParagraphStyle::init>();
    methods.creator<"initWithCoder:", &NSParagraphStyle::initWithCoder>();
    methods.instance<"alignment", &NSParagraphStyle::alignment>();
    methods.instance<"baseWritingDirection", &NSParagraphStyle::baseWritingDirection>();
    methods.instance<"lineBreakMode", &NSParagraphStyle::lineBreakMode>();
    methods.instance<"defaultTabInterval", &NSParagraphStyle::defaultTabInterval>();
    methods.instance<"firstLineHeadIndent", &NSParagraphStyle::firstLineHeadIndent>();
    methods.instance<"headIndent", &NSParagraphStyle::headIndent>();
    methods.instance<"tailIndent", &NSParagraphStyle::tailIndent>();
    methods.instance<"lineHeightMultiple", &NSParagraphStyle::lineHeightMultiple>();
    methods.instance<"minimumLineHeight", &NSParagraphStyle::minimumLineHeight>();
    methods.instance<"maximumLineHeight", &NSParagraphStyle::maximumLineHeight>();
    methods.instance<"lineSpacing", &NSParagraphStyle::lineSpacing>();
    methods.instance<"paragraphSpacing", &NSParagraphStyle::paragraphSpacing>();
    methods.instance<"paragraphSpacingBefore", &NSParagraphStyle::paragraphSpacingBefore>();
    methods.instance<"hyphenationFactor", &NSParagraphStyle::hyphenationFactor>();
    methods.instance<"tabStops", &NSParagraphStyle::tabStops>();
    methods.instance<"encodeWithCoder:", &NSParagraphStyle::encodeWithCoder>();
}

// Each length with the key that it is coded and shown under.
template <class Visit>
void NSParagraphStyle::visitFloats(Visit visit) {
    visit(u"defaultTabInterval"_ns, &Values::defaultTabInterval);
    visit(u"firstLineHeadIndent"_ns, &Values::firstLineHeadIndent);
    visit(u"headIndent"_ns, &Values::headIndent);
    visit(u"tailIndent"_ns, &Values::tailIndent);
    visit(u"lineHeightMultiple"_ns, &Values::lineHeightMultiple);
    visit(u"minimumLineHeight"_ns, &Values::minimumLineHeight);
    visit(u"maximumLineHeight"_ns, &Values::maximumLineHeight);
    visit(u"lineSpacing"_ns, &Values::lineSpacing);
    visit(u"paragraphSpacing"_ns, &Values::paragraphSpacing);
    visit(u"paragraphSpacingBefore"_ns, &Values::paragraphSpacingBefore);
    visit(u"hyphenationFactor"_ns, &Values::hyphenationFactor);
}

// MARK: Creation

NSParagraphStyle::NSParagraphStyle() {
    static NSArray* const noTabs = NSArray::init().leak();
    _tabStops.set(noTabs);
}

NSParagraphStyle* NSParagraphStyle::defaultParagraphStyle() {
    static NSParagraphStyle* const style = init().leak();
    return style;
}

NSWritingDirection NSParagraphStyle::defaultWritingDirectionForLanguage(NSString* language) {
    std::string name;
    if (language)
        name = language->toUTF8();
    else if (NSArray* languages = userLanguages(); languages->count())
        name = cast<NSString>(languages->objectAtIndex(0))->toUTF8();
    return uloc_isRightToLeft(name.c_str()) ? NSWritingDirectionRightToLeft : NSWritingDirectionLeftToRight;
}

Retained<NSParagraphStyle> NSParagraphStyle::init(Class* cls) { return make<NSParagraphStyle>(cls); }

Retained<NSParagraphStyle> NSParagraphStyle::initWithCoder(NSCoder* coder, Class* cls) {
    requireArgument(coder, "initWithCoder:", "the coder");
    auto style = make<NSParagraphStyle>(cls);
    Values& values = style->_values;
    values.alignment = static_cast<NSTextAlignment>(coder->decodeIntForKey(u"alignment"_ns));
    values.baseWritingDirection =
        static_cast<NSWritingDirection>(coder->decodeIntForKey(u"baseWritingDirection"_ns));
    values.lineBreakMode = static_cast<NSLineBreakMode>(coder->decodeIntForKey(u"lineBreakMode"_ns));
    visitFloats(
        [&](NSString* key, float Values::*member) { values.*member = coder->decodeFloatForKey(key); });
    auto tabs = NSMutableArray::init();
    for (id tab : cast<NSArray>(coder->decodeObjectForKey(u"tabStops"_ns)))
        if (cast<NSTextTab>(tab)) tabs->addObject(tab);
    style->_tabStops = tabs->copy();
    return style;
}

void NSParagraphStyle::encodeWithCoder(NSCoder* coder) {
    requireArgument(coder, "encodeWithCoder:", "the coder");
    coder->encodeInt_forKey(_values.alignment, u"alignment"_ns);
    coder->encodeInt_forKey(_values.baseWritingDirection, u"baseWritingDirection"_ns);
    coder->encodeInt_forKey(_values.lineBreakMode, u"lineBreakMode"_ns);
    visitFloats(
        [&](NSString* key, float Values::*member) { coder->encodeFloat_forKey(_values.*member, key); });
    coder->encodeObject_forKey(_tabStops, u"tabStops"_ns);
}

// MARK: Equality and copies

bool NSParagraphStyle::isEqual(id other) {
    if (this == other) return true;
    auto style = cast<NSParagraphStyle>(other);
    return style && _values == style->_values && _tabStops->isEqual(style->_tabStops);
}

std::uintptr_t NSParagraphStyle::hash() {
    std::uintptr_t hash = static_cast<std::uintptr_t>(_values.alignment) * 31 + _tabStops->count();
    visitFloats(
        [&](NSString*, float Values::*member) { hash = hash * 31 + std::hash<float>()(_values.*member); });
    return hash;
}

NSString* NSParagraphStyle::description() {
    auto text = NSMutableString::init();
    text->appendFormat(u"alignment %d, direction %d, break mode %d"_ns, static_cast<int>(_values.alignment),
                       static_cast<int>(_values.baseWritingDirection),
                       static_cast<int>(_values.lineBreakMode));
    visitFloats([&](NSString* key, float Values::*member) {
        if (_values.*member != 0)
            text->appendFormat(u", %@ %g"_ns, key, static_cast<double>(_values.*member));
    });
    if (_tabStops->count()) text->appendFormat(u", tabs %@"_ns, _tabStops->componentsJoinedByString(u" "_ns));
    return text->copy().autorelease();
}

void NSParagraphStyle::take(NSParagraphStyle* style) {
    _values = style->_values;
    _tabStops = style->_tabStops;
}

Retained<Object> NSParagraphStyle::copyWithZone(void*) {
    if (!cast<NSMutableParagraphStyle>(this)) return Retained<Object>::retaining(this);
    auto copy = init();
    copy->take(this);
    return copy;
}

Retained<Object> NSParagraphStyle::mutableCopyWithZone(void*) {
    auto copy = NSMutableParagraphStyle::init();
    copy->take(this);
    return copy;
}

Retained<NSMutableParagraphStyle> NSParagraphStyle::mutableCopy() {
    return cast<NSMutableParagraphStyle>(mutableCopyWithZone(nullptr));
}

}  // namespace pelvor
