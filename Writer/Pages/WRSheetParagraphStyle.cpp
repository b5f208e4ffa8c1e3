// SPDX-License-Identifier: Apache-2.0
#include "Writer/Pages/WRSheetParagraphStyle.h"

#include "Runtime/Message.h"
#include "Writer/Pages/PagesLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRSheetParagraphStyle, pagesLibrary) {
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

bool WRSheetParagraphStyle::isEqual(id other) {
    auto* style = cast<WRSheetParagraphStyle>(other);
    return style && NSParagraphStyle::isEqual(other) && _rules == style->_rules;
}

}  // namespace pelvor
