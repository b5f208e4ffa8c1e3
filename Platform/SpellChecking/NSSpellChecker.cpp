// SPDX-License-Identifier: Apache-2.0
#include "SpellChecking/NSSpellChecker.h"

#include <unicode/uldnames.h>

#include <algorithm>
#include <cerrno>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSString.h"
#include "Foundation/UserLanguages.h"
#include "Runtime/AutoreleasePool.h"
#include "Shared/ArgumentChecks.h"
#include "SpellChecking/Checker/CheckerState.h"
#include "SpellChecking/SpellCheckingLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSSpellChecker, spellCheckingLibrary) {
    methods.classLevel<"sharedSpellChecker", &NSSpellChecker::sharedSpellChecker>();
    methods.instance<"availableLanguages", &NSSpellChecker::availableLanguages>();
    methods.instance<"language", &NSSpellChecker::language>();
    methods.instance<"setLanguage:", &NSSpellChecker::setLanguage>();
    methods.instance<"availableLanguageForName:", &NSSpellChecker::availableLanguageForName>();
    methods.instance<"localizedNameForLanguage:", &NSSpellChecker::localizedNameForLanguage>();
    methods.instance<"prepareLanguage:", &NSSpellChecker::prepareLanguage>();
    methods
        .instance<"checkSpellingOfString:startingAt:", &NSSpellChecker::checkSpellingOfString_startingAt>();
    methods.instance<
        "checkSpellingOfString:startingAt:language:wrap:inSpellDocumentWithTag:wordCount:",
        &NSSpellChecker::checkSpellingOfString_startingAt_language_wrap_inSpellDocumentWithTag_wordCount>();
    methods.instance<"countWordsInString:language:", &NSSpellChecker::countWordsInString_language>();
    methods.instance<"guessesForWord:", &NSSpellChecker::guessesForWord>();
    methods.instance<"guessesForWord:language:", &NSSpellChecker::guessesForWord_language>();
    methods.instance<"requestGuessesForWord:language:target:selector:",
                     &NSSpellChecker::requestGuessesForWord_language_target_selector>();
    methods.instance<"cancelGuessesForTarget:", &NSSpellChecker::cancelGuessesForTarget>();
    methods.instance<"learnWord:", &NSSpellChecker::learnWord>();
    methods.instance<"learnWord:language:", &NSSpellChecker::learnWord_language>();
    methods.instance<"hasLearnedWord:", &NSSpellChecker::hasLearnedWord>();
    methods.instance<"hasLearnedWord:language:", &NSSpellChecker::hasLearnedWord_language>();
    methods.instance<"unlearnWord:", &NSSpellChecker::unlearnWord>();
    methods.instance<"unlearnWord:language:", &NSSpellChecker::unlearnWord_language>();
    methods.classLevel<"uniqueSpellDocumentTag", &NSSpellChecker::uniqueSpellDocumentTag>();
    methods.instance<"closeSpellDocumentWithTag:", &NSSpellChecker::closeSpellDocumentWithTag>();
    methods
        .instance<"ignoreWord:inSpellDocumentWithTag:", &NSSpellChecker::ignoreWord_inSpellDocumentWithTag>();
    methods.instance<"isIgnoredWord:inSpellDocumentWithTag:",
                     &NSSpellChecker::isIgnoredWord_inSpellDocumentWithTag>();
    methods.instance<"unignoreWord:inSpellDocumentWithTag:",
                     &NSSpellChecker::unignoreWord_inSpellDocumentWithTag>();
    methods.instance<"ignoredWordsInSpellDocumentWithTag:",
                     &NSSpellChecker::ignoredWordsInSpellDocumentWithTag>();
    methods.instance<"setIgnoredWords:inSpellDocumentWithTag:",
                     &NSSpellChecker::setIgnoredWords_inSpellDocumentWithTag>();
}

constinit NSString* const NSSpellCheckerDidPrepareLanguageNotification =
    u"NSSpellCheckerDidPrepareLanguageNotification"_ns;

