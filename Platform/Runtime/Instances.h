// SPDX-License-Identifier: Apache-2.0
// Making and destroying objects as their C++ classes.
#pragma once

#include <new>
#include <type_traits>
#include <utility>

#include "Runtime/Object.h"

namespace pelvor {

struct MethodGroup;
template <class T>
class MethodTable;

/// What the C++ class behind a class record gives it.
struct NativeClass {
    Object* (*create)() = nullptr;  ///< makes an object without a class; null for an abstract class
    std::size_t instanceSize = 0;
    bool isFinal = false;
    void (*defineMethods)(MethodGroup& instance, MethodGroup& classLevel) = nullptr;
};

/// The one place that reaches an object's constructor, destructor and class field.
struct Instances {
    template <class T>
    static void destroy(T* object) noexcept {
        object->T::~T();
        deallocate<T>(object);
    }

    /// An object of exactly the C++ class T that belongs to the class `isa`, count one. `extra` bytes
    /// follow it in its memory.
    template <class T, class... Arguments>
    static T* createWithExtra(std::size_t extra, Class* isa, Arguments&&... arguments) {
        void* memory = allocate<T>(sizeof(T) + extra);
        T* object;
        try {
            object = ::new (memory) T(std::forward<Arguments>(arguments)...);
        } catch (...) {
            deallocate<T>(memory);
            throw;
        }
        object->_isa = isa;
        return object;
    }

    template <class T>
    static T* create(Class* isa) {
        return createWithExtra<T>(0, isa);
    }

    static void setClass(Object* object, Class* isa) noexcept { object->_isa = isa; }

    template <class T>
    static Object* createNative() {
        return create<T>(nullptr);
    }

    template <class T>
    static void defineMethods(MethodGroup& instance, MethodGroup& classLevel) {
        MethodTable<T> methods(instance, classLevel);
        T::defineMethods(methods);
    }

    template <class T>
    static consteval NativeClass nativeClass() {
        if constexpr (std::is_abstract_v<T> || !kDefaultMade<T>)
            return {nullptr, sizeof(T), std::is_final_v<T>, &defineMethods<T>};
        else
            return {&createNative<T>, sizeof(T), std::is_final_v<T>, &defineMethods<T>};
    }

  private:
    // A class may bring its own memory by operators new and delete.
    template <class T>
    static void* allocate(std::size_t size) {
        if constexpr (requires { T::operator new(size); })
            return T::operator new(size);
        else
            return ::operator new(size);
    }
    template <class T>
    static void deallocate(void* memory) noexcept {
        if constexpr (requires { T::operator delete(memory); })
            T::operator delete(memory);
        else
            ::operator delete(memory);
    }

    template <class T>
    static constexpr bool kDefaultMade = requires(void* memory) {
        ::new (memory) T();
    };
};

}  // namespace pelvor
