// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/TextFiles/TextFileDecoding.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "Foundation/NSStringEncoding.h"

namespace pelvor {
namespace {

constexpr std::size_t kSampleLength = 4096;

struct EncodingGuess {
    NSStringEncoding encoding;
    const char* name;
    std::string_view mark;
};

// The mark of UTF-32 little-endian begins with that of UTF-16, so it is looked for first.
constexpr std::array<EncodingGuess, 5> kMarkedEncodings{{
    {NSUTF8StringEncoding, "UTF-8", {"\xEF\xBB\xBF", 3}},
    {NSUTF32LittleEndianStringEncoding, "UTF-32LE", {"\xFF\xFE\0\0", 4}},
    {NSUTF32BigEndianStringEncoding, "UTF-32BE", {"\0\0\xFE\xFF", 4}},
    {NSUTF16LittleEndianStringEncoding, "UTF-16LE", {"\xFF\xFE", 2}},
    {NSUTF16BigEndianStringEncoding, "UTF-16BE", {"\xFE\xFF", 2}},
}};

const EncodingGuess* markedEncoding(std::string_view bytes) {
    for (const EncodingGuess& guess : kMarkedEncodings)
        if (bytes.starts_with(guess.mark)) return &guess;
    return nullptr;
}

// The mark of this encoding at the front; those without a byte order take the marks of both.
std::string_view markOf(NSStringEncoding encoding, std::string_view bytes) {
    for (const EncodingGuess& marked : kMarkedEncodings) {
        const std::string_view name = marked.name;
        const bool isMeant = marked.encoding == encoding ||
                             (encoding == NSUTF16StringEncoding && name.starts_with("UTF-16")) ||
                             (encoding == NSUTF32StringEncoding && name.starts_with("UTF-32"));
        if (isMeant && bytes.starts_with(marked.mark)) return marked.mark;
    }
    return {};
}

// How many zeros stand at each place of the groups of four bytes at the front.
struct ZeroCounts {
    std::array<std::size_t, 4> at{};
    std::size_t groups;

    explicit ZeroCounts(std::string_view bytes) : groups(std::min(bytes.size(), kSampleLength) / 4) {
        for (std::size_t i = 0; i < groups * 4; ++i)
            if (bytes[i] == '\0') ++at[i % 4];
    }
    std::size_t even() const { return at[0] + at[2]; }
    std::size_t odd() const { return at[1] + at[3]; }
};

// What the zeros at the front allow. Text of any script has a zero in the highest byte of each UTF-32 character;
// in UTF-16, spaces, digits and line ends alone make zeros frequent in one half of the units and rare in the
// other. Bytes that are no text pass now and then, but do not decode.
std::vector<EncodingGuess> encodingsByZeros(std::string_view bytes) {
    const ZeroCounts zeros(bytes);
    std::vector<EncodingGuess> guesses;
    if (zeros.groups == 0 || bytes.size() % 2 != 0) return guesses;
    if (bytes.size() % 4 == 0 && zeros.at[3] == zeros.groups)
        guesses.push_back({NSUTF32LittleEndianStringEncoding, "UTF-32LE", {}});
    if (bytes.size() % 4 == 0 && zeros.at[0] == zeros.groups)
        guesses.push_back({NSUTF32BigEndianStringEncoding, "UTF-32BE", {}});
    if (zeros.odd() * 10 >= zeros.groups && zeros.even() * 20 <= zeros.odd())
        guesses.push_back({NSUTF16LittleEndianStringEncoding, "UTF-16LE", {}});
    if (zeros.even() * 10 >= zeros.groups && zeros.odd() * 20 <= zeros.even())
        guesses.push_back({NSUTF16BigEndianStringEncoding, "UTF-16BE", {}});
    return guesses;
}

bool isUnusualControl(char16_t unit) {
    constexpr char16_t kEscape = 0x1B;
    return (unit < 0x20 && !(unit >= u'\t' && unit <= u'\r') && unit != kEscape) || unit == 0x7F;
}

// Text has no zeros, and hardly any controls but those that lay lines out.
bool looksLikeText(std::u16string_view units) {
    if (units.find(u'\0') != units.npos) return false;
    const auto sample = units.substr(0, kSampleLength);
    const auto controls = std::count_if(sample.begin(), sample.end(), isUnusualControl);
    return static_cast<std::size_t>(controls) * 32 <= sample.size();
}

std::optional<TextFileContent> decodedAs(const EncodingGuess& guess, std::string_view bytes) {
    auto text = decodeBytes(bytes.substr(guess.mark.size()), guess.encoding);
    if (!text || !looksLikeText(*text)) return std::nullopt;
    return TextFileContent{TextFileFault::none, *std::move(text), guess.name, !guess.mark.empty()};
}

TextFileContent decodeByGuess(std::string_view bytes) {
    if (const EncodingGuess* marked = markedEncoding(bytes))
        if (auto content = decodedAs(*marked, bytes)) return *std::move(content);
    for (const EncodingGuess& guess : encodingsByZeros(bytes))
        if (auto content = decodedAs(guess, bytes)) return *std::move(content);
    if (auto content = decodedAs({NSUTF8StringEncoding, "UTF-8", {}}, bytes)) return *std::move(content);
    if (auto content = decodedAs({NSWindowsCP1252StringEncoding, "windows-1252", {}}, bytes))
        return *std::move(content);
    return {TextFileFault::notText, {}, {}, false};
}

}  // namespace

TextFileContent decodeTextFile(std::string_view bytes, std::string_view encodingName) {
    if (encodingName.empty()) return decodeByGuess(bytes);
    const NSStringEncoding encoding = encodingForName(encodingName);
    if (encoding == 0) return {TextFileFault::unknownEncoding, {}, {}, false};
    const std::string_view mark = markOf(encoding, bytes);
    // Without the mark the order of bytes would be lost; with it, text in a named order begins with U+FEFF.
    auto text = decodeBytes(bytes, encoding);
    if (!text) return {TextFileFault::undecodable, {}, {}, false};
    if (!mark.empty() && text->starts_with(u'\uFEFF')) text->erase(0, 1);
    return {TextFileFault::none, *std::move(text), std::string(encodingName), !mark.empty()};
}

}  // namespace pelvor
