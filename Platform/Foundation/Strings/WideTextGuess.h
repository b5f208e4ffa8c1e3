// SPDX-License-Identifier: Apache-2.0
// Tells UTF-16 and UTF-32 without a mark; for Foundation's own sources.
#pragma once

#include <optional>
#include <string_view>

#include "Foundation/EncodingDetection.h"

namespace pelvor {

/// UTF-16 or UTF-32 in one byte order, if the bytes from the front of a text read as text in it: one script,
/// spaces, digits or punctuation, and hardly anything that no text has. No value for bytes that are text byte
/// by byte.
std::optional<EncodingGuess> guessWideText(std::string_view bytes);

}  // namespace pelvor
