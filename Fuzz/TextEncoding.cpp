// SPDX-License-Identifier: Apache-2.0
// Bytes in any encoding: text in pieces is the text in one piece, what was encoded exactly is decoded to
// itself, and every text can be encoded with loss.
#include <cstdint>
#include <string>
#include <vector>

#include "Foundation/EncodingDetection.h"
#include "Foundation/NSStringEncoding.h"
#include "Require.h"

namespace pelvor {
namespace {

std::optional<std::u16string> decodedInPieces(std::string_view bytes, NSStringEncoding encoding,
                                              std::size_t size) {
    TextDecoder decoder(encoding);
    std::u16string units;
    for (; bytes.size() > size; bytes.remove_prefix(size))
        if (!decoder.decode(bytes.substr(0, size), units)) return std::nullopt;
    if (!decoder.decode(bytes, units) || !decoder.finish(units)) return std::nullopt;
    return units;
}

void run(std::string_view bytes, NSStringEncoding encoding, std::size_t pieceSize) {
    const auto text = decodeBytes(bytes, encoding);
    require(decodedInPieces(bytes, encoding, pieceSize) == text, "the pieces make another text");
    for (const EncodingGuess& guess : detectEncodings(bytes))
        require(isEncodingAvailable(guess.encoding), "an encoding was guessed that is unknown");
    if (!text) return;
    if (const auto exact = encodeUnits(*text, encoding))
        require(decodeBytes(*exact, encoding) == text, "what was encoded exactly is another text");
    require(encodeUnits(*text, encoding, EncodingLoss::allowed).has_value(),
            "a text cannot be encoded with loss");
}

}  // namespace
}  // namespace pelvor

// Two bytes choose the encoding and the length of the pieces; the rest is the text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    static const std::vector<pelvor::NSStringEncoding> encodings = pelvor::availableEncodings();
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    pelvor::run(bytes.substr(2), encodings[data[0] % encodings.size()], data[1] % 16u + 1u);
    return 0;
}
