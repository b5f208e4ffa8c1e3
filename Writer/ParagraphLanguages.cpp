// SPDX-License-Identifier: Apache-2.0
#include "Writer/ParagraphLanguages.h"

#include <algorithm>
#include <utility>
#include <vector>

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
constexpr NSUInteger kNear = 8192;    // how far away a neighbour is looked for, in units

WRLanguage* languageAt(NSAttributedString* text, NSUInteger unit, NSRange* run) {
    return cast<WRLanguage>(text->attribute_atIndex_effectiveRange(WRLanguageAttributeKey, unit, run));
}

// The language of the last text before the unit that has one.
WRLanguage* languageBefore(NSAttributedString* text, NSUInteger unit) {
    WRLanguage* language = nullptr;
    NSRange run{unit, 0};
    while (!language && run.location > 0 && unit - run.location < kNear)
        language = languageAt(text, run.location - 1, &run);
    return language;
}

}  // namespace

ParagraphLanguages::ParagraphLanguages(PBProfileSet* profiles) {
    for (id profile : profiles->profilesOfType(PBProfileDocumentServiceType)->profiles()) {
        Class* cls = static_cast<PBProfile*>(profile)->profileClass();
        if (_finder || !cls || !cls->instancesRespondTo("languageOfText:"_sel)) continue;
        _finder = makePlugInObject(static_cast<PBProfile*>(profile));
    }
}

// Null if the paragraph does not tell.
WRLanguage* ParagraphLanguages::languageOf(NSMutableAttributedString* text, NSRange paragraph) {
    if (WRLanguage* own = languageAt(text, paragraph.location, nullptr)) return own;
    NSString* start =
        text->string()->substringWithRange({paragraph.location, std::min(paragraph.length, kEnough)});
    return WRLanguage::languageWithIdentifier(send<NSString*>(_finder.get(), "languageOfText:"_sel, start));
}

NSUInteger ParagraphLanguages::addTo(NSMutableAttributedString* text, NSRange range) {
    if (!_finder) return text->length();
    WRLanguage* before = languageBefore(text, range.location);
    std::vector<NSRange> waiting;  // paragraphs for the language of one behind them
    TextParagraph paragraph;
    paragraph.end = range.location;
    const auto isMore = [&] {
        return paragraph.end < NSMaxRange(range) + (waiting.empty() ? 0 : kNear) &&
               nextParagraph(text->string(), paragraph);
    };
    text->beginEditing();
    while (isMore()) {
        AutoreleasePool pool;
        const NSRange contents{paragraph.start, paragraph.contentsEnd - paragraph.start};
        if (contents.length == 0) continue;
        if (WRLanguage* language = languageOf(text, contents)) before = language;
        waiting.push_back(contents);
        if (!before) continue;
        for (const NSRange each : std::exchange(waiting, {}))
            if (!languageAt(text, each.location, nullptr))
                text->addAttribute_value_range(WRLanguageAttributeKey, before, each);
    }
    text->endEditing();
    return paragraph.end;
}

}  // namespace pelvor
