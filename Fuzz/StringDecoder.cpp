// SPDX-License-Identifier: Apache-2.0
// Decoders: every step is what a decoder that goes byte by byte makes of it, and well-formed text comes out
// the same however it is cut.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "Scanning/OFStringDecoder.h"
#include "Shared/WideInstructions.h"

namespace pelvor {
namespace {

void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

// UTF-8 as slowly as can be.
struct Model {
    std::uint32_t partial = 0;
    unsigned owed = 0;
    bool isWellFormed = true;
    std::u16string units;
    std::size_t consumed = 0;

    bool put(std::uint32_t value, std::size_t capacity) {
        if (value > 0x10FFFF) {
            units += u'\xFFFD';
        } else if (value < 0x10000) {
            units += static_cast<char16_t>(value);
        } else {
            if (units.size() + 2 > capacity) return false;
            units += static_cast<char16_t>(0xD800 + ((value - 0x10000) >> 10));
            units += static_cast<char16_t>(0xDC00 + (value & 0x3FF));
        }
        return true;
    }
    static bool continues(unsigned byte) { return byte >= 0x80 && byte < 0xC0; }

    void decode(const std::vector<unsigned char>& in, std::size_t capacity) {
        units.clear();
        std::size_t i = 0;
        for (; i < in.size() && units.size() < capacity; consumed = i) {
            if (owed) {
                isWellFormed &= continues(in[i]);
                partial = partial << 6 | (in[i++] & 0x3Fu);
                if (--owed == 0 && !put(partial, capacity)) break;
                continue;
            }
            unsigned lead = in[i++];
            std::size_t left = in.size() - i;
            if (lead < 0x80) {
                units += static_cast<char16_t>(lead);
            } else if (lead < 0xC0 || lead >= 0xFE) {
                units += u'\xFFFD';
            } else if (lead < 0xF0 && left >= (lead < 0xE0 ? 1u : 2u)) {
                std::size_t count = lead < 0xE0 ? 1 : 2;
                std::uint32_t value = lead & (lead < 0xE0 ? 0x1Fu : 0x0Fu);
                bool isWhole = true;
                for (std::size_t k = 0; k < count; ++k) {
                    isWhole = isWhole && continues(in[i]);
                    value = value << 6 | (in[i++] & 0x3Fu);
                }
                isWellFormed &= isWhole;
                units += isWhole ? static_cast<char16_t>(value) : u'\xFFFD';
            } else {
                owed = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : lead < 0xF8 ? 3 : lead < 0xFC ? 4 : 5;
                partial = lead & (0x3Fu >> owed);
            }
        }
        consumed = i;
    }
};

constexpr CFStringEncoding kEncodings[] = {
    kCFStringEncodingUTF8,          kCFStringEncodingISOLatin1, kCFStringEncodingWindowsLatin1,
    kCFStringEncodingASCII,         kCFStringEncodingKOI8_R,    kCFStringEncodingMacRomanLatin1,
    kCFStringEncodingNextStepLatin, kCFStringEncodingMacRoman,
};

OFCharacterScanResult scan(OFStringDecoderState state, const std::vector<unsigned char>& bytes,
                           std::u16string& units) {
    return OFScanCharactersIntoBuffer(state, bytes.data(), static_cast<NSUInteger>(bytes.size()),
                                      units.data(), static_cast<NSUInteger>(units.size()));
}

void run(const std::vector<unsigned char>& cuts, const std::vector<unsigned char>& bytes,
         CFStringEncoding encoding) {
    bool isUTF8 = encoding == kCFStringEncodingUTF8;
    std::u16string whole(bytes.size() + 2, u'\0'), text;
    whole.resize(scan(OFInitialStateForEncoding(encoding), bytes, whole).charactersProduced);

    Model model;
    auto state = OFInitialStateForEncoding(encoding);
    bool isLost = false;
    for (std::size_t place = 0, step = 0; place < bytes.size(); ++step) {
        unsigned cut = cuts.empty() ? 7u : cuts[step % cuts.size()];
        std::size_t count =
            std::min<std::size_t>(cut & 0x40 ? 200 + cut : cut % 40 + 1, bytes.size() - place);
        std::vector<unsigned char> piece(bytes.begin() + static_cast<std::ptrdiff_t>(place),
                                         bytes.begin() + static_cast<std::ptrdiff_t>(place + count));
        std::u16string room(cut & 0x80 ? 1 + cut % 5 : count + 2, u'\0');
        auto result = scan(state, piece, room);
        text += room.substr(0, result.charactersProduced);
        if (isUTF8) {
            model.decode(piece, room.size());
            require(model.units == room.substr(0, result.charactersProduced), "other units than the model's");
            require(model.consumed == result.bytesConsumed, "other bytes consumed");
            require(model.owed == result.state.utf8octetsremaining, "another state");
            isLost |= room.size() < count + 2;
        }
        require(result.bytesConsumed > 0, "no progress");
        place += result.bytesConsumed;
        state = result.state;
    }
    if (!isUTF8 || (model.isWellFormed && !isLost)) require(text == whole, "cut text differs from the whole");
}

}  // namespace
}  // namespace pelvor

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    std::optional<pelvor::PlainInstructionsScope> plain;
    if (data[0] & 0x40) plain.emplace();
    std::size_t cutCount = std::min<std::size_t>(data[1] % 8u, size - 2);
    std::vector<unsigned char> cuts(data + 2, data + 2 + cutCount), bytes(data + 2 + cutCount, data + size);
    pelvor::run(cuts, bytes, pelvor::kEncodings[data[0] % 8]);
    return 0;
}
