// SPDX-License-Identifier: Apache-2.0
// PBUniqueObject: an object that equals nothing but itself.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

/// A dictionary key that equals no other object:
///
///     static PBUniqueObject* const kLayoutKey = make<PBUniqueObject>().leak();
///     info->setObject_forKey(layout, kLayoutKey);
///
/// A dictionary copies its keys. The copy of such an object is the object itself, so the dictionary finds the
/// key. Any thread.
class PELVOR_EXPORT PBUniqueObject : public NSObject {
    PELVOR_CLASS(PBUniqueObject, NSObject);

  public:
    /// The object's address.
    std::uintptr_t hash() override { return reinterpret_cast<std::uintptr_t>(this); }
    bool isEqual(id other) override { return this == other; }
    // All copies are this object itself, retained.
    Retained<Object> copyWithZone(void* zone) override { return Retained<Object>::retaining(this); }
    Retained<Object> mutableCopyWithZone(void* zone) override { return Retained<Object>::retaining(this); }
    Retained<PBUniqueObject> copy() { return Retained<PBUniqueObject>::retaining(this); }
    Retained<PBUniqueObject> mutableCopy() { return copy(); }

  protected:
    PBUniqueObject() = default;
    ~PBUniqueObject() = default;
};

}  // namespace pelvor
