// SPDX-License-Identifier: Apache-2.0
// Tells legacy encodings by the letters of the languages that they were made for; for Foundation's own
// sources.
#pragma once

#include <string_view>
#include <vector>

#include "Foundation/EncodingDetection.h"

namespace pelvor {

/// The legacy encodings in which the bytes are valid, the more usual ones first, each with the language whose
/// letters fit best. The confidence tells how many of the characters beyond ASCII are letters of the language
/// and stand where letters stand. Empty if all bytes are ASCII.
std::vector<EncodingGuess> guessByAlphabets(std::string_view bytes);

}  // namespace pelvor
