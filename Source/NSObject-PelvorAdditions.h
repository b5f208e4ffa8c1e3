// SPDX-License-Identifier: Apache-2.0
// Small operations that every object has, and an object that equals nothing but itself.
#pragma once

#include "Runtime/NSObject.h"

namespace pelvor {

/// A dictionary key that no other object equals. Made with `new` or `init`. A copy of one is the same
/// instance, so a dictionary that copies its keys keeps it findable. Any thread.
class PELVOR_EXPORT PBUniqueObject : public NSObject {
    PELVOR_CLASS(PBUniqueObject, NSObject);

  public:
    /// The object's address.
    std::uintptr_t hash() override { return reinterpret_cast<std::uintptr_t>(this); }
    bool isEqual(id other) override { return this == other; }
    /// The same instance, retained.
    Retained<Object> copyWithZone(void* zone) override { return Retained<Object>::retaining(this); }
    Retained<Object> mutableCopyWithZone(void* zone) override { return Retained<Object>::retaining(this); }

  protected:
    PBUniqueObject() = default;
    ~PBUniqueObject() = default;
};

}  // namespace pelvor
