// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Strings/WideTextGuess.h"

#include <unicode/uchar.h>
#include <unicode/uscript.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <map>
#include <string>

namespace pelvor {
namespace {

bool isLayout(char32_t c) { return (c >= '\t' && c <= '\r') || c == 0x1B; }

// Whether the bytes are UTF-8 with few controls. Zeros here and there do not make them UTF-16, in which at
// least two bytes of five are zeros where the others are all below 0x80.
bool isTextByteByByte(std::string_view bytes) {
    const auto zeros = static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), '\0'));
    const auto controls = static_cast<std::size_t>(std::count_if(bytes.begin(), bytes.end(), [](char byte) {
        const auto value = static_cast<unsigned char>(byte);
        return value != 0 && value < 0x20 && !isLayout(value);
    }));
    std::u16string units;
    return zeros * 5 < bytes.size() * 2 && controls * 32 <= bytes.size() &&
           TextDecoder(NSUTF8StringEncoding).decode(bytes, units);
}

bool isOdd(UChar32 c) {
    switch (u_charType(c)) {
        case U_CONTROL_CHAR:
            return !isLayout(static_cast<char32_t>(c));
        case U_UNASSIGNED:
        case U_PRIVATE_USE_CHAR:
        case U_SURROGATE:
            return true;
        default:
            return false;
    }
}

// What texts of every script, or of Chinese and Japanese, have often.
bool isCommon(UChar32 c) {
    return (c >= ' ' && c <= '~') || c == '\n' || c == '\r' || c == '\t' || (c >= 0x3000 && c <= 0x30FF) ||
           (c >= 0xFF01 && c <= 0xFF1F);
}

// Chinese characters and the Japanese syllables count as one script.
UScriptCode scriptOf(UChar32 c) {
    UErrorCode error = U_ZERO_ERROR;
    const UScriptCode script = uscript_getScript(c, &error);
    return script == USCRIPT_HIRAGANA || script == USCRIPT_KATAKANA || script == USCRIPT_BOPOMOFO
               ? USCRIPT_HAN
               : script;
}

struct WideText {
    std::size_t characters = 0, odd = 0, common = 0, letters = 0;
    std::map<UScriptCode, std::size_t> lettersOfScript;

    explicit WideText(std::u16string_view units) {
        for (std::size_t i = 0; i < units.size(); ++characters) {
            UChar32 c;
            U16_NEXT(units, i, units.size(), c);
            odd += isOdd(c) && i < units.size();  // the last character may be cut
            common += isCommon(c);
            const UScriptCode script = scriptOf(c);
            if (script == USCRIPT_COMMON || script == USCRIPT_INHERITED || script == USCRIPT_UNKNOWN)
                continue;
            ++letters;
            ++lettersOfScript[script];
        }
    }
    // Latin letters stand in texts of every script.
    std::size_t strayLetters() const {
        std::size_t latin = 0, most = 0;
        for (const auto& [script, count] : lettersOfScript)
            if (script == USCRIPT_LATIN)
                latin = count;
            else
                most = std::max(most, count);
        return letters - latin - most;
    }
    bool isLikely() const {
        return characters > 1 && odd * 100 <= characters && strayLetters() * 20 <= letters;
    }
};

}  // namespace

std::optional<EncodingGuess> guessWideText(std::string_view bytes) {
    constexpr NSStringEncoding kEncodings[] = {
        NSUTF32LittleEndianStringEncoding, NSUTF32BigEndianStringEncoding, NSUTF16LittleEndianStringEncoding,
        NSUTF16BigEndianStringEncoding};
    if (isTextByteByByte(bytes)) return std::nullopt;
    std::optional<EncodingGuess> guess;
    std::size_t mostCommon = 0;
    for (const NSStringEncoding encoding : kEncodings) {
        const std::size_t size =
            encoding == NSUTF16LittleEndianStringEncoding || encoding == NSUTF16BigEndianStringEncoding ? 2
                                                                                                        : 4;
        std::u16string units;
        if (!TextDecoder(encoding).decode(bytes.substr(0, bytes.size() / size * size), units)) continue;
        const WideText text(units);
        // Hardly anything but text is valid UTF-32. Other texts pass as UTF-16 now and then, but have no
        // spaces.
        const bool isShown = size == 4 || text.common * 50 >= text.characters;
        if (!text.isLikely() || !isShown || (guess && text.common <= mostCommon)) continue;
        mostCommon = text.common;
        guess = EncodingGuess{encoding, text.characters < 16 ? 60 : 95, ""};
    }
    return guess;
}

}  // namespace pelvor
