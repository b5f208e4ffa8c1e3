// SPDX-License-Identifier: Apache-2.0
// NSConstantString: string literals.
#pragma once

#include <atomic>
#include <string_view>

#include "Foundation/NSString.h"
#include "Runtime/FixedString.h"

namespace pelvor {

/// A string literal, whose units live as long as the program. The suffix `_ns` makes it:
///
///     NSString* title = u"Chapter 1"_ns;
class PELVOR_EXPORT NSConstantString final : public NSString {
    PELVOR_CLASS(NSConstantString, NSString);

  public:
    constexpr explicit NSConstantString(std::u16string_view units)
        : NSString(&classRecord, kImmortal),
          _characters(units.data()),
          _length(static_cast<NSUInteger>(units.size())) {}

    NSUInteger length() override { return _length; }
    unichar characterAtIndex(NSUInteger index) override;
    void getCharacters_range(unichar* buffer, NSRange range) override;
    const unichar* contiguousCharacters() override { return _characters; }
    std::uintptr_t hash() override;
    Retained<Object> copyWithZone(void* zone) override;

  private:
    const unichar* _characters;
    NSUInteger _length;
    std::atomic<std::uint32_t> _hash{0};  // 0: not yet computed
};

namespace detail {

template <std::size_t N>
struct Literal16 : FixedString<N, char16_t> {
    using FixedString<N, char16_t>::FixedString;
    consteval Literal16(const char16_t (&text)[N]) : FixedString<N, char16_t>(text) {}
};

template <Literal16 Text>
inline constinit NSConstantString literalString{Text.view()};

}  // namespace detail

inline namespace literals {

/// `u"text"_ns`: an immutable string that lives as long as the program and costs nothing at start-up.
template <detail::Literal16 Text>
constexpr NSString* operator""_ns() {
    return &detail::literalString<Text>;
}

}  // namespace literals

}  // namespace pelvor
