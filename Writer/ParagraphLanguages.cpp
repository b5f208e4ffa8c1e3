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
constexpr NSUInteger kClear = 80;     // units that tell a language although more is going to be written
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

// Null if the text does not tell.
WRLanguage* ParagraphLanguages::languageToldBy(NSAttributedString* text, NSRange range) {
    NSString* start = text->string()->substringWithRange({range.location, std::min(range.length, kEnough)});
    return WRLanguage::languageWithIdentifier(send<NSString*>(_finder.get(), "languageOfText:"_sel, start));
}

WRLanguage* ParagraphLanguages::languageOf(NSMutableAttributedString* text, NSRange paragraph) {
    WRLanguage* own = languageAt(text, paragraph.location, nullptr);
    return own ? own : languageToldBy(text, paragraph);
}

WRLanguage* ParagraphLanguages::languageOfWritten(NSAttributedString* text, NSRange contents,
                                                  bool isFinished) {
    if (!_finder || contents.length == 0 || (!isFinished && contents.length < kClear)) return nullptr;
    WRLanguage* language = languageToldBy(text, contents);
    if (!isFinished) {
        const NSUInteger half = std::min(contents.length, kEnough) / 2;
        if (languageToldBy(text, {contents.location, half}) != language ||
            languageToldBy(text, {contents.location + half, half}) != language)
            return nullptr;
    }
    return language || !isFinished ? language : languageBefore(text, contents.location);
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
