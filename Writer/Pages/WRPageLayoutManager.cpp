// SPDX-License-Identifier: Apache-2.0
#include "Writer/Pages/WRPageLayoutManager.h"

#include "Foundation/NSString.h"
#include "NSAttributedString-PelvorAdditions.h"
#include "Runtime/Message.h"
#include "Runtime/Registry.h"
#include "Text/NSTextStorage.h"
#include "Writer/Pages/PagesLibrary.h"
#include "Writer/Pages/TextLanguage.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRPageLayoutManager, pagesLibrary) {
    methods.classLevel<"didLoad", &WRPageLayoutManager::didLoad>();
    methods.instance<"languageForAttributes:", &WRPageLayoutManager::languageForAttributes>();
    methods.instance<"textStorage:edited:range:changeInLength:invalidatedRange:",
                     &WRPageLayoutManager::textStorage_edited_range_changeInLength_invalidatedRange>();
}

void WRPageLayoutManager::didLoad() {
    if (Class* languages = classNamed("WRLanguage"); languages && !PBSystemLanguage)
        PBSystemLanguage = send<id>(languages, "systemLanguage"_sel);
}

NSString* WRPageLayoutManager::languageForAttributes(NSDictionary* attributes) {
    return languageOfAttributes(attributes);
}

void WRPageLayoutManager::textStorage_edited_range_changeInLength_invalidatedRange(
    NSTextStorage* storage, unsigned mask, NSRange newRange, NSInteger delta, NSRange invalidatedRange) {
    NSLayoutManager::textStorage_edited_range_changeInLength_invalidatedRange(storage, mask, newRange, delta,
                                                                              invalidatedRange);
    if (!_didEdit) return;
    // What was fixed around the edit looks different, too.
    const NSRange range = NSUnionRange(newRange, invalidatedRange);
    _didEdit(range, delta);
}

}  // namespace pelvor
