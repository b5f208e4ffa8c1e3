// SPDX-License-Identifier: Apache-2.0
#include "Writer/Pages/TextLanguage.h"

#include "Foundation/NSMutableDictionary.h"
#include "NSAttributedString-PelvorAdditions.h"
#include "Runtime/Message.h"
#include "Runtime/Registry.h"
#include "Text/TextAttributes.h"

namespace pelvor {

NSString* languageOfAttributes(NSDictionary* attributes) {
    if (auto* name = attributes ? cast<NSString>(attributes->objectForKey(NSLanguageAttributeName)) : nullptr)
        return name;
    id language = PBEffectiveLanguageForAttributes(attributes);
    const SEL identifier = "identifier"_sel;
    return language && language->respondsToSelector(identifier) ? send<NSString*>(language, identifier)
                                                                : nullptr;
}

// For the layout the name, and for words the object of Writer's class, which programs without Writer lack.
NSDictionary* attributesOfLanguage(NSString* name) {
    auto* attributes = NSMutableDictionary::dictionaryWithObject_forKey(name, NSLanguageAttributeName);
    if (Class* languages = classNamed("WRLanguage"))
        attributes->setObject_forKey(send<id>(languages, "languageWithIdentifier:"_sel, name),
                                     PBLanguageAttributeName);
    return attributes;
}

NSString* languageInText(NSAttributedString* text, NSUInteger index, NSRange* stretch, NSRange limit) {
    NSRange run;
    NSString* name = languageOfAttributes(text->attributesAtIndex_effectiveRange(index, &run));
    if (!stretch) return name;
    *stretch = NSIntersectionRange(run, limit);
    while (NSMaxRange(*stretch) < NSMaxRange(limit)) {
        NSString* next =
            languageOfAttributes(text->attributesAtIndex_effectiveRange(NSMaxRange(*stretch), &run));
        if (next != name && !(next && name && next->isEqualToString(name))) break;
        stretch->length = std::min(NSMaxRange(run), NSMaxRange(limit)) - stretch->location;
    }
    return name;
}

}  // namespace pelvor
