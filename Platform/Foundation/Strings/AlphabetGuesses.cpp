// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Strings/AlphabetGuesses.h"

#include <unicode/uchar.h>
#include <unicode/ulocdata.h>
#include <unicode/uscript.h>
#include <unicode/uset.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>

namespace pelvor {
namespace {

struct EncodingLanguages {
    const char* encoding;
    std::string_view languages;  // parted by spaces
};

// The more usual one first.
constexpr EncodingLanguages kEncodings[] = {
    {"windows-1252", "fr de es it pt nl sv da nb fi is ga af sq eu ca gl"},
    {"windows-1251", "ru uk bg sr mk be"},
    {"windows-1250", "pl cs sk hu ro hr sl"},
    {"windows-1253", "el"},
    {"windows-1254", "tr"},
    {"windows-1255", "he"},
    {"windows-1256", "ar fa ur"},
    {"windows-1257", "lt lv et"},
    {"windows-1258", "vi"},
    {"windows-874", "th"},
    {"shift_jis", "ja"},
    {"euc-jp", "ja"},
    {"gb18030", "zh"},
    {"big5-hkscs", "zh_Hant"},
    {"euc-kr", "ko"},
    {"windows-949", "ko"},
    {"koi8-r", "ru bg"},
    {"koi8-u", "uk"},
    {"iso-8859-15", "fr de fi et"},
    {"iso-8859-2", "pl cs sk hu ro hr sl"},
    {"iso-8859-3", "mt eo"},
    {"iso-8859-4", "lt lv et"},
    {"iso-8859-5", "ru uk bg sr mk be"},
    {"iso-8859-6", "ar"},
    {"iso-8859-7", "el"},
    {"iso-8859-8", "he"},
    {"iso-8859-9", "tr"},
    {"iso-8859-13", "lt lv et"},
    {"ibm866", "ru be bg"},
    {"ibm850", "fr de es it pt nl sv da nb fi is"},
    {"ibm437", "fr de es it sv fi"},
    {"ibm852", "pl cs sk hu ro hr sl"},
    {"ibm857", "tr"},
    {"ibm775", "lt lv et"},
    {"ibm737", "el"},
    {"ibm862", "he"},
    {"macintosh", "fr de es it pt nl sv da nb fi is"},
    {"x-mac-cyrillic", "ru uk bg sr mk be"},
    {"x-mac-centraleurroman", "pl cs sk hu lt lv et"},
    {"x-mac-greek", "el"},
    {"x-mac-turkish", "tr"},
    {"euc-tw", "zh_Hant"},
};

struct SetCloser {
    void operator()(USet* set) const { uset_close(set); }
};
using Alphabet = std::unique_ptr<USet, SetCloser>;

Alphabet makeAlphabet(std::string_view language) {
    UErrorCode error = U_ZERO_ERROR;
    ULocaleData* locale = ulocdata_open(std::string(language).c_str(), &error);
    Alphabet letters(
        ulocdata_getExemplarSet(locale, nullptr, USET_ADD_CASE_MAPPINGS, ULOCDATA_ES_STANDARD, &error));
    ulocdata_close(locale);
    if (!letters) letters.reset(uset_openEmpty());
    uset_freeze(letters.get());
    return letters;
}

template <class Function>
void forEachLanguage(std::string_view languages, const Function& function) {
    while (!languages.empty()) {
        const std::size_t end = std::min(languages.find(' '), languages.size());
        function(languages.substr(0, end));
        languages.remove_prefix(std::min(end + 1, languages.size()));
    }
}

const USet* alphabetOf(std::string_view language) {
    static const std::map<std::string_view, Alphabet> alphabets = [] {
        std::map<std::string_view, Alphabet> made;
        for (const EncodingLanguages& row : kEncodings)
            forEachLanguage(row.languages, [&](std::string_view name) {
                if (!made.contains(name)) made.emplace(name, makeAlphabet(name));
            });
        return made;
    }();
    return alphabets.at(language).get();
}

bool isNoText(UChar32 c) {
    const auto type = u_charType(c);
    return type == U_CONTROL_CHAR || type == U_UNASSIGNED || type == U_PRIVATE_USE_CHAR ||
           type == U_SURROGATE;
}

// The accents that are encoded apart from their letters, as in Vietnamese.
bool isAccent(UChar32 c) { return c >= 0x300 && c < 0x370; }
bool isLetter(UChar32 c) { return u_isalpha(c) || (U_GET_GC_MASK(c) & U_GC_M_MASK); }

// Signs that are seldom in texts, but often where text is read in the wrong encoding.
bool isRareSign(UChar32 c) {
    const std::uint32_t type = U_GET_GC_MASK(c);
    return type & (U_GC_SO_MASK | U_GC_SM_MASK | U_GC_SK_MASK | U_GC_NO_MASK) || c == 0xB6 || c == 0x2020 ||
           c == 0x2021;
}

bool joinsWords(UChar32 c) {
    constexpr UChar32 kJoiners[] = {0xA0, 0xAD, 0xB7, 0x200C, 0x200D, 0x2013, 0x2014, 0x2019};
    return std::find(std::begin(kJoiners), std::end(kJoiners), c) != std::end(kJoiners);
}

bool isOfTwoScripts(UChar32 a, UChar32 b) {
    UErrorCode error = U_ZERO_ERROR;
    const UScriptCode x = uscript_getScript(a, &error), y = uscript_getScript(b, &error);
    auto isAlphabetic = [](UScriptCode script) {
        return script == USCRIPT_LATIN || script == USCRIPT_CYRILLIC || script == USCRIPT_GREEK;
    };
    return x != y && (isAlphabetic(x) || isAlphabetic(y)) && x != USCRIPT_INHERITED && y != USCRIPT_INHERITED;
}

// The forms that Greek and Hebrew letters have at the ends of words alone.
bool endsWord(UChar32 c) {
    constexpr UChar32 kFinalForms[] = {0x3C2, 0x5DA, 0x5DD, 0x5DF, 0x5E3, 0x5E5};
    return std::find(std::begin(kFinalForms), std::end(kFinalForms), c) != std::end(kFinalForms);
}

// The characters beyond ASCII in a text.
struct Tally {
    std::map<UChar32, int> letters;
    int characters = 0;
    int letterCount = 0;
    int faults = 0;

