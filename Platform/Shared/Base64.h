// SPDX-License-Identifier: Apache-2.0
// Base64 between bytes and text, a block at a time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "Runtime/Export.h"

namespace pelvor {

/// How many characters the bytes make, without line breaks.
constexpr std::size_t base64LengthOf(std::size_t byteCount) { return (byteCount + 2) / 3 * 4; }

/// Writes the text of the bytes, with padding, and returns the place behind the text.
PELVOR_EXPORT std::uint8_t* writeBase64(std::span<const std::uint8_t> bytes, std::uint8_t* text);
PELVOR_EXPORT char16_t* writeBase64(std::span<const std::uint8_t> bytes, char16_t* text);

// What a character means, other than the digits 0 to 63.
inline constexpr std::uint8_t kBase64Padding = 64;
inline constexpr std::uint8_t kBase64Foreign = 127;

/// The meaning of each character below U+0100.
extern PELVOR_EXPORT const std::array<std::uint8_t, 256> kBase64Values;

/// Decodes groups of four digits up to the first group with another character, and returns how many
/// characters these groups have. `bytes` may be the text itself.
std::size_t readBase64Groups(std::string_view text, std::uint8_t* bytes);

/// Reads text that comes in pieces. Characters that are neither in the alphabet nor padding are skipped, and
/// so is everything after a group with padding.
class PELVOR_EXPORT Base64Reader {
  public:
    /// How much room there must be for a text, some more than its bytes take.
    static constexpr std::size_t roomFor(std::size_t textLength) { return textLength / 4 * 3 + 35; }

    explicit Base64Reader(std::uint8_t* bytes) : _bytes(bytes) {}

    /// False if the text is not ASCII.
    bool read(std::u16string_view text);
    /// The place after the bytes.
    std::uint8_t* end() const { return _bytes; }
    /// Whether the text ended inside a group.
    bool isInsideGroup() const { return _count != 0; }

  private:
    void finishGroup();

    std::uint8_t* _bytes;
    bool _isPadded = false;
    unsigned _count = 0;  // how much of the group has been read
    std::uint8_t _group[4];
};

}  // namespace pelvor