namespace {

std::u16string plainForm(NSString* word) {
    StringUnits units(word);
    std::u16string room;
    return std::u16string(plainWord(units, room));
}

}  // namespace

NSSpellChecker::NSSpellChecker() : _state(std::make_unique<State>()) {}
NSSpellChecker::~NSSpellChecker() = default;

NSSpellChecker* NSSpellChecker::sharedSpellChecker() {
    static NSSpellChecker* const shared = make<NSSpellChecker>().leak();
    return shared;
}

// MARK: Languages

NSSpellChecker::State::Language::Language(std::shared_ptr<Dictionary> itsDictionary)
    : dictionary(std::move(itsDictionary)),
      learned(LearnedWords::pathFor(dictionary->files().ownName)),
      scripts(dictionary->files().name),
      boundaries(TextBoundaries::Kind::Word, NSString::ofUTF8(dictionary->files().name)) {}

std::string NSSpellChecker::State::nameFor(NSString* language) {
    if (!shelf.isFilled()) shelf.all();
    if (language) return shelf.bestName(language->toUTF8());
    if (auto name = shelf.bestName(chosen); !name.empty()) return name;  // it may have gone
    AutoreleasePool pool;
    for (id wanted : userLanguages())
        if (auto name = shelf.bestName(cast<NSString>(wanted)->toUTF8()); !name.empty()) return name;
    return shelf.all().empty() ? std::string() : shelf.all().front().name;
}

NSSpellChecker::State::Language* NSSpellChecker::State::languageFor(NSString* language) {
    const std::u16string key = language ? language->toUTF16() : std::u16string();
    if (const auto known = languages.find(key); known != languages.end()) return known->second;
    const auto dictionary = shelf.dictionary(nameFor(language));
    if (!dictionary) return languages[key] = nullptr;
    auto& found = opened[dictionary.get()];
    if (!found) found = std::make_unique<Language>(dictionary);
    return languages[key] = found.get();
}

TextBoundaries& NSSpellChecker::State::boundariesFor(Language* language) {
    return language ? language->boundaries : commonBoundaries;
}

void NSSpellChecker::State::refresh() {
    shelf.all();
    languages.clear();
}

NSArray* NSSpellChecker::availableLanguages() {
    auto* names = NSMutableArray::array();
    _state->refresh();
    for (const DictionaryFiles& files : _state->shelf.all()) names->addObject(NSString::ofUTF8(files.name));
    return names;
}

NSString* NSSpellChecker::language() {
    const std::string name = _state->nameFor(nullptr);
    return name.empty() ? nullptr : NSString::ofUTF8(name);
}

bool NSSpellChecker::setLanguage(NSString* name) {
    requireArgument(name, "setLanguage:", "the name");
    _state->refresh();
    std::string chosen = _state->nameFor(name);
    if (chosen.empty()) return false;
    _state->chosen = std::move(chosen);
    return true;
}

NSString* NSSpellChecker::availableLanguageForName(NSString* name) {
    requireArgument(name, "availableLanguageForName:", "the name");
    const std::string best = _state->nameFor(name);
    return best.empty() ? nullptr : NSString::ofUTF8(best);
}

NSString* NSSpellChecker::localizedNameForLanguage(NSString* name) {
    requireArgument(name, "localizedNameForLanguage:", "the name");
    if (name->length() == 0) return name;
    UDisplayContext contexts[] = {UDISPCTX_STANDARD_NAMES, UDISPCTX_CAPITALIZATION_FOR_UI_LIST_OR_MENU};
    UErrorCode status = U_ZERO_ERROR;
    const char* reader = cast<NSString>(userLanguages()->objectAtIndex(0))->UTF8String();
    ULocaleDisplayNames* names = uldn_openForContext(reader, contexts, 2, &status);
    char16_t text[256];
    const auto length = uldn_localeDisplayName(names, name->UTF8String(), text, 256, &status);
    uldn_close(names);
    return U_SUCCESS(status) && length > 0
               ? NSString::of({text, static_cast<std::size_t>(std::min(length, 256))})
               : name;
}

// MARK: Checking

struct NSSpellChecker::Rules {
    State::Language* language = nullptr;
    const WordSet* ignored = nullptr;

