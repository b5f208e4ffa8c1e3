// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/WordStatistics/WRWordStatistics.h"

#include <algorithm>

#include "Foundation/LocalizedNumbers.h"
#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSString.h"
#include "Foundation/NSUserDefaults.h"
#include "PBUtil.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"
#include "Writer/PlugIns/WordStatistics/WordCount.h"
#include "Writer/PlugIns/WordStatistics/WordStatisticsPlugIn.h"

namespace pelvor {
namespace {

constexpr std::size_t kWordsAMinute = 220;

NSCharacterSet* theSentenceEnders = nullptr;
std::size_t theFrequentWordCount = 0;

NSString* joined(const std::vector<std::u16string>& words) {
    std::u16string text;
    for (const std::u16string& word : words) {
        if (!text.empty()) text += u", ";
        text += word;
    }
    return NSString::of(text);
}

}  // namespace

PELVOR_DEFINE_CLASS(WRWordStatistics, wordStatisticsPlugIn) {
    methods.classLevel<"didLoad", &WRWordStatistics::didLoad>();
    methods.classLevel<"activateToolkit", &WRWordStatistics::activateToolkit>();
    methods.instance<"examineDocument:", &WRWordStatistics::examineDocument>();
}

void WRWordStatistics::didLoad() {
    theSentenceEnders = NSCharacterSet::initWithCharactersInString(u".!?…"_ns).leak();
}

void WRWordStatistics::activateToolkit() {
    const NSInteger wanted = NSUserDefaults::standardUserDefaults()->integerForKey(u"WRFrequentWordCount"_ns);
    theFrequentWordCount = wanted > 0 ? static_cast<std::size_t>(std::min(wanted, 100)) : 5;
}

NSDictionary* WRWordStatistics::examineDocument(id document) {
    auto* found = NSMutableDictionary::dictionary();
    if (!theSentenceEnders) return found;
    WordCount count;
    const auto paragraphs = send<NSUInteger>(document, "paragraphCount"_sel);
    for (NSUInteger i = 0; i < paragraphs; ++i) {
        AutoreleasePool pool;
        auto* paragraph = send<NSString*>(document, "paragraphAtIndex:"_sel, i);
        StringUnits units(paragraph->lowercaseString());
        count.take(units, _pbLettersCharacterSet, theSentenceEnders);
    }
    auto add = [&](NSString* key, id value) { found->setObject_forKey(value, _PBDoLocalize(key, this)); };
    auto number = [](std::size_t value) { return NSNumber::numberWithUnsignedLong(value); };
    add(u"_Sentences"_ns, number(count.sentences));
    add(u"_Different words"_ns, number(count.timesOfWord.size()));
    if (count.words == 0) return found;
    const double letters = static_cast<double>(count.letters) / static_cast<double>(count.words);
    add(u"_Letters in a word"_ns, localizedNumber(NSString::stringWithFormat(u"%.1f"_ns, letters)));
    add(u"_Longest word"_ns, NSString::of(count.longest));
    add(u"_Most frequent words"_ns, joined(count.mostFrequent(theFrequentWordCount)));
    add(u"_Minutes of reading"_ns, number((count.words + kWordsAMinute - 1) / kWordsAMinute));
    return found;
}

}  // namespace pelvor
