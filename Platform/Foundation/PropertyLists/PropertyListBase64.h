// SPDX-License-Identifier: Apache-2.0
// The base64 text of data elements; for the readers and writers of property lists.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "Foundation/Values/GrowingBytes.h"

namespace pelvor {

/// Replaces base64 text by the bytes that the text stands for. White space is skipped, and padding at the end
/// may be missing. Returns false, with the text spoilt, for any other character, for text after padding and
/// for a single last digit.
bool decodePropertyListBase64(std::string& text);

/// Writes padded base64 in lines of up to `lineLength` digits, a multiple of 4; each line follows `indent`
/// tabs and ends with a line feed. No bytes give no line.
void appendPropertyListBase64(GrowingBytes& bytes, std::span<const std::uint8_t> data, std::size_t lineLength,
                              std::size_t indent);

}  // namespace pelvor
