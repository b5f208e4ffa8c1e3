// SPDX-License-Identifier: Apache-2.0
// The registry of classes and categories, and the lists through which libraries and plug-ins join it.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "Runtime/Class.h"

namespace pelvor {

/// A named group of methods for a class. The class is found by its name, so a category may arrive before its
/// class.
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

/// The version of the binary interface between hosts and plug-ins: the layout of objects and records and the
/// C++ functions that headers name. The version grows with every change after which code has to be compiled
/// again. Code that was compiled with another version is refused.
inline constexpr std::uint32_t kInterfaceVersion = 4;  // also in cmake/PelvorPlugIn.cmake

/// The list of a library or plug-in: the libraries that it needs, its classes and its categories. A library
/// has one such constant, in a .cpp of its own. The list is registered once, as a whole, and for good.
///
///     constinit Library lampLibrary{"Lamp", kDependencies, kClasses, kCategories};
struct Library {
    constexpr Library(const char* itsName, std::span<Library* const> itsDependencies,
                      std::span<Class* const> itsClasses, std::span<const Category* const> itsCategories)
        : name(itsName), dependencies(itsDependencies), classes(itsClasses), categories(itsCategories) {}

    /// Whether this is the record of a library that was compiled with this interface version.
    bool canBeUsed() const { return mark == kMark && interfaceVersion == kInterfaceVersion; }

    // These two come first in every version.
    static constexpr std::uint64_t kMark = 0x50656c766f724c62;  // "PelvorLb"
    std::uint64_t mark = kMark;
    std::uint32_t interfaceVersion = kInterfaceVersion;

    std::atomic<bool> isRegistered{false};
    const char* name;
    std::span<Library* const> dependencies;
    std::span<Class* const> classes;
    std::span<const Category* const> categories;
};

/// Registers the library after the libraries that it needs; does nothing if the library is registered
/// already. Raises NSInvalidArgumentException if `library` is no library's record or has another interface
/// version, or if the name of a class is taken, and passes on what the code that fills a method table raises.
/// After such an exception nothing is registered, neither of the library nor of the libraries that it needs.
/// Any thread.
PELVOR_EXPORT void registerLibrary(Library& library);

/// Writes the registered classes, in the order of registration, to `buffer` as far as `capacity`
/// reaches, and returns how many there are. Any thread; the count may grow between two calls.
PELVOR_EXPORT std::size_t classList(Class** buffer, std::size_t capacity);

/// The registered class with this name, or the class that poses under the name; null if there is no such
/// class. Any thread.
PELVOR_EXPORT Class* classNamed(std::string_view name);

/// In one .cpp of a plug-in: names the list that the platform registers when it loads the plug-in's code.
#define PELVOR_PLUGIN(library) \
    extern "C" PELVOR_EXPORT ::pelvor::Library* pelvorPlugInLibrary() { return &library; }

}  // namespace pelvor
