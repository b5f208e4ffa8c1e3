// SPDX-License-Identifier: Apache-2.0
#include "Writer/Pages/WRMutableSheetParagraphStyle.h"

#include "Writer/Pages/PagesLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRMutableSheetParagraphStyle, pagesLibrary) {
    methods.instance<"isKeepWithNext", &WRMutableSheetParagraphStyle::isKeepWithNext>();
    methods.instance<"isKeepTogether", &WRMutableSheetParagraphStyle::isKeepTogether>();
    methods.instance<"isPageBreakBefore", &WRMutableSheetParagraphStyle::isPageBreakBefore>();
}

Retained<WRMutableSheetParagraphStyle> WRMutableSheetParagraphStyle::create(NSParagraphStyle* style,
                                                                            PageRules rules) {
    auto self = make<WRMutableSheetParagraphStyle>(classObject());
    self->take(style);
    self->_rules = rules;
    return self;
}

}  // namespace pelvor
