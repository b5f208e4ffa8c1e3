// SPDX-License-Identifier: Apache-2.0
// The text that the windows of TypingBenchmark show, and where they stand.
#pragma once

#include <string>
#include <string_view>

namespace pelvor {

constexpr int kWindowLeft = 100, kWindowTop = 100, kWindowWidth = 800, kWindowHeight = 600;

/// English words in paragraphs of 550 letters.
inline std::string sampleText(std::size_t size) {
    constexpr std::string_view kWords[] = {"the ",  "quick ", "brown ", "fox ", "jumps ",
                                           "over ", "a ",     "lazy ",  "dog "};
    std::string text;
    for (std::size_t i = 0, line = 0; text.size() < size; ++i) {
        text += kWords[i * i % std::size(kWords)];
        if (text.size() - line < 550) continue;
        text.back() = '\n';
        line = text.size();
    }
    return text;
}

}  // namespace pelvor
