// SPDX-License-Identifier: Apache-2.0
// WRPageLayoutManager: the layout manager of text on pages.
#pragma once

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

  protected:
    WRPageLayoutManager() = default;
    ~WRPageLayoutManager() = default;
};

}  // namespace pelvor