    // The word is plain.
    bool isKnown(std::u16string_view word) const {
        return language->dictionary->isCorrect(word) || isTaught(word);
    }
    bool isTaught(std::u16string_view word) const {
        return language->learned.words().covers(word) || (ignored && ignored->covers(word));
    }
    bool isMisspelled(NSString* text, NSRange word) const;
    bool isRightInItsPlace(NSString* text, NSRange range, std::u16string_view word) const;
};

NSSpellChecker::Rules NSSpellChecker::rulesFor(NSString* language, int tag) {
    const auto ignored = _state->ignored.find(tag);
    return {_state->languageFor(language), ignored == _state->ignored.end() ? nullptr : &ignored->second};
}

bool NSSpellChecker::Rules::isMisspelled(NSString* text, NSRange range) const {
    if (range.length > kLongestWord) return false;
    StringUnits units(text, range);
    std::u16string room;
    const std::u16string_view word = plainWord(units, room);
    return !isKnown(word) && !isUnspelledWord(word) && language->scripts.haveLetterOf(word) &&
           !isRightInItsPlace(text, range, word);
}

bool NSSpellChecker::Rules::isRightInItsPlace(NSString* text, NSRange range, std::u16string_view word) const {
    const NSUInteger end = NSMaxRange(range);
    if (end < text->length() && text->characterAtIndex(end) == u'.' && isKnown(std::u16string(word) + u'.'))
        return true;
    if (word.ends_with(u"'s")) {
        const std::u16string_view stem = word.substr(0, word.size() - 2);
        if (isTaught(stem) || !language->scripts.haveLetterOf(stem)) return true;
    }
    if (word.find(u'\'') != word.npos) {  // the dictionary itself may have curly ones
        std::u16string curly(word);
        std::ranges::replace(curly, u'\'', u'\u2019');
        if (isKnown(curly)) return true;
    }
    const NSRange whole = joinedWordAround(text, range);
    if (whole.length > range.length) {
        StringUnits units(text, whole);
        std::u16string room;
        if (isKnown(plainWord(units, room))) return true;
    }
    const StringUnits stretch(text, stretchAround(text, range));
    return isAddress(stretch);
}

NSRange NSSpellChecker::checkSpellingOfString_startingAt(NSString* string, NSUInteger start) {
    requireArgument(string, "checkSpellingOfString:startingAt:", "the string");
    requirePlace(start, string->length(), "checkSpellingOfString:startingAt:");
    return checkSpellingOfString_startingAt_language_wrap_inSpellDocumentWithTag_wordCount(
        string, start, nullptr, true, 0, nullptr);
}

NSRange NSSpellChecker::checkSpellingOfString_startingAt_language_wrap_inSpellDocumentWithTag_wordCount(
    NSString* string, NSUInteger start, NSString* language, bool wrap, int tag, NSInteger* wordCount) {
    constexpr const char* kOperation =
        "checkSpellingOfString:startingAt:language:wrap:inSpellDocumentWithTag:wordCount:";
    requireArgument(string, kOperation, "the string");
    requirePlace(start, string->length(), kOperation);
    const Rules rules = rulesFor(language, tag);
    NSInteger count = 0;
    NSRange found{NSNotFound, 0};
    const auto search = [&](NSUInteger from, NSUInteger end) {
        WordWalk walk(_state->boundariesFor(rules.language), string, from);
        for (NSRange word; found.length == 0 && walk.next(word) && word.location < end; ++count)
            if (rules.language && rules.isMisspelled(string, word)) found = word;
    };
    search(start, string->length());
    if (found.length == 0 && wrap) search(0, start);
    if (wordCount) *wordCount = count;
    return found;
}

std::vector<NSRange> NSSpellChecker::misspelledRanges(NSString* string, NSRange range, NSString* language,
                                                      int tag) {
    requireArgument(string, "misspelledRanges", "the string");
    requireRange(range, string->length(), "misspelledRanges");
    std::vector<NSRange> ranges;
    const Rules rules = rulesFor(language, tag);
    if (!rules.language) return ranges;
    WordWalk walk(_state->boundariesFor(rules.language), string, range.location);
    for (NSRange word; walk.next(word) && word.location < NSMaxRange(range);)
        if (rules.isMisspelled(string, word)) ranges.push_back(word);
    return ranges;
}