    explicit Tally(std::u16string_view text) {
        constexpr int kWeightOfNoText = 4;
        std::u32string points = U" ";
        for (std::size_t i = 0; i < text.size();) {
            UChar32 c;
            U16_NEXT(text, i, text.size(), c);
            points += static_cast<char32_t>(c);
        }
        points += U' ';
        for (std::size_t i = 1; i + 1 < points.size(); ++i) {
            const auto last = static_cast<UChar32>(points[i - 1]), c = static_cast<UChar32>(points[i]),
                       next = static_cast<UChar32>(points[i + 1]);
            if (c < 0x80 && last < 0x80) continue;
            if (u_isalpha(c) && u_isalpha(last))
                faults += (u_isupper(c) && u_islower(last)) + isOfTwoScripts(c, last) + endsWord(last);
            if (c < 0x80) continue;
            ++characters;
            if (isLetter(c) && !isAccent(c)) {
                ++letters[c];
                ++letterCount;
            } else if (isNoText(c)) {
                faults += kWeightOfNoText;
            } else {
                const bool isInWord = u_isalpha(last) && u_isalpha(next) && !joinsWords(c) && !isAccent(c);
                faults += isRareSign(c) || isInWord;
            }
        }
    }
};

// The result is a number from 0 to 1.
double fitOf(const Tally& tally, const USet* alphabet) {
    int fitting = tally.characters - tally.letterCount - tally.faults;
    for (auto [letter, count] : tally.letters)
        if (uset_contains(alphabet, letter)) fitting += count;
    return std::max(0.0, static_cast<double>(fitting) / tally.characters);
}

}  // namespace

std::vector<EncodingGuess> guessByAlphabets(std::string_view bytes) {
    const auto isBeyondASCII = [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; };
    const auto count = static_cast<double>(std::count_if(bytes.begin(), bytes.end(), isBeyondASCII));
    std::vector<EncodingGuess> guesses;
    for (const EncodingLanguages& row : kEncodings) {
        const NSStringEncoding encoding = encodingForName(row.encoding);
        std::u16string text;
        if (!TextDecoder(encoding).decode(bytes, text)) continue;
        const Tally tally(text);
        if (tally.characters == 0) continue;
        EncodingGuess best{encoding, -1, ""};
        forEachLanguage(row.languages, [&](std::string_view language) {
            // A few characters fit many languages.
            const double fit = fitOf(tally, alphabetOf(language)) * count / (count + 2);
            const auto confidence = static_cast<int>(100 * fit);
            if (confidence > best.confidence)
                best = {encoding, confidence, std::string(language.substr(0, 2))};
        });
        if (best.confidence > 0) guesses.push_back(std::move(best));
    }
    return guesses;
}

}  // namespace pelvor
