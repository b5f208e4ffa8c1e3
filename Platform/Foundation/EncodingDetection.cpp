// SPDX-License-Identifier: Apache-2.0
#include "Foundation/EncodingDetection.h"

#include <unicode/ucsdet.h>

#include <algorithm>
#include <memory>

namespace pelvor {
namespace {

constexpr std::size_t kSampleLength = 64 * 1024;

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

}  // namespace

std::vector<EncodingGuess> detectEncodings(std::string_view bytes) {
    if (bytes.empty()) return {};
    bytes = bytes.substr(0, kSampleLength);
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
