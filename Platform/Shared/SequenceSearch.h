// SPDX-License-Identifier: Apache-2.0
// What searches of bytes and of units fall back on, so that no text makes them slow.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace pelvor {

/// Counts what a search by candidates compares in vain. Once that outgrows what has been passed, the search
/// does better to go on with a table.
class SearchEffort {
  public:
    explicit SearchEffort(std::size_t patternSize) : _step(patternSize) {}
    bool exceeds(std::size_t passed) {
        _spent += _step;
        return _spent > 8 * passed + 4096;
    }

  private:
    std::size_t _step;
    std::size_t _spent = 0;
};

/// Where the pattern, which is not empty, first stands at or after `from`; the greatest number for nowhere.
/// Knuth, Morris and Pratt: looks at nothing twice.
template <class Sequence>
std::size_t findWithTable(Sequence text, Sequence pattern, std::size_t from) {
    std::vector<std::uint32_t> border(pattern.size() + 1, 0);
    for (std::size_t i = 1, k = 0; i < pattern.size(); ++i) {
        while (k && pattern[i] != pattern[k]) k = border[k];
        if (pattern[i] == pattern[k]) ++k;
        border[i + 1] = static_cast<std::uint32_t>(k);
    }
    std::size_t matched = 0;
    for (std::size_t i = from; i < text.size(); ++i) {
        while (matched && text[i] != pattern[matched]) matched = border[matched];
        if (text[i] == pattern[matched]) ++matched;
        if (matched == pattern.size()) return i + 1 - matched;
    }
    return SIZE_MAX;
}

}  // namespace pelvor
