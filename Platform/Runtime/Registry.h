// SPDX-License-Identifier: Apache-2.0
// The registry of classes and categories, and the lists through which libraries and plug-ins join it.
#pragma once

#include <atomic>
#include <cstddef>
#include <initializer_list>
#include <span>
#include <string_view>

#include "Runtime/Class.h"

namespace pelvor {

/// A named group of methods for a class, found by the class's name: it may arrive before the class.
struct Category {
    const char* name;
    const char* className;
    void (*defineMethods)(MethodGroup& instance, MethodGroup& classLevel);

    /// A category named `name` of the class behind T, with the methods that `Define` adds.
    template <class T, void (*Define)(MethodTable<T>&)>
    static constexpr Category of(const char* name) {
        return {name, kClassName<T>.text, [](MethodGroup& instance, MethodGroup& classLevel) {
                    MethodTable<T> methods(instance, classLevel);
                    Define(methods);
                }};
    }

  private:
    template <class T>
    static constexpr auto kClassName = detail::structName<T>();
};

/// The list of a library or plug-in: what it needs, its classes and its categories. One constant a
/// library, in its own .cpp. Registered once, as a whole, and for good.
struct Library {
    const char* name;
    std::span<Library* const> dependencies;
    std::span<Class* const> classes;
    std::span<const Category* const> categories;
    std::atomic<bool> isRegistered{false};
};

/// Registers the library after those that it needs; does nothing if it is registered. Raises
/// NSInvalidArgumentException if a class's name is taken, or what the filling of a method table raises; then
/// nothing is registered, neither of it nor of what it needs. Any thread.
PELVOR_EXPORT void registerLibrary(Library& library);

/// Writes the registered classes, in the order of registration, to `buffer` as far as `capacity`
/// reaches, and answers how many there are. Any thread; the count may grow between two calls.
PELVOR_EXPORT std::size_t classList(Class** buffer, std::size_t capacity);

/// The registered class of that name, or what poses under it; none when there is none. Any thread.
PELVOR_EXPORT Class* classNamed(std::string_view name);

/// In one .cpp of a plug-in: the list that the platform looks for when it loads the plug-in's code.
#define PELVOR_PLUGIN(library) \
    extern "C" PELVOR_EXPORT ::pelvor::Library* pelvorPlugInLibrary() { return &library; }

}  // namespace pelvor
