// SPDX-License-Identifier: Apache-2.0
// WRPageLayoutManager: the layout manager of text on pages.
#pragma once

#include <functional>

#include "Text/NSLayoutManager.h"

namespace pelvor {

/// A layout manager that knows the language objects of Writer, so that lines and words are broken by them.
class PELVOR_EXPORT WRPageLayoutManager : public NSLayoutManager {
    PELVOR_CLASS(WRPageLayoutManager, NSLayoutManager);
    PELVOR_INHERITED_CREATORS(init);

  public:
    /// Has text without a language be in that of the system, as Writer knows it.
    static void didLoad();
    /// The value of NSLanguageAttributeName; else the identifier of the language object of the attributes, or
    /// of the system language.
    NSString* languageForAttributes(NSDictionary* attributes) override;

    // C++ only
    /// Called when the layout knows of an edit, with the range as it is now and the change in length. It may
    /// ask for places.
    using EditFunction = std::function<void(NSRange range, NSInteger delta)>;
    void setEditFunction(EditFunction function) { _didEdit = std::move(function); }
    /// The message of the text storage.
    void textStorage_edited_range_changeInLength_invalidatedRange(NSTextStorage* storage, unsigned mask,
                                                                  NSRange newRange, NSInteger delta,
                                                                  NSRange invalidatedRange);

  protected:
    WRPageLayoutManager() = default;
    ~WRPageLayoutManager() = default;

  private:
    EditFunction _didEdit;
};

}  // namespace pelvor
