// SPDX-License-Identifier: Apache-2.0
// What the spell checker makes on another thread: guesses, and dictionaries in memory.
#include <algorithm>

#include "Foundation/NSArray.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSRunLoop.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"
#include "SpellChecking/Checker/CheckerState.h"
#include "SpellChecking/Words/GuessOrder.h"

namespace pelvor {
namespace {

// The apostrophes of dictionaries differ; those of the guesses are as in the word.
std::vector<std::u16string> guessesBy(Dictionary& dictionary, std::u16string_view word) {
    std::u16string room;
    std::vector<std::u16string> guesses;
    const char16_t apostrophe = hasCurlyApostrophe(word) ? u'\u2019' : u'\'';
    for (const std::u16string& guess : dictionary.guesses(plainWord(word, room))) {
        std::u16string straight;
        std::u16string shown(plainWord(guess, straight));
        std::ranges::replace(shown, u'\'', apostrophe);
        if (std::ranges::find(guesses, shown) == guesses.end()) guesses.push_back(std::move(shown));
    }
    sortGuesses(guesses, word);
    return guesses;
}

NSArray* stringsOf(const std::vector<std::u16string>& texts) {
    auto* strings = NSMutableArray::arrayWithCapacity(static_cast<NSUInteger>(texts.size()));
    for (const std::u16string& text : texts) strings->addObject(NSString::of(text));
    return strings;
}

}  // namespace

NSArray* NSSpellChecker::guessesForWord(NSString* word) {
    requireArgument(word, "guessesForWord:", "the word");
    return guessesForWord_language(word, nullptr);
}

NSArray* NSSpellChecker::guessesForWord_language(NSString* word, NSString* language) {
    requireArgument(word, "guessesForWord:language:", "the word");
    const State::Language* found = _state->languageFor(language);
    if (!found || word->length() > kLongestWord) return NSArray::array();
    const StringUnits units(word);
    return stringsOf(guessesBy(*found->dictionary, units));
}

void NSSpellChecker::requestGuessesForWord_language_target_selector(NSString* word, NSString* language,
                                                                    id target, SEL selector) {
    constexpr const char* kOperation = "requestGuessesForWord:language:target:selector:";
    requireArgument(word, kOperation, "the word");
    requireArgument(target, kOperation, "the target");
    if (!selector) raiseNullArgument(kOperation, "the selector");
    cancelGuessesForTarget(target);
    const auto request = std::make_shared<std::atomic<bool>>(false);
    _state->requests.push_back({request, WeakHandle(target), selector, word->copy()});
    const State::Language* found = _state->languageFor(language);
    auto dictionary = found && word->length() <= kLongestWord ? found->dictionary : nullptr;
    _state->work.add([=, this, units = word->toUTF16()] {
        if (*request) return;
        auto guesses = dictionary ? guessesBy(*dictionary, units) : std::vector<std::u16string>();
        if (*request) return;
        NSRunLoop::mainRunLoop()->perform(
            [this, request, guesses = std::move(guesses)] { _state->deliver(request, guesses); },
            NSArray::of({NSRunLoopCommonModes}));
    });
}

void NSSpellChecker::State::deliver(const std::shared_ptr<std::atomic<bool>>& request,
                                    const std::vector<std::u16string>& guesses) {
    const auto place = std::ranges::find(requests, request, &Request::isCancelled);
    if (place == requests.end()) return;
    const Request answered = std::move(*place);
    requests.erase(place);
    if (const Retained<Object> target = answered.target.object())
        send(target, answered.selector, stringsOf(guesses), answered.word);
}

void NSSpellChecker::cancelGuessesForTarget(id target) {
    std::erase_if(_state->requests, [&](const State::Request& request) {
        const Retained<Object> other = request.target.object();
        const bool isOver = !other || other == target;
        if (isOver) *request.isCancelled = true;
        return isOver;
    });
}

bool NSSpellChecker::prepareLanguage(NSString* name) {
    const State::Language* language = _state->languageFor(name);
    if (!language || language->dictionary->isRead()) return true;
    std::string best = _state->nameFor(name);
    if (!_state->preparing.insert(best).second) return false;
    _state->work.add([this, dictionary = language->dictionary, best = std::move(best)] {
        dictionary->read();
        NSRunLoop::mainRunLoop()->perform(
            [this, best] {
                _state->preparing.erase(best);
                NSNotificationCenter::defaultCenter()->postNotificationName_object(
                    NSSpellCheckerDidPrepareLanguageNotification, NSString::ofUTF8(best));
            },
            NSArray::of({NSRunLoopCommonModes}));
    });
    return false;
}

}  // namespace pelvor
