// SPDX-License-Identifier: Apache-2.0
// WeakHandle: a reference that does not keep its object alive and knows when it is gone.
#pragma once

#include <utility>

#include "Runtime/Object.h"

namespace pelvor {

/// Refers to an object without retaining it, and knows when the object is gone:
///
///     WeakHandle watched(view);
///     …
///     if (Retained<Object> alive = watched.object()) send(alive, "setNeedsDisplay"_sel);
///
/// A mark in the object's header makes the end of the object known to a table of handles; objects without
/// handles pay nothing for it. A handle is for one thread at a time; its object may be used, and may end, on
/// any thread.
class PELVOR_EXPORT WeakHandle {
  public:
    WeakHandle() = default;
    /// The caller holds the object while the constructor runs. Null gives an empty handle.
    explicit WeakHandle(Object* object);
    WeakHandle(WeakHandle&& other) noexcept : _watch(std::exchange(other._watch, nullptr)) {}
    WeakHandle& operator=(WeakHandle other) noexcept {
        std::swap(_watch, other._watch);
        return *this;
    }
    ~WeakHandle();

    /// The object, retained for the caller; null once the last reference to the object is gone, also while
    /// the object is being destroyed.
    Retained<Object> object() const;

  private:
    friend class Object;
    struct Watch;
    struct Watches;

    static Watches& watches();
    static bool retainUnlessEnding(Object* object) noexcept;

    Watch* _watch = nullptr;
};

}  // namespace pelvor
