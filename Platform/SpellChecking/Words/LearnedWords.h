// SPDX-License-Identifier: Apache-2.0
// LearnedWords: the words that the user has taught one dictionary, and their file.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "SpellChecking/Words/WordSet.h"

namespace pelvor {

/// A file of lines: words in UTF-8, comments that begin with "#", and whatever else somebody has written
/// there. Lines that are no words stay as they are. A change of the words reads the file again, so that words
/// of other programs stay, and puts a whole new file in its place. One thread.
class LearnedWords {
  public:
    /// Reads the file if there is one; a line of the log says if it cannot be read.
    explicit LearnedWords(std::string path);

    const WordSet& words() const { return _words; }
    // These operations take words in the form of `plainWord`. They return false, with the reason in `errno`,
    // if the file cannot be written; the change then counts for this object only.
    bool learn(const std::u16string& word);
    bool unlearn(const std::u16string& word);

    /// The path of a dictionary's file.
    static std::string pathFor(const std::string& dictionary);

  private:
    bool read();
    bool write();

    std::string _path;
    std::vector<std::string> _lines;
    WordSet _words;
    WordSet _unwritten;  // words that no file has taken yet
};

/// Returns the word in a line of the file, in the form of `plainWord`; empty for a line without a word.
std::u16string wordInLine(std::string_view line);

}  // namespace pelvor
