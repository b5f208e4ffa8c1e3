// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/TextFiles/TextFileDecoding.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "Foundation/EncodingDetection.h"

namespace pelvor {
namespace {

constexpr std::size_t kSampleLength = 16 * 1024;
constexpr std::size_t kBlockLength = 256 * 1024;
constexpr std::size_t kPieceLength = 16 * 1024;  // fits the nearest cache together with its text
constexpr std::size_t kOtherNames = 3;

// "UTF-8" and "windows-1252", as people write them.
std::string nameOf(NSStringEncoding encoding) {
    std::string name(ianaNameOfEncoding(encoding));
    if (name.starts_with("utf-")) std::transform(name.begin(), name.end(), name.begin(), ::toupper);
    return name;
}

bool isWide(NSStringEncoding encoding) {
    return encoding == NSUTF16LittleEndianStringEncoding || encoding == NSUTF16BigEndianStringEncoding ||
           encoding == NSUTF32LittleEndianStringEncoding || encoding == NSUTF32BigEndianStringEncoding;
}

bool isUnicode(NSStringEncoding encoding) { return encoding == NSUTF8StringEncoding || isWide(encoding); }

bool isUnusualControl(char16_t unit) {
    constexpr char16_t kEscape = 0x1B;
    const bool isLayout = unit >= u'\t' && unit <= u'\r';
    return (unit < 0x20 && !isLayout && unit != kEscape) || (unit >= 0x7F && unit < 0xA0);
}

// Text has hardly any controls but those that lay lines out.
bool looksLikeText(std::u16string_view units) {
    const auto sample = units.substr(0, 4096);
    const auto controls = std::count_if(sample.begin(), sample.end(), isUnusualControl);
    return static_cast<std::size_t>(controls) * 32 <= sample.size();
}

enum class Trust {
    guessed,  // what does not look like text is not taken for it
    named,
};

// Reads a file once through, in one encoding.
class TextFilePass {
  public:
    TextFilePass(const TextFileSource& source, const TextFileProgress& progress, NSStringEncoding encoding,
                 Trust trust)
        : _source(source), _progress(progress), _encoding(encoding), _trust(trust), _decoder(encoding) {}

    /// From the place on. Whether the file is valid in the encoding and, if that is guessed, looks like text.
    bool decode(std::uint64_t place) {
        _start = place;
        const std::uint64_t length = std::max<std::uint64_t>(_source.length(), place) - place;
        // Files that the system makes up say that they are empty.
        std::string block(std::clamp<std::uint64_t>(length + 1, kPieceLength, kBlockLength), '\0');
        _text.room(length / (isWide(_encoding) ? 2 : 1) + 1);
        for (bool isLast = false; !isLast;) {
            const std::ptrdiff_t count = _source.readAt(place, block);
            if (count < 0 || _text.view().size() >= NSNotFound) return fail(TextFileFault::unreadable);
            place += static_cast<std::uint64_t>(count);
            if (_progress) _progress(place, std::max(place, _source.length()));
            const auto size = static_cast<std::size_t>(count);
            isLast = size < block.size();
            for (std::size_t i = 0; i < size; i += kPieceLength)
                if (!decodePiece({block.data() + i, std::min(kPieceLength, size - i)}))
                    return fail(TextFileFault::undecodable);
        }
        if (!finish()) return fail(TextFileFault::undecodable);
        _byteCount = place;
        return true;
    }

    /// Whether the text in its encoding is the bytes of the file again.
    bool isFaithful() const {
        if (isUnicode(_encoding)) return true;
        const auto bytes = encodeUnits(_text.view(), _encoding);
        if (!bytes || bytes->size() != _byteCount - _start) return false;
        std::string block(kBlockLength, '\0');
        for (std::size_t place = 0; place < bytes->size(); place += kBlockLength) {
            const auto count =
                static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, _source.readAt(_start + place, block)));
            if (std::string_view(*bytes).substr(place, kBlockLength) !=
                std::string_view(block).substr(0, count))
                return false;
        }
        return true;
    }

    TextFileContent content() {
        TextFileContent content;
        content.fault = _fault;
        if (_fault != TextFileFault::none) return content;
        content.text = std::move(_text);
        content.encodingName = nameOf(_encoding);
        content.hasByteOrderMark = _start > 0;
        content.byteCount = _byteCount;
        return content;
    }
    TextFileFault fault() const { return _fault; }

  private:
    bool fail(TextFileFault fault) {
        _fault = fault;
        return false;
    }
    bool decodePiece(std::string_view bytes) {
        const std::size_t start = _text.view().size();
        return _decoder.decode(bytes, _text) && isText(bytes, start);
    }
    bool finish() {
        const std::size_t start = _text.view().size();
        return _decoder.finish(_text) && isText({}, start);
    }
    // Text has no zeros.
    bool isText(std::string_view bytes, std::size_t start) const {
        if (_trust == Trust::named) return true;
        const std::u16string_view units = _text.view().substr(start);
        const bool hasZero =
            isWide(_encoding) ? units.find(u'\0') != units.npos : bytes.find('\0') != bytes.npos;
        return !hasZero && (start > 0 || looksLikeText(units));
    }

