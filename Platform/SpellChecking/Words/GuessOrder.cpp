// SPDX-License-Identifier: Apache-2.0
#include "SpellChecking/Words/GuessOrder.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>

#include <algorithm>

namespace pelvor {
namespace {

enum class Kind { sameLetters, sameLettersInOtherCase, exchangedLetters, other };

std::u16string inSmallLetters(std::u16string_view word) {
    std::u16string small(word.size() * 3, 0);  // no letter becomes more than three units
    UErrorCode status = U_ZERO_ERROR;
    const auto length = u_strFoldCase(small.data(), static_cast<int32_t>(small.size()), word.data(),
                                      static_cast<int32_t>(word.size()), U_FOLD_CASE_DEFAULT, &status);
    small.resize(U_SUCCESS(status) ? static_cast<std::size_t>(length) : 0);
    return small;
}

// Without accents and apostrophes.
std::u16string lettersAlone(std::u16string_view word) {
    std::u16string letters(word.size() * 4, 0);  // no character becomes more than four units
    UErrorCode status = U_ZERO_ERROR;
    const auto length =
        unorm2_normalize(unorm2_getNFDInstance(&status), word.data(), static_cast<int32_t>(word.size()),
                         letters.data(), static_cast<int32_t>(letters.size()), &status);
    letters.resize(U_SUCCESS(status) ? static_cast<std::size_t>(length) : 0);
    std::erase_if(letters, [](char16_t unit) {
        return unit == u'\'' || unit == u'\u2019' || u_charType(unit) == U_NON_SPACING_MARK;
    });
    return letters;
}

bool isExchanged(std::u16string_view one, std::u16string_view other) {
    const auto [first, second] = std::ranges::mismatch(one, other);
    if (one.size() != other.size() || one.end() - first < 2) return false;
    return first[0] == second[1] && first[1] == second[0] && std::equal(first + 2, one.end(), second + 2);
}

Kind kindOf(std::u16string_view guess, std::u16string_view word) {
    const std::u16string small = inSmallLetters(word), smallGuess = inSmallLetters(guess);
    if (lettersAlone(small) == lettersAlone(smallGuess))
        return bool(u_isupper(guess[0])) == bool(u_isupper(word[0])) ? Kind::sameLetters
                                                                     : Kind::sameLettersInOtherCase;
    return isExchanged(small, smallGuess) ? Kind::exchangedLetters : Kind::other;
}

}  // namespace

void sortGuesses(std::vector<std::u16string>& guesses, std::u16string_view word) {
    if (word.empty()) return;
    const auto isHyphen = [](char16_t unit) { return unit == u'-'; };
    std::erase_if(guesses, [&](const std::u16string& guess) {
        return guess.empty() || (isHyphen(guess.front()) && !isHyphen(word.front())) ||
               (isHyphen(guess.back()) && !isHyphen(word.back()));
    });
    std::ranges::stable_sort(guesses, {},
                             [word](const std::u16string& guess) { return kindOf(guess, word); });
}

}  // namespace pelvor
