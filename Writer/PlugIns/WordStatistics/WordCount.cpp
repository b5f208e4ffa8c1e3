// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/WordStatistics/WordCount.h"

#include <algorithm>

#include "Foundation/NSCharacterSet.h"

namespace pelvor {

constexpr std::size_t kShortestTelling = 4;

std::vector<std::u16string> WordCount::mostFrequent(std::size_t count) const {
    using Entry = std::pair<std::u16string_view, std::size_t>;
    std::vector<Entry> entries;
    for (const auto& [word, times] : timesOfWord)
        if (word.size() >= kShortestTelling) entries.emplace_back(word, times);
    count = std::min(count, entries.size());
    std::partial_sort(entries.begin(), entries.begin() + static_cast<std::ptrdiff_t>(count), entries.end(),
                      [](const Entry& a, const Entry& b) {
                          return a.second != b.second ? a.second > b.second : a.first < b.first;
                      });
    std::vector<std::u16string> words;
    for (std::size_t i = 0; i < count; ++i) words.emplace_back(entries[i].first);
    return words;
}

void WordCount::take(std::u16string_view text, NSCharacterSet* letterSet, NSCharacterSet* enders) {
    for (std::size_t i = 0; i < text.size();) {
        std::size_t end = i;
        while (end < text.size() && letterSet->characterIsMember(text[end])) ++end;
        if (end > i) {
            std::u16string word(text.substr(i, end - i));
            ++words;
            letters += word.size();
            if (word.size() > longest.size()) longest = word;
            ++timesOfWord[std::move(word)];
            isInSentence = true;
            i = end;
        } else {
            if (isInSentence && enders->characterIsMember(text[i])) {
                ++sentences;
                isInSentence = false;
            }
            ++i;
        }
    }
}

}  // namespace pelvor
