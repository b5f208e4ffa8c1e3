// SPDX-License-Identifier: Apache-2.0
// Text that can be a template argument and be joined at compile time.
#pragma once

#include <cstddef>
#include <string_view>

namespace pelvor {

/// A zero-terminated literal of N characters, its terminator counted.
template <std::size_t N, class Char = char>
struct FixedString {
    Char text[N] = {};

    constexpr FixedString() = default;
    consteval FixedString(const Char (&literal)[N]) {
        for (std::size_t i = 0; i < N; ++i) text[i] = literal[i];
    }

    static constexpr std::size_t length() { return N - 1; }
    constexpr std::basic_string_view<Char> view() const { return {text, N - 1}; }
};

template <std::size_t A, std::size_t B, class Char>
consteval FixedString<A + B - 1, Char> operator+(const FixedString<A, Char>& first,
                                                 const FixedString<B, Char>& second) {
    FixedString<A + B - 1, Char> joined;
    for (std::size_t i = 0; i + 1 < A; ++i) joined.text[i] = first.text[i];
    for (std::size_t i = 0; i < B; ++i) joined.text[A - 1 + i] = second.text[i];
    return joined;
}

/// A copy of `text`, whose length must be N - 1, in a form that can be joined.
template <std::size_t N>
consteval FixedString<N> fixedCopy(std::string_view text) {
    FixedString<N> copy;
    for (std::size_t i = 0; i < text.size(); ++i) copy.text[i] = text[i];
    return copy;
}

}  // namespace pelvor
