// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/RichText/WRParagraphStyle.h"

#include "Foundation/NSString.h"
#include "Writer/PlugIns/RichText/RichTextPlugIn.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRParagraphStyle, richTextPlugIn) {
    methods.creator<"initWithParagraphStyle:keepWithNext:keepTogether:pageBreakBefore:",
                    &WRParagraphStyle::initWithParagraphStyle_keepWithNext_keepTogether_pageBreakBefore>();
    methods.instance<"isKeepWithNext", &WRParagraphStyle::isKeepWithNext>();
    methods.instance<"isKeepTogether", &WRParagraphStyle::isKeepTogether>();
    methods.instance<"isPageBreakBefore", &WRParagraphStyle::isPageBreakBefore>();
}

Retained<WRParagraphStyle> WRParagraphStyle::initWithParagraphStyle_keepWithNext_keepTogether_pageBreakBefore(
    NSParagraphStyle* style, bool isKeepWithNext, bool isKeepTogether, bool isPageBreakBefore, Class* cls) {
    auto self = make<WRParagraphStyle>(cls);
    self->take(style);
    self->_isKeepWithNext = isKeepWithNext;
    self->_isKeepTogether = isKeepTogether;
    self->_isPageBreakBefore = isPageBreakBefore;
    return self;
}

bool WRParagraphStyle::isEqual(id other) {
    auto* style = cast<WRParagraphStyle>(other);
    return style && NSParagraphStyle::isEqual(other) && _isKeepWithNext == style->_isKeepWithNext &&
           _isKeepTogether == style->_isKeepTogether && _isPageBreakBefore == style->_isPageBreakBefore;
}

NSString* WRParagraphStyle::description() {
    NSString* text = NSParagraphStyle::description();
    if (_isKeepWithNext) text = text->stringByAppendingString(u", kept with the next"_ns);
    if (_isKeepTogether) text = text->stringByAppendingString(u", kept together"_ns);
    if (_isPageBreakBefore) text = text->stringByAppendingString(u", on a new page"_ns);
    return text;
}

}  // namespace pelvor