NSInteger NSSpellChecker::countWordsInString_language(NSString* string, NSString* language) {
    requireArgument(string, "countWordsInString:language:", "the string");
    NSInteger count = 0;
    WordWalk walk(_state->boundariesFor(_state->languageFor(language)), string, 0);
    for (NSRange word; walk.next(word);) ++count;
    return count;
}

// MARK: Learned words

bool NSSpellChecker::learnWord(NSString* word) { return learnWord_language(word, nullptr); }
bool NSSpellChecker::hasLearnedWord(NSString* word) { return hasLearnedWord_language(word, nullptr); }
bool NSSpellChecker::unlearnWord(NSString* word) { return unlearnWord_language(word, nullptr); }

bool NSSpellChecker::learnWord_language(NSString* word, NSString* language) {
    requireArgument(word, "learnWord:language:", "the word");
    const std::u16string plain = plainForm(word);
    if (plain.empty() || plain.find_first_of(u"\n\r\u2028\u2029") != plain.npos)
        raiseBadArgument("learnWord:language:", "the word is empty or has more than one line");
    State::Language* found = _state->languageFor(language);
    errno = ENOENT;
    return found && found->learned.learn(plain);
}

bool NSSpellChecker::hasLearnedWord_language(NSString* word, NSString* language) {
    requireArgument(word, "hasLearnedWord:language:", "the word");
    State::Language* found = _state->languageFor(language);
    return found && found->learned.words().contains(plainForm(word));
}

bool NSSpellChecker::unlearnWord_language(NSString* word, NSString* language) {
    requireArgument(word, "unlearnWord:language:", "the word");
    State::Language* found = _state->languageFor(language);
    errno = ENOENT;
    return found && found->learned.unlearn(plainForm(word));
}

// MARK: Documents

int NSSpellChecker::uniqueSpellDocumentTag() {
    static int last = 0;
    return ++last;
}

void NSSpellChecker::closeSpellDocumentWithTag(int tag) { _state->ignored.erase(tag); }

void NSSpellChecker::ignoreWord_inSpellDocumentWithTag(NSString* word, int tag) {
    requireArgument(word, "ignoreWord:inSpellDocumentWithTag:", "the word");
    if (tag != 0) _state->ignored[tag].add(plainForm(word));
}

bool NSSpellChecker::isIgnoredWord_inSpellDocumentWithTag(NSString* word, int tag) {
    requireArgument(word, "isIgnoredWord:inSpellDocumentWithTag:", "the word");
    const auto place = _state->ignored.find(tag);
    return place != _state->ignored.end() && place->second.contains(plainForm(word));
}

bool NSSpellChecker::unignoreWord_inSpellDocumentWithTag(NSString* word, int tag) {
    requireArgument(word, "unignoreWord:inSpellDocumentWithTag:", "the word");
    const auto place = _state->ignored.find(tag);
    return place != _state->ignored.end() && place->second.remove(plainForm(word));
}

NSArray* NSSpellChecker::ignoredWordsInSpellDocumentWithTag(int tag) {
    auto* words = NSMutableArray::array();
    if (const auto place = _state->ignored.find(tag); place != _state->ignored.end())
        for (const std::u16string& word : place->second) words->addObject(NSString::of(word));
    return words;
}

void NSSpellChecker::setIgnoredWords_inSpellDocumentWithTag(NSArray* words, int tag) {
    _state->ignored.erase(tag);
    for (NSUInteger i = 0; words && i < words->count(); ++i) {
        auto* word = cast<NSString>(words->objectAtIndex(i));
        if (!word)
            raiseBadArgument("setIgnoredWords:inSpellDocumentWithTag:",
                             "an object among the words is no string");
        ignoreWord_inSpellDocumentWithTag(word, tag);
    }
}

}  // namespace pelvor
