// SPDX-License-Identifier: Apache-2.0
// Retained<T>: an owned reference to an object.
#pragma once

#include <cstddef>
#include <string_view>  // std::hash
#include <type_traits>
#include <utility>

#include "Runtime/Export.h"

namespace pelvor {

/// An owned reference to an object, or null. Operations whose names begin with "create", "copy", "new" or
/// "init" return one, and fields hold one:
///
///     Retained<NSString> name = title->copy();
///     NSString* borrowed = name;                             // a variable converts to a bare pointer
///     auto other = Retained<NSString>::retaining(borrowed);  // a bare pointer does not convert by itself
///
/// A bare pointer becomes a reference by `adopting`, which takes over a count that the caller owns, or by
/// `retaining`, which adds a count.
template <class T>
class [[nodiscard]] Retained {
  public:
    constexpr Retained() noexcept = default;
    constexpr Retained(std::nullptr_t) noexcept {}

    /// Takes over one count of the object, which the caller owns.
    static Retained adopting(T* object) noexcept {
        Retained reference;
        reference._object = object;
        return reference;
    }
    /// Adds one count to the object.
    static Retained retaining(T* object) noexcept {
        if (object) object->retain();
        return adopting(object);
    }

    Retained(const Retained& other) noexcept : _object(other._object) { retainObject(); }
    Retained(Retained&& other) noexcept : _object(other.leak()) {}
    template <class U>
    requires std::is_convertible_v<U*, T*> Retained(const Retained<U>& other)
    noexcept : _object(other.get()) { retainObject(); }
    template <class U>
    requires std::is_convertible_v<U*, T*> Retained(Retained<U>&& other)
    noexcept : _object(other.leak()) {}
    ~Retained() {
        if (_object) _object->release();
    }

    // The new object is in place before the old one is released: a release may come back here.
    Retained& operator=(Retained other) noexcept {
        std::swap(_object, other._object);
        return *this;
    }

    /// Holds `object` from now on, with a count of its own.
    void set(T* object) noexcept { *this = retaining(object); }

    T* get() const noexcept PELVOR_LIFETIMEBOUND { return _object; }
    T* operator->() const noexcept PELVOR_LIFETIMEBOUND { return _object; }
    T& operator*() const noexcept PELVOR_LIFETIMEBOUND { return *_object; }
    explicit operator bool() const noexcept { return _object != nullptr; }
    operator T*() const& noexcept { return _object; }
    // The compiler shows the next line to who borrows from a temporary.
    operator T*() const&& = delete;  // use .get() inside one expression, or std::move(owned).autorelease()

    /// Hands the count to the caller and forgets the object.
    [[nodiscard]] T* leak() noexcept { return std::exchange(_object, nullptr); }
    /// Hands the count to the current autorelease pool; the result is borrowed.
    T* autorelease() && noexcept {
        T* object = leak();
        if (object) object->autorelease();
        return object;
    }

    friend bool operator==(const Retained& a, std::nullptr_t) noexcept { return a._object == nullptr; }
    template <class U>
    friend bool operator==(const Retained& a, const Retained<U>& b) noexcept {
        return a._object == b.get();
    }
    template <class U>
    friend bool operator==(const Retained& a, U* b) noexcept {
        return a._object == b;
    }

  private:
    void retainObject() const noexcept {
        if (_object) _object->retain();
    }

    T* _object = nullptr;
};

/// A pointer to an object that the holder of the pointer does not own, and that somebody else keeps alive.
/// Fields that are bare pointers to objects are declared with this name; a field that owns its object is a
/// Retained.
template <class T>
using Unretained = T*;

template <class T>
inline constexpr bool isRetained = false;
template <class T>
inline constexpr bool isRetained<Retained<T>> = true;

}  // namespace pelvor

template <class T>
struct std::hash<pelvor::Retained<T>> {
    std::size_t operator()(const pelvor::Retained<T>& reference) const noexcept {
        return std::hash<T*>()(reference.get());
    }
};
