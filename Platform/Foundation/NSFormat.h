// SPDX-License-Identifier: Apache-2.0
// Formatted text: "%@ at %d" with arguments that carry their types. Hosts call operations of NSString:
//
//     NSString* line = NSString::stringWithFormat(u"%@, page %d of %d"_ns, title, page, count);
#pragma once

#include <array>
#include <concepts>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "Runtime/Object.h"

namespace pelvor {

/// One argument of a format, made implicitly from numbers, enumerations, texts, selectors, pointers and
/// objects. An argument keeps only a pointer to a text or an object, so use it only in the call that it is
/// made for.
class FormatArgument {
  public:
    enum class Kind : std::uint8_t {
        signedInteger,
        unsignedInteger,
        floating,
        text,
        text16,
        pointer,
        object
    };

    template <class T>
    requires(std::is_integral_v<T> || std::is_enum_v<T>) constexpr FormatArgument(T value)
        : _kind(kIsSigned<T> ? Kind::signedInteger : Kind::unsignedInteger), _size(sizeof(T)) {
        if constexpr (kIsSigned<T>)
            _integer = static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
        else
            _integer = static_cast<std::uint64_t>(value);
    }
    template <class T>
    requires std::is_floating_point_v<T>
    constexpr FormatArgument(T value)
        : _kind(Kind::floating), _size(sizeof(double)), _floating(static_cast<double>(value)) {}

    constexpr FormatArgument(std::nullptr_t) : _kind(Kind::object) {}
    /// Zero-terminated UTF-8, or null.
    constexpr FormatArgument(const char* text)
        : _kind(Kind::text), _length(text ? std::char_traits<char>::length(text) : 0), _pointer(text) {}
    constexpr FormatArgument(std::string_view text)
        : _kind(Kind::text), _length(text.size()), _pointer(text.data()) {}
    FormatArgument(const std::string& text) : FormatArgument(std::string_view(text)) {}
    constexpr FormatArgument(std::u16string_view text)
        : _kind(Kind::text16), _length(text.size()), _pointer(text.data()) {}
    /// Zero-terminated UTF-16, or null.
    constexpr FormatArgument(const char16_t* text)
        : _kind(Kind::text16), _length(text ? std::char_traits<char16_t>::length(text) : 0), _pointer(text) {}
    FormatArgument(const std::u16string& text) : FormatArgument(std::u16string_view(text)) {}
    FormatArgument(SEL selector) : FormatArgument(selector.name()) {}

    /// An object of any class, a class record, or null. Of any other pointer, the address is printed.
    template <class T>
    requires(!std::is_same_v<std::remove_cv_t<T>, char> && !std::is_same_v<std::remove_cv_t<T>, char16_t>)
        FormatArgument(T* pointer) {
        if constexpr (std::is_class_v<T>) static_assert(sizeof(T) > 0, "include the header of the class");
        if constexpr (std::is_base_of_v<Object, T>) {
            _kind = Kind::object;
            _object = pointer;
        } else if constexpr (std::is_function_v<T>) {
            _pointer = reinterpret_cast<const void*>(pointer);
        } else {
            _pointer = const_cast<const void*>(static_cast<const volatile void*>(pointer));
        }
    }
    template <class T>
    FormatArgument(const Retained<T>& object) : FormatArgument(object.get()) {}

    Kind kind() const { return _kind; }
    /// The size in bytes of the number's type; a floating-point number is kept as a `double`.
    unsigned size() const { return _size; }
    // The argument in the form that its kind has; for other kinds, the result has no meaning.
    std::uint64_t integer() const { return _integer; }
    double floating() const { return _floating; }
    const void* pointer() const { return _pointer; }
    Object* object() const { return _object; }
    std::string_view text() const { return {static_cast<const char*>(_pointer), _length}; }
    std::u16string_view text16() const { return {static_cast<const char16_t*>(_pointer), _length}; }

  private:
    template <class T, bool IsEnum = std::is_enum_v<T>>
    struct IntegerOf {
        using type = T;
    };
    template <class T>
    struct IntegerOf<T, true> : std::underlying_type<T> {};
    template <class T>
    static constexpr bool kIsSigned = std::is_signed_v<typename IntegerOf<T>::type>;

    Kind _kind = Kind::pointer;
    unsigned _size = sizeof(void*);
    std::size_t _length = 0;
    union {
        std::uint64_t _integer = 0;
        double _floating;
        const void* _pointer;
        Unretained<Object> _object;
    };
};

/// The format with its arguments in place, borrowed. `NSString::stringWithFormat` and the like call this
/// function.
///
/// - Conversions are %@ (an object's description), d i u x X o c C s S p f F e E g G a A and %%.
/// - Flags are "-+ 0#"; width and precision may be "*"; "%2$@" takes the second argument.
/// - Of the lengths h hh l ll q z t j L only h and hh change anything, because arguments know their types.
/// - %d of an unsigned value prints the signed number with the same bits.
/// - A null argument prints "(null)", a missing argument "(missing)".
///
/// The result does not depend on the process's locale. Raises NSInvalidArgumentException for a null format;
/// the reason of the exception begins with `operation`. Any thread.
PELVOR_EXPORT NSString* formatString(NSString* format, std::span<const FormatArgument> arguments,
                                     const char* operation = "formatString:");

/// Appends the format with its arguments in place to `text`.
PELVOR_EXPORT void appendFormat(std::u16string& text, std::u16string_view format,
                                std::span<const FormatArgument> arguments);

namespace detail {

[[noreturn]] PELVOR_EXPORT void raiseFormatted(const char* name, NSString* format,
                                               std::span<const FormatArgument> arguments);

template <class... A>
std::array<FormatArgument, sizeof...(A)> formatArguments(const A&... arguments) {
    return {FormatArgument(arguments)...};
}

}  // namespace detail

/// Raises an NSException with a formatted reason:
/// `raiseException(NSRangeException, u"index (%d) beyond bounds (%d)"_ns, index, count)`.
template <class... A>
[[noreturn]] void raiseException(const char* name, NSString* format, const A&... arguments) {
    detail::raiseFormatted(name, format, detail::formatArguments(arguments...));
}

}  // namespace pelvor
