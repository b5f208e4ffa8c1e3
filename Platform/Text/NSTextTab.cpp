// SPDX-License-Identifier: Apache-2.0
#include "Text/NSTextTab.h"

#include <functional>

#include "Foundation/NSCoder.h"
#include "Shared/ArgumentChecks.h"
#include "Text/TextLibrary.h"

namespace pelvor {

constinit NSString* const NSTabColumnTerminatorsAttributeName = u"NSTabColumnTerminatorsAttributeName"_ns;

PELVOR_DEFINE_CLASS(NSTextTab, textLibrary) {
    methods.creator<"initWithType:location:", &NSTextTab::initWithType_location>();
    methods.creator<"initWithTextAlignment:location:options:",
                    &NSTextTab::initWithTextAlignment_location_options>();
    methods.creator<"initWithCoder:", &NSTextTab::initWithCoder>();
    methods.instance<"location", &NSTextTab::location>();
    methods.instance<"tabStopType", &NSTextTab::tabStopType>();
    methods.instance<"alignment", &NSTextTab::alignment>();
    methods.instance<"options", &NSTextTab::options>();
    methods.instance<"encodeWithCoder:", &NSTextTab::encodeWithCoder>();
}

namespace {

NSTextTabType typeFor(NSTextAlignment alignment, NSDictionary* options) {
    if (alignment == NSCenterTextAlignment) return NSCenterTabStopType;
    if (alignment != NSRightTextAlignment) return NSLeftTabStopType;
    return options && options->objectForKey(NSTabColumnTerminatorsAttributeName) ? NSDecimalTabStopType
                                                                                 : NSRightTabStopType;
}

NSTextAlignment alignmentFor(NSTextTabType type) {
    switch (type) {
        case NSRightTabStopType:
        case NSDecimalTabStopType:
            return NSRightTextAlignment;
        case NSCenterTabStopType:
            return NSCenterTextAlignment;
        case NSLeftTabStopType:
            break;
    }
    return NSLeftTextAlignment;
}

}  // namespace

Retained<NSTextTab> NSTextTab::initWithType_location(NSTextTabType type, float location, Class* cls) {
    NSDictionary* options = nullptr;
    if (type == NSDecimalTabStopType)
        options = NSDictionary::of({{NSTabColumnTerminatorsAttributeName, u"."_ns}});
    auto tab = initWithTextAlignment_location_options(alignmentFor(type), location, options, cls);
    tab->_type = type;
    return tab;
}

Retained<NSTextTab> NSTextTab::initWithTextAlignment_location_options(NSTextAlignment alignment,
                                                                      float location, NSDictionary* options,
                                                                      Class* cls) {
    static NSDictionary* const noOptions = NSDictionary::init().leak();
    auto tab = make<NSTextTab>(cls);
    tab->_location = location;
    tab->_type = typeFor(alignment, options);
    tab->_alignment = alignment;
    if (options)
        tab->_options = options->copy();
    else
        tab->_options.set(noOptions);
    return tab;
}

Retained<NSTextTab> NSTextTab::initWithCoder(NSCoder* coder, Class* cls) {
    requireArgument(coder, "initWithCoder:", "the coder");
    auto tab = initWithTextAlignment_location_options(
        static_cast<NSTextAlignment>(coder->decodeIntForKey(u"alignment"_ns)),
        coder->decodeFloatForKey(u"location"_ns),
        cast<NSDictionary>(coder->decodeObjectForKey(u"options"_ns)), cls);
    tab->_type = static_cast<NSTextTabType>(coder->decodeIntForKey(u"type"_ns));
    return tab;
}

void NSTextTab::encodeWithCoder(NSCoder* coder) {
    requireArgument(coder, "encodeWithCoder:", "the coder");
    coder->encodeInt_forKey(_alignment, u"alignment"_ns);
    coder->encodeFloat_forKey(_location, u"location"_ns);
    coder->encodeObject_forKey(_options, u"options"_ns);
    coder->encodeInt_forKey(_type, u"type"_ns);
}

bool NSTextTab::isEqual(id other) {
    if (this == other) return true;
    auto tab = cast<NSTextTab>(other);
    return tab && _location == tab->_location && _type == tab->_type && _alignment == tab->_alignment &&
           _options->isEqual(tab->_options);
}

std::uintptr_t NSTextTab::hash() {
    return std::hash<float>()(_location) + static_cast<std::uintptr_t>(_type);
}

NSString* NSTextTab::description() {
    const char letter = _type >= 0 && _type <= NSDecimalTabStopType ? "LRCD"[_type] : '?';
    return NSString::stringWithFormat(u"%g%c"_ns, static_cast<double>(_location), letter);
}

Retained<Object> NSTextTab::copyWithZone(void*) { return Retained<Object>::retaining(this); }

}  // namespace pelvor
