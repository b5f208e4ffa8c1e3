// SPDX-License-Identifier: Apache-2.0
// Counts the words of a text.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace pelvor {

class NSCharacterSet;

/// What is known about the words of a text, which may come in pieces. Words are runs of letters, as they are,
/// so the text is lower-case.
struct WordCount {
    std::size_t words = 0;
    std::size_t letters = 0;
    std::size_t sentences = 0;
    std::u16string longest;
    std::unordered_map<std::u16string, std::size_t> timesOfWord;
    bool isInSentence = false;  ///< at the end of the last piece

    /// Counts the next piece. A sentence ends where a member of `enders` follows a word.
    void take(std::u16string_view text, NSCharacterSet* letters, NSCharacterSet* enders);
    /// The words of at least four letters that occur most often, the most frequent first, equally frequent
    /// ones by their units.
    std::vector<std::u16string> mostFrequent(std::size_t count) const;
};

}  // namespace pelvor
