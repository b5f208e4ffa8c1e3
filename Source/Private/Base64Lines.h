// SPDX-License-Identifier: Apache-2.0
// Base64 text in lines; for this library's own sources.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace pelvor {

/// How many characters `writeBase64Lines` writes.
std::uint64_t base64LengthInLines(std::size_t byteCount, std::size_t lineLength);

/// Writes the text of the bytes, with a line feed as soon as a line has `lineLength` characters or more,
/// counted in groups of four, and so also behind a last line that is full; with 0, without line feeds.
/// Returns the place behind the text.
std::uint8_t* writeBase64Lines(std::span<const std::uint8_t> bytes, std::size_t lineLength,
                               std::uint8_t* text);

}  // namespace pelvor
