// SPDX-License-Identifier: Apache-2.0
#include "Writer/Pages/WRSheetParagraphStyle.h"

#include "Foundation/NSCoder.h"
#include "Foundation/NSString.h"
#include "Runtime/Message.h"
#include "Writer/Pages/PagesLibrary.h"
#include "Writer/Pages/WRMutableSheetParagraphStyle.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRSheetParagraphStyle, pagesLibrary) {
    methods.creator<"initWithCoder:", &WRSheetParagraphStyle::initWithCoder>();
    methods.instance<"encodeWithCoder:", &WRSheetParagraphStyle::encodeWithCoder>();
    methods.instance<"isKeepWithNext", &WRSheetParagraphStyle::isKeepWithNext>();
    methods.instance<"isKeepTogether", &WRSheetParagraphStyle::isKeepTogether>();
    methods.instance<"isPageBreakBefore", &WRSheetParagraphStyle::isPageBreakBefore>();
}

PageRules pageRulesOf(Object* style) {
    const auto says = [style](SEL question) {
        return style && style->respondsToSelector(question) && send<bool>(style, question);
    };
    return {says("isKeepWithNext"_sel), says("isKeepTogether"_sel), says("isPageBreakBefore"_sel)};
}

Retained<WRSheetParagraphStyle> WRSheetParagraphStyle::create(NSParagraphStyle* style, PageRules rules) {
    auto self = make<WRSheetParagraphStyle>(classObject());
    self->take(style);
    self->_rules = rules;
    return self;
}

Retained<WRSheetParagraphStyle> WRSheetParagraphStyle::initWithCoder(NSCoder* coder, Class* cls) {
    auto self = cast<WRSheetParagraphStyle>(NSParagraphStyle::initWithCoder(coder, cls));
    self->_rules = {coder->decodeBoolForKey(u"keepWithNext"_ns), coder->decodeBoolForKey(u"keepTogether"_ns),
                    coder->decodeBoolForKey(u"pageBreakBefore"_ns)};
    return self;
}

void WRSheetParagraphStyle::encodeWithCoder(NSCoder* coder) {
    NSParagraphStyle::encodeWithCoder(coder);
    coder->encodeBool_forKey(_rules.isKeepWithNext, u"keepWithNext"_ns);
    coder->encodeBool_forKey(_rules.isKeepTogether, u"keepTogether"_ns);
    coder->encodeBool_forKey(_rules.isPageBreakBefore, u"pageBreakBefore"_ns);
}

bool WRSheetParagraphStyle::isEqual(id other) {
    return NSParagraphStyle::isEqual(other) && _rules == pageRulesOf(other);
}

// Other than that of the plain style, which takes itself to be equal to this one.
std::uintptr_t WRSheetParagraphStyle::hash() {
    const unsigned rules =
        _rules.isKeepWithNext * 1u + _rules.isKeepTogether * 2u + _rules.isPageBreakBefore * 4u;
    return NSParagraphStyle::hash() + rules;
}

NSString* WRSheetParagraphStyle::description() {
    NSString* text = NSParagraphStyle::description();
    if (_rules.isKeepWithNext) text = text->stringByAppendingString(u", kept with the next"_ns);
    if (_rules.isKeepTogether) text = text->stringByAppendingString(u", kept together"_ns);
    if (_rules.isPageBreakBefore) text = text->stringByAppendingString(u", on a new page"_ns);
    return text;
}

Retained<Object> WRSheetParagraphStyle::mutableCopyWithZone(void*) {
    return WRMutableSheetParagraphStyle::create(this, _rules);
}

}  // namespace pelvor
