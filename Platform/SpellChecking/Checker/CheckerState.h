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

/// For the main thread, except for the dictionaries and the functions that are given to `work`.
struct NSSpellChecker::State {
    /// A dictionary in use.
    struct Language {
        explicit Language(std::shared_ptr<Dictionary> itsDictionary);

        std::shared_ptr<Dictionary> dictionary;
        LearnedWords learned;
        LanguageScripts scripts;
        TextBoundaries boundaries;
    };

    /// Guesses that nobody has received yet.
    struct Request {
        std::shared_ptr<std::atomic<bool>> isCancelled;
        WeakHandle target;
        SEL selector;
        Retained<NSString> word;
    };

    /// The name of the dictionary for a language; null stands for the user's language. Empty if the language
    /// has no dictionary.
    std::string nameFor(NSString* language);
    /// The language with its dictionary; null if it has no dictionary. Takes what `nameFor` takes.
    Language* languageFor(NSString* language);
    /// Finds words by the rules of the language, or by the common rules if it is null.
    TextBoundaries& boundariesFor(Language* language);
    /// Looks through the folders again if they have changed.
    void refresh();

    /// Sends the guesses to the target of the request, unless that was cancelled.
    void deliver(const std::shared_ptr<std::atomic<bool>>& request,
                 const std::vector<std::u16string>& guesses);

    DictionaryShelf shelf;
    std::string chosen;  // the name that was given to `setLanguage`; empty at first
    // From the names that callers use; null for a name without a dictionary.
    std::map<std::u16string, Language*, std::less<>> languages;
    std::map<const Dictionary*, std::unique_ptr<Language>> opened;
    std::map<int, WordSet> ignored;  // from the numbers of documents
    TextBoundaries commonBoundaries{TextBoundaries::Kind::Word, nullptr};
    std::vector<Request> requests;
    std::set<std::string> preparing;  // names that `prepareLanguage` will announce
    BackgroundWork work;
};

}  // namespace pelvor
