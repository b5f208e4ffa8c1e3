// SPDX-License-Identifier: Apache-2.0
// NSString: an immutable string of UTF-16 code units.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "Foundation/NSRange.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSMutableString;

/// A string of UTF-16 code units; positions and lengths count units. Abstract over `length`,
/// `characterAtIndex` and `getCharacters_range`, on which everything else stands; the creators answer
/// objects of concrete classes. Immutable strings may be used on any thread.
class PELVOR_EXPORT NSString : public NSObject {
    PELVOR_CLASS(NSString, NSObject);

  public:
    // Creation. Operations whose names begin with "init" answer owned strings, the others borrowed ones.

    /// The empty string.
    static NSString* string();
    /// Copies the units.
    static Retained<NSString> initWithCharacters_length(const unichar* characters, NSUInteger length);
    /// Borrowed copies of the text; bytes that are not UTF-8 become U+FFFD.
    static NSString* of(std::u16string_view units);
    static NSString* ofUTF8(std::string_view bytes);

    // Primitives

    virtual NSUInteger length() = 0;
    /// Raises NSRangeException for an index at or past the end.
    virtual unichar characterAtIndex(NSUInteger index) = 0;
    /// Copies the units of the range to the buffer. Raises NSRangeException for a range outside.
    virtual void getCharacters_range(unichar* buffer, NSRange range);
    /// All units in one piece where the string has them so, else none. Valid until the string changes
    /// or goes.
    virtual const unichar* contiguousCharacters() { return nullptr; }

    // Conversion

    std::u16string toUTF16();
    /// Lone halves of pairs become U+FFFD.
    std::string toUTF8();
    /// Zero-terminated UTF-8 that lives as long as the current autorelease pool.
    const char* UTF8String();

    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    NSString* description() override { return this; }
    bool isEqualToString(NSString* other);

    Retained<NSString> copy() {
        return Retained<NSString>::adopting(static_cast<NSString*>(copyWithZone(nullptr).leak()));
    }
    Retained<Object> copyWithZone(void* zone) override;

  protected:
    constexpr NSString() noexcept = default;
    constexpr NSString(Class* isa, std::uint32_t count) noexcept : NSObject(isa, count) {}
    ~NSString() = default;
};

/// A string literal: units that live as long as the program.
class PELVOR_EXPORT NSConstantString final : public NSString {
    PELVOR_CLASS(NSConstantString, NSString);

  public:
    constexpr explicit NSConstantString(std::u16string_view units)
        : NSString(&classRecord, kImmortal),
          _characters(units.data()),
          _length(static_cast<NSUInteger>(units.size())) {}

    NSUInteger length() override { return _length; }
    unichar characterAtIndex(NSUInteger index) override;
    const unichar* contiguousCharacters() override { return _characters; }
    Retained<Object> copyWithZone(void* zone) override;

  private:
    const unichar* _characters;
    NSUInteger _length;
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

/// `u"text"_ns`: an immortal string without start-up cost.
template <detail::Literal16 Text>
constexpr NSString* operator""_ns() {
    return &detail::literalString<Text>;
}

}  // namespace literals

/// Prints the string as UTF-8, for streams and test failures.
PELVOR_EXPORT std::ostream& operator<<(std::ostream& stream, NSString* string);

}  // namespace pelvor
