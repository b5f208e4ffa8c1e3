// SPDX-License-Identifier: Apache-2.0
#include "SpellChecking/Words/WordSet.h"

#include <unicode/ustring.h>

#include <algorithm>
#include <utility>

namespace pelvor {
namespace {

// In the case that `convert` makes. No special rules count, such as those of Turkish.
template <class Convert>
std::u16string converted(std::u16string_view word, Convert convert) {
    std::u16string result(word.size() * 3, 0);  // no letter becomes more than three units
    UErrorCode status = U_ZERO_ERROR;
    const auto length = convert(result.data(), static_cast<int32_t>(result.size()), word.data(),
                                static_cast<int32_t>(word.size()), "", &status);
    result.resize(U_SUCCESS(status) ? static_cast<std::size_t>(length) : 0);
    return result;
}

}  // namespace

void WordSet::add(std::u16string word) {
    _inCapitals.insert(converted(word, u_strToUpper));
    _words.insert(std::move(word));
}

bool WordSet::remove(const std::u16string& word) {
    if (_words.erase(word) == 0) return false;
    const auto capitals = converted(word, u_strToUpper);
    const bool isAnother = std::ranges::any_of(
        _words, [&](const std::u16string& each) { return converted(each, u_strToUpper) == capitals; });
    if (!isAnother) _inCapitals.erase(capitals);
    return true;
}

bool WordSet::covers(std::u16string_view word) const {
    if (_words.empty()) return false;
    if (_words.contains(word)) return true;
    if (!_inCapitals.contains(converted(word, u_strToUpper))) return false;
    if (converted(word, u_strToUpper) == word) return true;
    // The first letter is a capital, and the others are as in the word that is there.
    std::u16string small = converted(word, u_strToLower);
    const std::size_t first = word.size() > 1 && (word[0] & 0xFC00) == 0xD800 ? 2 : 1;
    return small.substr(std::min(first, small.size())) == word.substr(std::min(first, word.size())) &&
           _words.contains(small);
}

}  // namespace pelvor
