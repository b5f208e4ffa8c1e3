// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/LanguageFinder/WRLanguageFinder.h"

#include <algorithm>
#include <unordered_map>
#include <vector>

#include "Foundation/NSArray.h"
#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSString.h"
#include "PBProfileKeys.h"
#include "PBRegistry.h"
#include "PBUtil.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"
#include "Writer/PlugIns/LanguageFinder/LanguageFinderPlugIn.h"

namespace pelvor {
namespace {

// Words are looked up without being copied.
struct WordHash {
    using is_transparent = void;
    std::size_t operator()(std::u16string_view word) const { return std::hash<std::u16string_view>()(word); }
};

struct Language {
    PBProfile* profile;
    NSUInteger paragraphCount = 0;
};

bool goesBefore(const Language& a, const Language& b) {
    return send<int>(a.profile->valueForKey(PBProfilePaletteOrderKey), "intValue"_sel) <
           send<int>(b.profile->valueForKey(PBProfilePaletteOrderKey), "intValue"_sel);
}

}  // namespace

// The registered languages, and for each of their common words the languages that have it.
class LanguageTable {
  public:
    LanguageTable() {
        NSArray* profiles = PBRegistry::sharedRegistry()->profilesOfType(PBProfileLanguageType)->profiles();
        for (id profile : profiles) _languages.push_back({static_cast<PBProfile*>(profile)});
        std::sort(_languages.begin(), _languages.end(), goesBefore);
        for (std::size_t i = 0; i < _languages.size(); ++i)
            for (id word : cast<NSArray>(_languages[i].profile->valueForKey(u"common words"_ns)))
                if (auto* text = cast<NSString>(word)) {
                    _words[text->toUTF16()].push_back(i);
                    _longest = std::max<std::size_t>(_longest, text->length());
                }
    }

    /// Counts the paragraph for its language. Returns null if no language has more of the words than every
    /// other.
    Language* take(NSString* text) {
        StringUnits paragraph(text->lowercaseString());
        return take(std::u16string_view(paragraph));
    }

    const std::vector<Language>& languages() const { return _languages; }

  private:
    Language* take(std::u16string_view paragraph) {
        std::vector<unsigned> votes(_languages.size());
        const std::uint8_t* letters = _pbLettersCharacterSet->basicPlaneBitmap();
        const auto isLetter = [letters](char16_t unit) { return letters[unit >> 3] >> (unit & 7) & 1; };
        for (std::size_t i = 0; i < paragraph.size();) {
            std::size_t end = i;
            while (end < paragraph.size() && isLetter(paragraph[end])) ++end;
            if (end > i) vote(paragraph.substr(i, end - i), votes);
            i = end + 1;
        }
        const auto best = std::max_element(votes.begin(), votes.end());
        if (best == votes.end() || *best == 0 || std::count(votes.begin(), votes.end(), *best) > 1)
            return nullptr;
        Language& language = _languages[static_cast<std::size_t>(best - votes.begin())];
        ++language.paragraphCount;
        return &language;
    }

    void vote(std::u16string_view word, std::vector<unsigned>& votes) {
        if (word.size() > _longest) return;
        const auto found = _words.find(word);
        if (found == _words.end()) return;
        for (std::size_t language : found->second) ++votes[language];
    }

    std::vector<Language> _languages;
    std::unordered_map<std::u16string, std::vector<std::size_t>, WordHash, std::equal_to<>> _words;
    std::size_t _longest = 0;  // of these words
};

PELVOR_DEFINE_CLASS(WRLanguageFinder, languageFinderPlugIn) {
    methods.instance<"languageOfText:", &WRLanguageFinder::languageOfText>();
    methods.instance<"examineDocument:", &WRLanguageFinder::examineDocument>();
}

WRLanguageFinder::WRLanguageFinder() = default;
WRLanguageFinder::~WRLanguageFinder() = default;

NSString* WRLanguageFinder::languageOfText(NSString* text) {
    if (!_table) _table = std::make_unique<LanguageTable>();
    Language* language = _table->take(text);
    return language ? cast<NSString>(language->profile->valueForKey(u"code"_ns)) : nullptr;
}

NSDictionary* WRLanguageFinder::examineDocument(id document) {
    LanguageTable table;
    NSUInteger undecided = 0;
    const auto count = send<NSUInteger>(document, "paragraphCount"_sel);
    for (NSUInteger i = 0; i < count; ++i) {
        AutoreleasePool pool;
        auto* paragraph = send<NSString*>(document, "paragraphAtIndex:"_sel, i);
        if (!table.take(paragraph)) ++undecided;
    }
    auto* found = NSMutableDictionary::dictionary();
    auto add = [&](NSUInteger number, NSString* name) {
        if (number) found->setObject_forKey(NSNumber::numberWithUnsignedInt(number), name);
    };
    for (const Language& language : table.languages()) {
        auto* name = cast<NSString>(language.profile->valueForKey(PBProfileNameKey));
        if (name) add(language.paragraphCount, language.profile->localize(name));
    }
    add(undecided, _PBDoLocalize(u"_Undecided"_ns, this));
    return found;
}

}  // namespace pelvor
