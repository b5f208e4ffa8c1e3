// SPDX-License-Identifier: Apache-2.0
// DictionaryScope: a machine with a test's own dictionaries and no others.
#pragma once

#include <algorithm>
#include <string>
#include <utility>

#include "EnvironmentScope.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSString.h"
#include "SpellChecking/NSSpellChecker.h"
#include "TemporaryFolder.h"

namespace pelvor {

/// The strings with commas between.
inline std::string listed(NSArray* strings) { return strings->componentsJoinedByString(u", "_ns)->toUTF8(); }

/// The environment of the shared spell checker.
struct DictionaryScope {
    DictionaryScope() = default;
    /// With that dictionary.
    DictionaryScope(const std::string& name, const std::string& words) { add(name, words); }

    TemporaryFolder folder;
    EnvironmentScope language{"LANGUAGE", "en_GB"}, locale{"LC_ALL", "en_GB.UTF-8"};
    EnvironmentScope data{"XDG_DATA_HOME", folder.path("home").c_str()};
    EnvironmentScope shared{"XDG_DATA_DIRS", folder.path("usr").c_str()};
    EnvironmentScope path{"DICPATH", nullptr};

    /// Writes the two files of a dictionary into the folder for all users; `words` are lines.
    void add(const std::string& name, const std::string& words, const std::string& affixes = "SET UTF-8\n") {
        const auto count = std::count(words.begin(), words.end(), '\n');
        folder.write("usr/hunspell/" + name + ".dic", std::to_string(count) + "\n" + words);
        folder.write("usr/hunspell/" + name + ".aff", affixes);
    }

    /// The shared one, which has looked at the folders when it was first asked for.
    NSSpellChecker* checker() {
        NSSpellChecker* checker = NSSpellChecker::sharedSpellChecker();
        if (!std::exchange(_isSeen, true)) checker->availableLanguages();
        return checker;
    }
    /// The misspelled words of the text, each behind a blank.
    std::string wrongIn(NSString* text, NSString* language = nullptr, int tag = 0) {
        std::string words;
        for (NSRange range : checker()->misspelledRanges(text, {0, text->length()}, language, tag))
            words += " " + text->substringWithRange(range)->toUTF8();
        return words;
    }

  private:
    bool _isSeen = false;
};

}  // namespace pelvor
