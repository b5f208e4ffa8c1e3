// SPDX-License-Identifier: Apache-2.0
// Differences from universal time as texts: "+0130"; for Foundation's own sources.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace pelvor {

/// "+0130", or with seconds "+013015", of a difference in seconds.
std::u16string offsetText(int seconds);

/// How many units at the front of the text are a difference: a sign, and hours of one or two digits, which
/// minutes and then seconds of two digits may follow, with colons or without; after a single digit only with
/// a colon. 0 if there is none.
std::size_t lengthOfOffset(std::u16string_view text);

/// The seconds of a difference that is the whole text; nothing if the text is something else or says a day or
/// more.
std::optional<int> offsetOfText(std::u16string_view text);

}  // namespace pelvor
