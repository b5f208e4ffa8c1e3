// SPDX-License-Identifier: Apache-2.0
// WRParagraphStyle: a paragraph style that says how the paragraph stands on pages.
#pragma once

#include "Text/NSParagraphStyle.h"

namespace pelvor {

/// The style of every paragraph that comes out of a rich text file. Who sets pages asks for these properties
/// by message. Immutable, any thread.
class WRParagraphStyle : public NSParagraphStyle, NSParagraphStyle::HiddenCreators {
    PELVOR_CLASS(WRParagraphStyle, NSParagraphStyle);
    PELVOR_CREATORS(initWithParagraphStyle_keepWithNext_keepTogether_pageBreakBefore);

  public:
    static Retained<WRParagraphStyle> initWithParagraphStyle_keepWithNext_keepTogether_pageBreakBefore(
        NSParagraphStyle* style, bool isKeepWithNext, bool isKeepTogether, bool isPageBreakBefore,
        Class* cls = classObject());

    /// Whether the paragraph stands on one page with the start of the next paragraph.
    bool isKeepWithNext() { return _isKeepWithNext; }
    /// Whether the paragraph stands on one page.
    bool isKeepTogether() { return _isKeepTogether; }
    /// Whether the paragraph begins a page.
    bool isPageBreakBefore() { return _isPageBreakBefore; }

    bool isEqual(id other) override;
    std::uintptr_t hash() override { return NSParagraphStyle::hash(); }
    NSString* description() override;
    Retained<Object> copyWithZone(void*) override { return Retained<WRParagraphStyle>::retaining(this); }

  protected:
    WRParagraphStyle() = default;
    ~WRParagraphStyle() = default;

  private:
    bool _isKeepWithNext = false, _isKeepTogether = false, _isPageBreakBefore = false;
};

}  // namespace pelvor
