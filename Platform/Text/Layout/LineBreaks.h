// SPDX-License-Identifier: Apache-2.0
// Where lines may end, where carets may stand, and where words may be divided.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Foundation/NSRange.h"

struct UBreakIterator;

namespace pelvor {

/// Finds the boundaries of one thread's texts, by ICU and by the languages' hyphenation patterns.
class Boundaries {
  public:
    Boundaries() = default;
    Boundaries(const Boundaries&) = delete;
    Boundaries& operator=(const Boundaries&) = delete;
    ~Boundaries();

    /// Adds `mark` to the mark of each unit before which a line may begin. The language, a BCP 47 name or
    /// empty, chooses the rules.
    void markLineBreaks(std::u16string_view text, const std::string& language, std::uint8_t mark,
                        std::span<std::uint8_t> marks);

    /// The nearest place at or before `unit`, or behind it, where what the user sees as one character begins;
    /// `unit` itself at the ends of the text.
    NSUInteger characterStart(std::u16string_view text, NSUInteger unit);
    NSUInteger characterEnd(std::u16string_view text, NSUInteger unit);

    /// Where the word may be divided, as ascending numbers of its units; nowhere if the language has no
    /// patterns, or if they are still being read and `waitsForPatterns` is false.
    std::vector<std::uint32_t> hyphenationPoints(std::u16string_view word, const std::string& language);

    /// Whether to wait while the patterns of a language are read for the first time. Otherwise another thread
    /// reads them, and the main thread posts NSHyphenationPatternsDidLoadNotification afterwards.
    bool waitsForPatterns = true;

  private:
    UBreakIterator* lineIterator(const std::string& language);
    UBreakIterator* characterIterator(std::u16string_view text);

    std::unordered_map<std::string, UBreakIterator*> _lineIterators;
    UBreakIterator* _characterIterator = nullptr;
};

}  // namespace pelvor
