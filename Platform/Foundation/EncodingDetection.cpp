// SPDX-License-Identifier: Apache-2.0
#include "Foundation/EncodingDetection.h"

#include <unicode/ucsdet.h>

#include <algorithm>
#include <map>
#include <memory>
#include <utility>

#include "Foundation/Strings/AlphabetGuesses.h"
#include "Foundation/Strings/WideTextGuess.h"

namespace pelvor {
namespace {

constexpr std::size_t kSampleLength = 16 * 1024;
constexpr int kConfidenceOfUTF8 = 25;  // ICU's, where there are characters beyond ASCII

// The mark of UTF-32 little-endian begins with that of UTF-16, so it stands first.
constexpr EncodingMark kMarks[] = {
    {NSUTF8StringEncoding, {"\xEF\xBB\xBF", 3}},
    {NSUTF32LittleEndianStringEncoding, {"\xFF\xFE\0\0", 4}},
    {NSUTF32BigEndianStringEncoding, {"\0\0\xFE\xFF", 4}},
    {NSUTF16LittleEndianStringEncoding, {"\xFF\xFE", 2}},
    {NSUTF16BigEndianStringEncoding, {"\xFE\xFF", 2}},
};

// ICU adds the direction of right-to-left text to some names: "IBM420_rtl".
std::string_view withoutDirection(std::string_view name) {
    const bool hasDirection = name.ends_with("_rtl") || name.ends_with("_ltr");
    return hasDirection ? name.substr(0, name.size() - 4) : name;
}

EncodingGuess guessOf(const UCharsetMatch* match) {
    UErrorCode error = U_ZERO_ERROR;
    const char* name = ucsdet_getName(match, &error);
    const char* language = ucsdet_getLanguage(match, &error);
    return {encodingForName(withoutDirection(name ? name : "")), ucsdet_getConfidence(match, &error),
            language ? language : ""};
}

bool isValid(std::string_view bytes, NSStringEncoding encoding) {
    std::u16string units;
    return TextDecoder(encoding).decode(bytes, units);
}

// The guesses of ICU, the most confident first.
std::vector<EncodingGuess> guessByStatistics(std::string_view bytes) {
    UErrorCode error = U_ZERO_ERROR;
    std::unique_ptr<UCharsetDetector, void (*)(UCharsetDetector*)> detector(ucsdet_open(&error),
                                                                            &ucsdet_close);
    ucsdet_setText(detector.get(), bytes.data(), static_cast<int32_t>(bytes.size()), &error);
    int32_t count = 0;
    const UCharsetMatch** matches = ucsdet_detectAll(detector.get(), &count, &error);
    std::vector<EncodingGuess> guesses;
    for (int32_t i = 0; U_SUCCESS(error) && i < count; ++i) {
        EncodingGuess guess = guessOf(matches[i]);
        auto isSame = [&](const EncodingGuess& other) { return other.encoding == guess.encoding; };
        if (std::none_of(guesses.begin(), guesses.end(), isSame) && isValid(bytes, guess.encoding))
            guesses.push_back(std::move(guess));
    }
    return guesses;
}

// ICU tells an encoding of Windows from its ISO kin by the few characters that only the former has.
NSStringEncoding isoKinOf(NSStringEncoding encoding) {
    static const std::map<NSStringEncoding, NSStringEncoding> kin{
        {encodingForName("windows-1250"), encodingForName("iso-8859-2")},
        {encodingForName("windows-1252"), encodingForName("iso-8859-1")},
        {encodingForName("windows-1253"), encodingForName("iso-8859-7")},
        {encodingForName("windows-1254"), encodingForName("iso-8859-9")},
        {encodingForName("windows-1255"), encodingForName("iso-8859-8")}};
    const auto found = kin.find(encoding);
    return found == kin.end() ? encoding : found->second;
}

int confidenceIn(const std::vector<EncodingGuess>& guesses, NSStringEncoding encoding) {
    const NSStringEncoding isoKin = isoKinOf(encoding);
    for (const EncodingGuess& guess : guesses)
        if (guess.encoding == encoding || guess.encoding == isoKin) return guess.confidence;
    return 0;
}

bool has(const std::vector<EncodingGuess>& guesses, NSStringEncoding encoding) {
    return std::any_of(guesses.begin(), guesses.end(),
                       [&](const EncodingGuess& guess) { return guess.encoding == encoding; });
}

// ICU recognises these encodings by the pairs of bytes that they allow, which tell more than their thousands
// of letters.
bool isOfSeveralBytes(NSStringEncoding encoding) {
    static const NSStringEncoding encodings[] = {encodingForName("shift_jis"), encodingForName("euc-jp"),
                                                 encodingForName("euc-kr"), encodingForName("gb18030")};
    return std::find(std::begin(encodings), std::end(encodings), encoding) != std::end(encodings);
}

// Alphabets tell more encodings than ICU, and tell them better. Where several fit, its statistics decide;
// what alphabets do not know, such as encodings by escapes, goes last.
std::vector<EncodingGuess> joined(std::vector<EncodingGuess> byAlphabets,
                                  std::vector<EncodingGuess> byStatistics) {
    for (EncodingGuess& guess : byAlphabets)
        if (isOfSeveralBytes(guess.encoding))
            guess.confidence = std::max(guess.confidence, confidenceIn(byStatistics, guess.encoding));
    std::stable_sort(
        byAlphabets.begin(), byAlphabets.end(), [&](const EncodingGuess& a, const EncodingGuess& b) {
            if (a.confidence != b.confidence) return a.confidence > b.confidence;
            return confidenceIn(byStatistics, a.encoding) > confidenceIn(byStatistics, b.encoding);
        });
    for (EncodingGuess& guess : byStatistics)
        if (!has(byAlphabets, guess.encoding)) byAlphabets.push_back(std::move(guess));
    return byAlphabets;
}

}  // namespace

std::vector<EncodingGuess> detectEncodings(std::string_view bytes) {
    if (bytes.empty()) return {};
    bytes = bytes.substr(0, kSampleLength);
    std::vector<EncodingGuess> guesses = guessByStatistics(bytes);
    const auto mark = encodingMarkOf(bytes);
    if (mark && has(guesses, mark->encoding)) return guesses;
    // Without a mark, ICU takes bytes with zeros here and there for wide text.
    std::erase_if(guesses, [](const EncodingGuess& guess) {
        return !markOfEncoding(guess.encoding).empty() && guess.encoding != NSUTF8StringEncoding;
    });
    if (auto wide = guessWideText(bytes)) {
        guesses.insert(guesses.begin(), *wide);
        return guesses;
    }
    if (confidenceIn(guesses, NSUTF8StringEncoding) >= kConfidenceOfUTF8) return guesses;
    return joined(guessByAlphabets(bytes), std::move(guesses));
}

std::optional<EncodingMark> encodingMarkOf(std::string_view bytes) {
    for (const EncodingMark& mark : kMarks)
        if (bytes.starts_with(mark.bytes)) return mark;
    return std::nullopt;
}

std::string_view markOfEncoding(NSStringEncoding encoding) {
    if (encoding == NSUnicodeStringEncoding) encoding = NSUTF16LittleEndianStringEncoding;
    if (encoding == NSUTF32StringEncoding) encoding = NSUTF32LittleEndianStringEncoding;
    for (const EncodingMark& mark : kMarks)
        if (mark.encoding == encoding) return mark.bytes;
    return {};
}

}  // namespace pelvor
