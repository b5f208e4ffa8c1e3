// SPDX-License-Identifier: Apache-2.0
// WordSet: words that count as right whatever the dictionary says.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>

namespace pelvor {

/// Words in the form of `plainWord` (SpelledWords.h), in alphabetical order. One thread.
class WordSet {
  public:
    void add(std::u16string word);
    /// Returns false if the word is not there.
    bool remove(const std::u16string& word);
    bool contains(std::u16string_view word) const { return _words.contains(word); }
    /// Whether the set contains the word; or a word whose form in capitals it is; or a word in small letters
    /// whose form with a first capital it is.
    bool covers(std::u16string_view word) const;

    bool isEmpty() const { return _words.empty(); }
    auto begin() const { return _words.begin(); }
    auto end() const { return _words.end(); }

  private:
    std::set<std::u16string, std::less<>> _words;
    std::set<std::u16string, std::less<>> _inCapitals;
};

}  // namespace pelvor
