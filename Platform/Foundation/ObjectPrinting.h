// SPDX-License-Identifier: Apache-2.0
// Objects on streams and in the messages of failed tests: their descriptions as UTF-8.
#pragma once

#include <concepts>
#include <iosfwd>

#include "Runtime/Object.h"

namespace pelvor {

/// Prints the object's description; "(null)" for none.
PELVOR_EXPORT std::ostream& operator<<(std::ostream& stream, Object* object);

// What test programs print pointers and references to objects with.
template <std::derived_from<Object> T>
void PrintTo(T* object, std::ostream* stream) {
    *stream << static_cast<Object*>(object);
}
template <class T>
void PrintTo(const Retained<T>& object, std::ostream* stream) {
    *stream << static_cast<Object*>(object.get());
}

}  // namespace pelvor
