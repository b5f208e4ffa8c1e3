// SPDX-License-Identifier: Apache-2.0
// Objects, ranges and selectors on streams and in the messages of failed tests.
#pragma once

#include <concepts>
#include <iosfwd>

#include "Foundation/NSRange.h"
#include "Runtime/Object.h"

namespace pelvor {

/// Prints the object's description as UTF-8, "(null)" for null.
PELVOR_EXPORT std::ostream& operator<<(std::ostream& stream, Object* object);
/// Prints "{3, 5}", location and length; "{NSNotFound, 0}" for what searches return that find nothing.
PELVOR_EXPORT std::ostream& operator<<(std::ostream& stream, NSRange range);
/// Prints the selector's name, "(null)" for the null selector.
PELVOR_EXPORT std::ostream& operator<<(std::ostream& stream, SEL selector);

// Test programs print pointers and references to objects by these.
template <std::derived_from<Object> T>
void PrintTo(T* object, std::ostream* stream) {
    *stream << static_cast<Object*>(object);
}
template <class T>
void PrintTo(const Retained<T>& object, std::ostream* stream) {
    *stream << static_cast<Object*>(object.get());
}

}  // namespace pelvor
