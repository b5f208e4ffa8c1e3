// SPDX-License-Identifier: Apache-2.0
// What the spell checker keeps.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "Foundation/NSString.h"
#include "Runtime/WeakHandle.h"
#include "SpellChecking/Checker/BackgroundWork.h"
#include "SpellChecking/Dictionaries/DictionaryShelf.h"
#include "SpellChecking/NSSpellChecker.h"
#include "SpellChecking/Words/LearnedWords.h"
#include "SpellChecking/Words/SpelledWords.h"

namespace pelvor {

/// Main thread, but for the dictionaries and what background work has.
struct NSSpellChecker::State {
    /// A dictionary in use.
    struct Language {
        explicit Language(std::shared_ptr<Dictionary> itsDictionary);

        std::shared_ptr<Dictionary> dictionary;
        LearnedWords learned;
        TextBoundaries boundaries;
    };

    /// Guesses that nobody has received yet.
    struct Request {
        std::shared_ptr<std::atomic<bool>> isCancelled;
        WeakHandle target;
        SEL selector;
        Retained<NSString> word;
    };

    /// The name of the dictionary for a language, null for the current one; empty if there is none.
    std::string nameFor(NSString* language);
    /// The same for the dictionary itself; null if there is none.
    Language* languageFor(NSString* language);
    /// What finds words in that language, which may be null.
    TextBoundaries& boundariesFor(Language* language);
    /// Looks through the folders again if they have changed.
    void refresh();

    void deliver(const std::shared_ptr<std::atomic<bool>>& request,
                 const std::vector<std::u16string>& guesses);

    DictionaryShelf shelf;
    std::string chosen;  // by `setLanguage`
    // By the names that callers use; null for names without a dictionary.
    std::map<std::u16string, Language*, std::less<>> languages;
    std::map<const Dictionary*, std::unique_ptr<Language>> opened;
    std::map<int, WordSet> ignored;  // by document
    TextBoundaries commonBoundaries{TextBoundaries::Kind::Word, nullptr};
    std::vector<Request> requests;
    std::set<std::string> preparing;  // names that `prepareLanguage` will announce
    BackgroundWork work;
};

}  // namespace pelvor
