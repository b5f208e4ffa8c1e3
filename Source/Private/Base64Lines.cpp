// SPDX-License-Identifier: Apache-2.0
#include "Private/Base64Lines.h"

#include <algorithm>
#include <cstring>

#include "Shared/Base64.h"

namespace pelvor {
namespace {

// Of whole groups.
std::size_t fullLineFor(std::size_t lineLength) { return (lineLength + 3) / 4 * 4; }

}  // namespace

std::uint64_t base64LengthInLines(std::size_t byteCount, std::size_t lineLength) {
    const std::uint64_t length = base64LengthOf(byteCount);
    return lineLength ? length + length / fullLineFor(lineLength) : length;
}

std::uint8_t* writeBase64Lines(std::span<const std::uint8_t> bytes, std::size_t lineLength,
                               std::uint8_t* text) {
    if (!lineLength) return writeBase64(bytes, text);
    // A block of text stays in the nearest cache until it is cut into lines.
    constexpr std::size_t kBlock = 6144;
    std::uint8_t block[base64LengthOf(kBlock)];
    const std::size_t fullLine = fullLineFor(lineLength);
    std::size_t room = fullLine;  // of the line
    while (!bytes.empty()) {
        auto piece = bytes.first(std::min(bytes.size(), kBlock));
        bytes = bytes.subspan(piece.size());
        const std::uint8_t *from = block, *end = writeBase64(piece, block);
        while (from < end) {
            const std::size_t count = std::min(room, static_cast<std::size_t>(end - from));
            std::memcpy(text, from, count);
            text += count;
            from += count;
            room -= count;
            if (room > 0) continue;
            *text++ = '\n';
            room = fullLine;
        }
    }
    return text;
}

}  // namespace pelvor
