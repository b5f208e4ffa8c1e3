// SPDX-License-Identifier: Apache-2.0
// Which guesses a reader sees first.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace pelvor {

/// Sorts the guesses for a word as NSSpellChecker.h tells. Takes out parts of words, "-haus", which
/// dictionaries of languages with compounds guess.
void sortGuesses(std::vector<std::u16string>& guesses, std::u16string_view word);

}  // namespace pelvor
