// SPDX-License-Identifier: Apache-2.0
#include "Writer/ParagraphLanguages.h"

#include <algorithm>

#include "Foundation/NSArray.h"
#include "PBProfileKeys.h"
#include "PBProfileSet.h"
#include "Runtime/AutoreleasePool.h"
#include "Writer/PlugInObjects.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/TextMeasure.h"
#include "Writer/WRLanguage.h"

namespace pelvor {
namespace {

constexpr NSUInteger kEnough = 4096;  // units that tell a language

}  // namespace

ParagraphLanguages::ParagraphLanguages(PBProfileSet* profiles) {
    for (id profile : profiles->profilesOfType(PBProfileDocumentServiceType)->profiles()) {
        Class* cls = static_cast<PBProfile*>(profile)->profileClass();
        if (_finder || !cls || !cls->instancesRespondTo("languageOfText:"_sel)) continue;
        _finder = makePlugInObject(static_cast<PBProfile*>(profile));
    }
}

NSUInteger ParagraphLanguages::addTo(NSMutableAttributedString* text, NSRange range) {
    if (!_finder) return text->length();
    TextParagraph paragraph;
    paragraph.end = range.location;
    text->beginEditing();
    while (paragraph.end < NSMaxRange(range) && nextParagraph(text->string(), paragraph)) {
        AutoreleasePool pool;
        const NSRange contents{paragraph.start, paragraph.contentsEnd - paragraph.start};
        if (contents.length == 0 ||
            text->attribute_atIndex_effectiveRange(WRLanguageAttributeKey, contents.location, nullptr))
            continue;
        NSString* start =
            text->string()->substringWithRange({contents.location, std::min(contents.length, kEnough)});
        auto* name = send<NSString*>(_finder.get(), "languageOfText:"_sel, start);
        if (WRLanguage* language = WRLanguage::languageWithIdentifier(name))
            text->addAttribute_value_range(WRLanguageAttributeKey, language, contents);
    }
    text->endEditing();
    return paragraph.end;
}

}  // namespace pelvor
