// SPDX-License-Identifier: Apache-2.0
// Selectors: the interned names of messages.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>  // and std::hash

#include "Runtime/Export.h"
#include "Runtime/FixedString.h"

namespace pelvor {

/// The interned name of a message:
///
///     SEL selector = "insertRun:atIndex:"_sel;
///     selector.argumentCount();  // 2
///
/// A selector has four bytes and is compared by value. A selector that is made without a name is the null
/// selector. Selectors live as long as the process.
class PELVOR_EXPORT SEL {
  public:
    constexpr SEL() = default;
    constexpr SEL(std::nullptr_t) {}

    /// The zero-terminated name; "" for the null selector.
    const char* name() const;
    /// How many arguments a message of this name takes: its colons.
    int argumentCount() const;

    constexpr std::uint32_t index() const { return _index; }
    constexpr explicit operator bool() const { return _index != 0; }
    friend constexpr bool operator==(SEL, SEL) = default;

  private:
    friend PELVOR_EXPORT SEL registerSelector(std::string_view);
    friend PELVOR_EXPORT SEL findSelector(std::string_view);
    constexpr explicit SEL(std::uint32_t index) : _index(index) {}

    std::uint32_t _index = 0;
};

/// The selector with this name, which is made if it does not exist yet. Any thread.
PELVOR_EXPORT SEL registerSelector(std::string_view name);

/// The selector with this name if it exists, else the null selector. Any thread.
PELVOR_EXPORT SEL findSelector(std::string_view name);

inline namespace literals {

/// `"count"_sel`: interned on the first pass, a load afterwards.
template <FixedString Name>
SEL operator""_sel() {
    static const SEL selector = registerSelector(Name.view());
    return selector;
}

}  // namespace literals
}  // namespace pelvor

template <>
struct std::hash<pelvor::SEL> {
    std::size_t operator()(pelvor::SEL selector) const noexcept { return selector.index(); }
};
