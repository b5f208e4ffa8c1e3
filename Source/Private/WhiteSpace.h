// SPDX-License-Identifier: Apache-2.0
// Where the white space of a paragraph is, in bits, so that no branch depends on the lengths of its words.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <memory>
#include <string_view>

namespace pelvor {

/// Knows one paragraph of a text at a time. Places are counted from its start.
class WhiteSpace {
  public:
    explicit WhiteSpace(std::u16string_view text)
        : _text(text), _words(std::make_unique_for_overwrite<std::uint64_t[]>(text.size() / 64 + 2)) {}

    /// Reads from a place of the text to the next line feed or form feed, and returns its place in the text;
    /// without one, to the text's end.
    std::size_t readParagraph(std::size_t start);

    /// The first white space in [from, end); `end` without any.
    std::size_t first(std::size_t from, std::size_t end) const {
        for (; from < end; from += 64)
            if (std::uint64_t bits = bitsAt(from))
                return std::min(from + static_cast<std::size_t>(std::countr_zero(bits)), end);
        return end;
    }
    /// Behind the last white space in [from, end); `from` without any.
    std::size_t behindLast(std::size_t from, std::size_t end) const {
        while (from < end) {
            std::size_t count = std::min<std::size_t>(end - from, 64);
            if (std::uint64_t bits = bitsAt(end - count) << (64 - count))
                return end - static_cast<std::size_t>(std::countl_zero(bits));
            end -= count;
        }
        return from;
    }

  private:
    // Of the place and the 63 behind it.
    std::uint64_t bitsAt(std::size_t place) const {
        const std::uint64_t* word = _words.get() + place / 64;
        return word[0] >> (place & 63) | word[1] << 1 << (~place & 63);
    }

    std::u16string_view _text;
    std::unique_ptr<std::uint64_t[]> _words;  // a word of zeros is behind the paragraph's
};

}  // namespace pelvor
