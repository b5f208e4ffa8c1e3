// SPDX-License-Identifier: Apache-2.0
// WRSheetParagraphStyle: a paragraph style of a style sheet.
#pragma once

#include "Text/NSParagraphStyle.h"

namespace pelvor {

/// How a paragraph stands on pages.
struct PageRules {
    bool isKeepWithNext = false;     ///< on one page with the start of the next paragraph
    bool isKeepTogether = false;     ///< on one page
    bool isPageBreakBefore = false;  ///< at the start of a page

    friend bool operator==(const PageRules&, const PageRules&) = default;
};

/// The rules of a paragraph style that has the messages of their names, of whatever class.
PELVOR_EXPORT PageRules pageRulesOf(Object* style);

/// A paragraph style with rules for pages, as style sheets and rich text files give them. Mutable copies keep
/// the rules. Immutable, any thread.
class PELVOR_EXPORT WRSheetParagraphStyle : public NSParagraphStyle {
    PELVOR_CLASS(WRSheetParagraphStyle, NSParagraphStyle);
    PELVOR_CREATORS(initWithCoder);
    PELVOR_INHERITED_CREATORS(init);

  public:
    static Retained<WRSheetParagraphStyle> initWithCoder(NSCoder* coder, Class* cls = classObject());
    void encodeWithCoder(NSCoder* coder);

    // C++ only
    static Retained<WRSheetParagraphStyle> create(NSParagraphStyle* style, PageRules rules);

    bool isKeepWithNext() { return _rules.isKeepWithNext; }
    bool isKeepTogether() { return _rules.isKeepTogether; }
    bool isPageBreakBefore() { return _rules.isPageBreakBefore; }

    /// A style without rules is equal to a plain one.
    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    NSString* description() override;
    Retained<Object> copyWithZone(void*) override { return Retained<Object>::retaining(this); }
    Retained<Object> mutableCopyWithZone(void*) override;

  protected:
    WRSheetParagraphStyle() = default;
    ~WRSheetParagraphStyle() = default;

  private:
    PageRules _rules;
};

}  // namespace pelvor
