// SPDX-License-Identifier: Apache-2.0
// Type encodings deduced from C++ types, and the types that travel in messages.
#pragma once

#include <cstdint>
#include <type_traits>

#include "Runtime/FixedString.h"
#include "Runtime/Object.h"

namespace pelvor {

template <class T>
inline constexpr bool isClassPointer = std::is_same_v<std::remove_cv_t<std::remove_pointer_t<T>>, Class>;

/// A pointer to an object other than a class record.
template <class T>
concept ObjectPointer =
    std::is_pointer_v<T> && !isClassPointer<T> && std::is_class_v<std::remove_pointer_t<T>> &&
    std::is_base_of_v<Object, std::remove_pointer_t<T>>;

namespace detail {

/// Whether values of the type can be arguments and results of messages: numbers, enumerations, pointers,
/// objects, selectors and structs of such, all by value.
template <class T>
inline constexpr bool canTravel = std::is_void_v<T> || std::is_arithmetic_v<T> || std::is_enum_v<T> ||
                                  std::is_pointer_v<T> || std::is_null_pointer_v<T> ||
                                  std::is_same_v<T, SEL> || isRetained<T> ||
                                  (std::is_aggregate_v<T> && std::is_trivially_copyable_v<T>);

// Counts the fields of an aggregate by the longest brace list that makes one.
struct AnyField {
    template <class T>
    constexpr operator T() const;
};
template <class T, class... Fields>
consteval std::size_t fieldCount() {
    if constexpr (requires { T{Fields{}..., AnyField{}}; })
        return fieldCount<T, Fields..., AnyField>();
    else
        return sizeof...(Fields);
}

template <class... Fields>
struct FieldTypes {};

// The field types of an aggregate of up to six fields, without evaluating anything.
template <class T>
auto fieldTypes(T&& value) {
    constexpr std::size_t count = fieldCount<std::remove_cvref_t<T>>();
    static_assert(count >= 1 && count <= 6, "a struct in a message has one to six plain fields");
    if constexpr (count == 1) {
        auto& [a] = value;
        return FieldTypes<std::remove_cvref_t<decltype(a)>>{};
    } else if constexpr (count == 2) {
        auto& [a, b] = value;
        return FieldTypes<std::remove_cvref_t<decltype(a)>, std::remove_cvref_t<decltype(b)>>{};
    } else if constexpr (count == 3) {
        auto& [a, b, c] = value;
        return FieldTypes<std::remove_cvref_t<decltype(a)>, std::remove_cvref_t<decltype(b)>,
                          std::remove_cvref_t<decltype(c)>>{};
    } else if constexpr (count == 4) {
        auto& [a, b, c, d] = value;
        return FieldTypes<std::remove_cvref_t<decltype(a)>, std::remove_cvref_t<decltype(b)>,
                          std::remove_cvref_t<decltype(c)>, std::remove_cvref_t<decltype(d)>>{};
    } else if constexpr (count == 5) {
        auto& [a, b, c, d, e] = value;
        return FieldTypes<std::remove_cvref_t<decltype(a)>, std::remove_cvref_t<decltype(b)>,
                          std::remove_cvref_t<decltype(c)>, std::remove_cvref_t<decltype(d)>,
                          std::remove_cvref_t<decltype(e)>>{};
    } else {
        auto& [a, b, c, d, e, f] = value;
        return FieldTypes<std::remove_cvref_t<decltype(a)>, std::remove_cvref_t<decltype(b)>,
                          std::remove_cvref_t<decltype(c)>, std::remove_cvref_t<decltype(d)>,
                          std::remove_cvref_t<decltype(e)>, std::remove_cvref_t<decltype(f)>>{};
    }
}

// The unqualified name of T, cut out of the compiler's name for this function.
template <class T>
constexpr std::string_view printedName() {
    std::string_view text = __PRETTY_FUNCTION__;
    std::size_t start = text.find("T = ") + 4;
    text = text.substr(start, text.find_first_of(";]", start) - start);
    if (std::size_t colon = text.rfind(':'); colon != std::string_view::npos) text.remove_prefix(colon + 1);
    return text;
}

// The name of a struct or class: its own `kTypeName` if it has one, else its C++ name.
template <class T>
consteval auto structName() {
    if constexpr (requires { T::kTypeName.view(); })
        return T::kTypeName;
    else
        return fixedCopy<printedName<T>().size() + 1>(printedName<T>());
}

template <class T>
consteval auto encode();

template <class... Fields>
consteval auto encodeFields(FieldTypes<Fields...>) {
    return (FixedString("") + ... + encode<Fields>());
}

template <class T>
consteval auto encodePointer() {
    using Pointee = std::remove_cv_t<T>;
    if constexpr (std::is_same_v<Pointee, Class>)
        return FixedString("#");
    else if constexpr (std::is_same_v<Pointee, char>)
        return FixedString("*");
    else if constexpr (std::is_void_v<Pointee>)
        return FixedString("^v");
    else if constexpr (std::is_function_v<Pointee>)
        return FixedString("^?");
    else if constexpr (std::is_base_of_v<Object, Pointee>)
        return FixedString("@");
    else if constexpr (std::is_class_v<Pointee> && !std::is_trivially_copyable_v<Pointee>)
        return FixedString("^{") + structName<Pointee>() + FixedString("}");
    else
        return FixedString("^") + encode<Pointee>();
}

template <class T>
consteval auto encodeInteger() {
    constexpr bool isSigned = std::is_signed_v<T>;
    if constexpr (sizeof(T) == 1)
        return isSigned ? FixedString("c") : FixedString("C");
    else if constexpr (sizeof(T) == 2)
        return isSigned ? FixedString("s") : FixedString("S");
    else if constexpr (sizeof(T) == 4)
        return isSigned ? FixedString("i") : FixedString("I");
    else
        return isSigned ? FixedString("q") : FixedString("Q");
}

template <class T>
consteval auto encode() {
    if constexpr (std::is_void_v<T>)
        return FixedString("v");
    else if constexpr (std::is_same_v<T, bool>)
        return FixedString("B");
    else if constexpr (std::is_same_v<T, float>)
        return FixedString("f");
    else if constexpr (std::is_same_v<T, double>)
        return FixedString("d");
    else if constexpr (std::is_same_v<T, SEL>)
        return FixedString(":");
    else if constexpr (isRetained<T> || std::is_null_pointer_v<T>)
        return FixedString("@");
    else if constexpr (std::is_enum_v<T>)
        return encodeInteger<std::underlying_type_t<T>>();
    else if constexpr (std::is_integral_v<T>)
        return encodeInteger<T>();
    else if constexpr (std::is_pointer_v<T>)
        return encodePointer<std::remove_pointer_t<T>>();
    else if constexpr (canTravel<T>) {
        return FixedString("{") + structName<T>() + FixedString("=") +
               encodeFields(decltype(fieldTypes(std::declval<T&>())){}) + FixedString("}");
    } else {
        static_assert(canTravel<T>, "only plain values, objects and pointers travel in messages");
        return FixedString("?");
    }
}

}  // namespace detail

/// The encoding of a type: "i", "@", "{_NSRange=II}" …
template <class T>
inline constexpr auto typeEncoding = detail::encode<std::decay_t<T>>();

namespace detail {

template <class T>
consteval auto integerOfSize() {
    if constexpr (sizeof(T) == 1)
        return std::conditional_t<std::is_signed_v<T>, std::int8_t, std::uint8_t>{};
    else if constexpr (sizeof(T) == 2)
        return std::conditional_t<std::is_signed_v<T>, std::int16_t, std::uint16_t>{};
    else if constexpr (sizeof(T) == 4)
        return std::conditional_t<std::is_signed_v<T>, std::int32_t, std::uint32_t>{};
    else
        return std::conditional_t<std::is_signed_v<T>, std::int64_t, std::uint64_t>{};
}

template <class T>
struct WireType {
    using type = T;
};
template <class T>
requires(std::is_integral_v<T> && !std::is_same_v<T, bool>) struct WireType<T> {
    using type = decltype(integerOfSize<T>());
};
template <class T>
requires std::is_enum_v<T>
struct WireType<T> : WireType<std::underlying_type_t<T>> {
};
template <class T>
struct WireType<T*> {
    using type = void*;
};
template <class T>
requires isClassPointer<T*>
struct WireType<T*> {
    using type = Class*;
};
template <class T>
requires ObjectPointer<T*>
struct WireType<T*> {
    using type = Object*;
};
template <class T>
struct WireType<Retained<T>> {
    using type = Object*;
};
template <>
struct WireType<std::nullptr_t> {
    using type = Object*;
};

}  // namespace detail

/// The C++ type in which a value travels: every object as `Object*`, other pointers as `void*`, an
/// enumeration as its integer, everything else as it is. One encoding has one wire type.
template <class T>
using Wire = typename detail::WireType<std::decay_t<T>>::type;

namespace detail {

// 64-bit FNV-1a. The registry refuses two encodings with one key, so a key stands for its encoding.
constexpr std::uint64_t signatureKey(std::string_view encoding) {
    std::uint64_t key = 0xcbf29ce484222325u;
    for (char c : encoding) key = (key ^ static_cast<unsigned char>(c)) * 0x100000001b3u;
    return key;
}

}  // namespace detail
}  // namespace pelvor
