// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/TextFiles/TextFileDecoding.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "Foundation/NSStringEncoding.h"
#include "Writer/PlugIns/TextFiles/TextBlocks.h"

namespace pelvor {
namespace {

constexpr std::size_t kSampleLength = 4096;
constexpr std::size_t kBlockLength = 256 * 1024;  // fits the cache together with its text

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

bool isPrintableASCIIAndZeros(std::string_view bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char byte) {
        return byte == '\0' || (byte >= '\t' && byte <= '\r') || (byte >= ' ' && byte <= '~');
    });
}

// What the zeros at the front allow. Text of any script has a zero in the highest byte of each UTF-32
// character; in UTF-16, spaces, digits and line ends alone make zeros frequent in one half of the units and
// rare in the other. Bytes that are no text pass now and then, but do not decode.
std::vector<EncodingGuess> encodingsByZeros(std::string_view bytes, std::uint64_t length) {
    const ZeroCounts zeros(bytes);
    std::vector<EncodingGuess> guesses;
    if (zeros.groups == 0 || length % 2 != 0) return guesses;
    if (isPrintableASCIIAndZeros(bytes) && zeros.even() + zeros.odd() < 2 * zeros.groups) return guesses;
    if (length % 4 == 0 && zeros.at[3] == zeros.groups)
        guesses.push_back({NSUTF32LittleEndianStringEncoding, "UTF-32LE", {}});
    if (length % 4 == 0 && zeros.at[0] == zeros.groups)
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

// Text has hardly any controls but those that lay lines out.
bool looksLikeText(std::u16string_view units) {
    const auto sample = units.substr(0, kSampleLength);
    const auto controls = std::count_if(sample.begin(), sample.end(), isUnusualControl);
    return static_cast<std::size_t>(controls) * 32 <= sample.size();
}

enum class Trust {
    guessed,  // what does not look like text is not taken for it
    named,
};

constexpr std::uint64_t kLongestCharacter = 4;

// Of those that are decoded in blocks; the numbers of UTF-16 and UTF-32 are the last ones.
std::uint64_t fewestBytesPerUnit(NSStringEncoding encoding) {
    return encoding >= NSUTF32StringEncoding ? 2 : 1;
}

// Bytes are looked through many at a time, units one by one.
bool hasZero(std::string_view bytes, std::u16string_view units, NSStringEncoding encoding) {
    return fewestBytesPerUnit(encoding) == 1 ? bytes.find('\0') != bytes.npos
                                             : units.find(u'\0') != units.npos;
}

// Reads a file once through, in one encoding.
class TextFilePass {
  public:
    TextFilePass(const TextFileSource& source, const TextFileProgress& progress, Trust trust)
        : _source(source), _progress(progress), _trust(trust) {}

    /// From the place on. Whether it is valid in the encoding and, if guessed, looks like text.
    bool decode(NSStringEncoding encoding, std::uint64_t place) {
        const bool isInBlocks = decodesInBlocks(encoding);
        const std::uint64_t length = std::max<std::uint64_t>(_source.length(), place) - place;
        const std::uint64_t blockLength = isInBlocks ? std::min<std::uint64_t>(kBlockLength, length) : length;
        std::string bytes(std::max<std::uint64_t>(blockLength + 1, kLongestCharacter + 1), '\0');
        _text.reserve(isInBlocks ? length / fewestBytesPerUnit(encoding) + 1 : 0);
        for (std::size_t kept = 0;;) {
            const std::ptrdiff_t count = _source.readAt(place, {bytes.data() + kept, bytes.size() - kept});
            if (count < 0 || _text.view().size() >= NSNotFound) return fail(TextFileFault::unreadable);
            place += static_cast<std::uint64_t>(count);
            if (_progress) _progress(place, std::max(place, _source.length()));
            const std::size_t available = kept + static_cast<std::size_t>(count);
            const bool isLast = available < bytes.size();
            if (!isLast && !isInBlocks) {  // the file has grown
                kept = available;
                bytes.resize(2 * bytes.size());
                continue;
            }
            kept = isLast ? 0 : lengthOfCutCharacter(bytes, encoding);
            if (!decodePiece({bytes.data(), available - kept}, encoding))
                return fail(TextFileFault::undecodable);
            if (isLast) break;
            std::copy(bytes.end() - static_cast<std::ptrdiff_t>(kept), bytes.end(), bytes.begin());
        }
        _byteCount = place;
        return true;
    }

    TextFileContent content(std::string encodingName, bool hasMark) {
        if (_fault != TextFileFault::none) return {_fault, {}, {}, false, 0};
        return {_fault, std::move(_text), std::move(encodingName), hasMark, _byteCount};
    }
    TextFileFault fault() const { return _fault; }
    TextUnits& text() { return _text; }

  private:
    bool fail(TextFileFault fault) {
        _fault = fault;
        return false;
    }
    // Text has no zeros.
    bool decodePiece(std::string_view bytes, NSStringEncoding encoding) {
        const std::size_t start = _text.view().size();
        if (!decodeBlock(bytes, encoding, _text)) return false;
        if (_trust == Trust::named) return true;
        const std::u16string_view units = _text.view().substr(start);
        return (start > 0 || looksLikeText(units)) && !hasZero(bytes, units, encoding);
    }

    const TextFileSource& _source;
    const TextFileProgress& _progress;
    Trust _trust;
    TextUnits _text;
    std::uint64_t _byteCount = 0;
    TextFileFault _fault = TextFileFault::none;
};

TextFileContent decodeByGuess(const TextFileSource& source, std::string_view sample,
                              const TextFileProgress& progress) {
    std::vector<EncodingGuess> guesses = encodingsByZeros(sample, source.length());
    if (const EncodingGuess* marked = markedEncoding(sample)) guesses.insert(guesses.begin(), *marked);
    guesses.push_back({NSUTF8StringEncoding, "UTF-8", {}});
    guesses.push_back({NSWindowsCP1252StringEncoding, "windows-1252", {}});
    for (const EncodingGuess& guess : guesses) {
        TextFilePass pass(source, progress, Trust::guessed);
        const bool isDecoded = pass.decode(guess.encoding, guess.mark.size());
        if (isDecoded || pass.fault() == TextFileFault::unreadable)
            return pass.content(guess.name, !guess.mark.empty());
    }
    return {TextFileFault::notText, {}, {}, false, 0};
}

}  // namespace

TextFileContent decodeTextFile(const TextFileSource& source, std::string_view encodingName,
                               const TextFileProgress& progress) {
    char bytes[kSampleLength];
    const std::ptrdiff_t length =
        source.isOpen() && source.length() < NSNotFound ? source.readAt(0, bytes) : -1;
    if (length < 0) return {TextFileFault::unreadable, {}, {}, false, 0};
    const std::string_view sample(bytes, static_cast<std::size_t>(length));
    if (encodingName.empty()) return decodeByGuess(source, sample, progress);
    const NSStringEncoding encoding = encodingForName(encodingName);
    if (encoding == 0) return {TextFileFault::unknownEncoding, {}, {}, false, 0};
    const std::string_view mark = markOf(encoding, sample);
    // Without the mark the order of bytes would be lost; with it, text in a named order begins with U+FEFF.
    TextFilePass pass(source, progress, Trust::named);
    if (pass.decode(encoding, 0) && !mark.empty() && pass.text().view().starts_with(u'\uFEFF'))
        pass.text().removeFirst();
    return pass.content(std::string(encodingName), !mark.empty());
}

}  // namespace pelvor
