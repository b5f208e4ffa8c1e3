// SPDX-License-Identifier: Apache-2.0
// WRMutableSheetParagraphStyle: a paragraph style with rules for pages that can be changed.
#pragma once

#include "Text/NSMutableParagraphStyle.h"
#include "Writer/Pages/WRSheetParagraphStyle.h"

namespace pelvor {

/// The mutable copy of a WRSheetParagraphStyle. Copies of it have its rules, so that whoever changes an
/// alignment through `mutableCopy` changes nothing else.
class PELVOR_EXPORT WRMutableSheetParagraphStyle : public NSMutableParagraphStyle,
                                                   NSMutableParagraphStyle::HiddenCreators {
    PELVOR_CLASS(WRMutableSheetParagraphStyle, NSMutableParagraphStyle);

  public:
    // C++ only
    static Retained<WRMutableSheetParagraphStyle> create(NSParagraphStyle* style, PageRules rules);

    bool isKeepWithNext() { return _rules.isKeepWithNext; }
    bool isKeepTogether() { return _rules.isKeepTogether; }
    bool isPageBreakBefore() { return _rules.isPageBreakBefore; }

    Retained<Object> copyWithZone(void*) override { return WRSheetParagraphStyle::create(this, _rules); }
    Retained<Object> mutableCopyWithZone(void*) override { return create(this, _rules); }

  protected:
    WRMutableSheetParagraphStyle() = default;
    ~WRMutableSheetParagraphStyle() = default;

  private:
    PageRules _rules;
};

}  // namespace pelvor