    const TextFileSource& _source;
    const TextFileProgress& _progress;
    NSStringEncoding _encoding;
    Trust _trust;
    TextDecoder _decoder;
    UnitBuffer _text{0};
    std::uint64_t _start = 0;
    std::uint64_t _byteCount = 0;
    TextFileFault _fault = TextFileFault::none;
};

TextFileContent faultContent(TextFileFault fault) {
    TextFileContent content;
    content.fault = fault;
    return content;
}

// The bytes by which an encoding is guessed: those around the first one that is not ASCII. What goes before
// is the same in most encodings. Begins at a multiple of four, as the characters of UTF-32 do.
std::string tellingSample(const TextFileSource& source) {
    std::string bytes(kSampleLength, '\0');
    for (std::uint64_t place = 0;; place += bytes.size() / 2) {
        const std::ptrdiff_t count = source.readAt(place, bytes);
        if (count <= 0) return {};
        const std::string_view block(bytes.data(), static_cast<std::size_t>(count));
        const auto isTelling = [](char byte) {
            return byte == 0 || static_cast<unsigned char>(byte) >= 0x80;
        };
        const auto found = std::find_if(block.begin(), block.begin() + count / 2, isTelling);
        const bool isEnd = block.size() < bytes.size();
        if (found != block.begin() + count / 2 || isEnd) return std::string(block);
    }
}

// Japanese and Korean mail is ASCII with escapes, so it would pass as UTF-8.
bool hasEscapes(const TextFileSource& source) {
    std::string bytes(kSampleLength, '\0');
    const auto count = static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, source.readAt(0, bytes)));
    const std::string_view sample = std::string_view(bytes).substr(0, count);
    return sample.find("\x1B$") != sample.npos || sample.find("\x1B(") != sample.npos;
}

TextFileContent decodeByGuess(const TextFileSource& source, const std::optional<EncodingMark>& mark,
                              const TextFileProgress& progress) {
    std::optional<TextFileContent> content;
    auto read = [&](NSStringEncoding encoding, std::uint64_t start) {
        TextFilePass pass(source, progress, encoding, Trust::guessed);
        if (!pass.decode(start) && pass.fault() != TextFileFault::unreadable) return false;
        const bool isLossy = !pass.isFaithful();
        content = pass.content();
        content->isLossy = isLossy;
        return true;
    };
    if (mark && read(mark->encoding, mark->bytes.size())) return std::move(*content);
    if (!hasEscapes(source) && read(NSUTF8StringEncoding, 0)) return std::move(*content);
    std::vector<EncodingGuess> guesses = detectEncodings(tellingSample(source));
    guesses.push_back({NSWindowsCP1252StringEncoding, 0, ""});
    for (auto guess = guesses.begin(); guess != guesses.end(); ++guess) {
        if (!read(guess->encoding, 0)) continue;
        content->confidence = guess->confidence;
        // Those that are at least half as likely.
        while (++guess != guesses.end() && content->otherNames.size() < kOtherNames &&
               guess->confidence * 2 > *content->confidence)
            content->otherNames.push_back(nameOf(guess->encoding));
        if (mark) content->contradictingMark = nameOf(mark->encoding);
        return std::move(*content);
    }
    return faultContent(TextFileFault::notText);
}

// Texts that are named only UTF-16 or UTF-32 have their byte order in the mark, or are little-endian.
NSStringEncoding withByteOrder(NSStringEncoding encoding, std::string_view sample) {
    if (encoding != NSUTF16StringEncoding && encoding != NSUTF32StringEncoding) return encoding;
    const bool isShort = encoding == NSUTF16StringEncoding;
    const auto big = isShort ? NSUTF16BigEndianStringEncoding : NSUTF32BigEndianStringEncoding;
    const auto little = isShort ? NSUTF16LittleEndianStringEncoding : NSUTF32LittleEndianStringEncoding;
    return sample.starts_with(markOfEncoding(big)) ? big : little;
}

TextFileContent decodeAsNamed(const TextFileSource& source, std::string_view encodingName,
                              std::string_view sample, const TextFileProgress& progress) {
    const NSStringEncoding encoding = withByteOrder(encodingForName(encodingName), sample);
    if (encoding == 0) return faultContent(TextFileFault::unknownEncoding);
    const std::string_view mark = markOfEncoding(encoding);
    const bool hasMark = !mark.empty() && sample.starts_with(mark);
    TextFilePass pass(source, progress, encoding, Trust::named);
    pass.decode(hasMark ? mark.size() : 0);
    TextFileContent content = pass.content();
    if (!isWide(encoding)) content.encodingName = encodingName;
    const auto found = encodingMarkOf(sample);
    if (found && !hasMark) content.contradictingMark = nameOf(found->encoding);
    return content;
}

}  // namespace

TextFileContent decodeTextFile(const TextFileSource& source, std::string_view encodingName,
                               const TextFileProgress& progress) {
    char bytes[4];
    const std::ptrdiff_t length =
        source.isOpen() && source.length() < NSNotFound ? source.readAt(0, bytes) : -1;
    if (length < 0) return faultContent(TextFileFault::unreadable);
    const std::string_view front(bytes, static_cast<std::size_t>(length));
    return encodingName.empty() ? decodeByGuess(source, encodingMarkOf(front), progress)
                                : decodeAsNamed(source, encodingName, front, progress);
}

}  // namespace pelvor
