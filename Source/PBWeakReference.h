// SPDX-License-Identifier: Apache-2.0
// PBWeakReference: an object that refers to another without keeping it alive, and look-ups by it.
#pragma once

#include "Foundation/NSRange.h"
#include "Runtime/NSObject.h"

namespace pelvor {

struct Category;
class NSArray;
class NSMutableSet;
class NSSet;

/// Refers to an object, which it does not retain, and hashes and compares as that object's identity. It is
/// not cleared when the object goes: an object leaves the sets and queues that it joined before it is
/// destroyed. A reference does not change. Gone references of this very class are used again: each thread
/// keeps one, a pool of at most 50 the others. Any thread.
class PELVOR_EXPORT PBWeakReference : public NSObject {
    PELVOR_CLASS(PBWeakReference, NSObject);

  public:
    static void initialize(Class* cls);
    static PBWeakReference* weakReferenceWithObject(id object, Class* cls = classObject());
    /// Sets the object through `setObject`, so that a subclass hears of it.
    static Retained<PBWeakReference> initWithObject(id object, Class* cls = classObject());

    id object() { return _weakObj; }
    virtual void setObject(id object) { _weakObj = object; }

    /// The object's address.
    std::uintptr_t hash() override { return reinterpret_cast<std::uintptr_t>(_weakObj); }
    /// Whether `other` is a reference to the same object, or the object itself. Asked the other way round,
    /// the object knows nothing of its references.
    bool isEqual(id other) override;
    /// "PBWeakReference<0x…>", with the reference's own address.
    NSString* description() override;
    /// The same instance, retained.
    Retained<Object> copyWithZone(void* zone) override;

  protected:
    PBWeakReference() { setRecycles(); }
    ~PBWeakReference() = default;
    bool recycle() noexcept override;

  private:
    friend class LookUpReference;

    static void* operator new(std::size_t size);
    static void operator delete(void* memory) noexcept;

    static Retained<Object> allocate(Class* cls);
    static PBWeakReference* takeSpare();
    static PBWeakReference* takePooled();
    bool recycleInPool() noexcept;

    id _weakObj = nullptr;
};

// Look-ups of a reference to the object. In an array each entry is asked whether it is equal to it; a set
// that holds the object itself counts as holding a reference to it.

/// NSNotFound if there is none.
PELVOR_EXPORT NSUInteger indexOfWeakReferenceObject(NSArray* array, id object);
PELVOR_EXPORT bool containsWeakReferenceObject(NSSet* set, id object);
/// Does nothing if an equal member is there.
PELVOR_EXPORT void addWeakReferenceObject(NSMutableSet* set, id object);
PELVOR_EXPORT void removeWeakReferenceObject(NSMutableSet* set, id object);

extern const Category NSArray_PBWeakReferenceAdditions_category;
extern const Category NSSet_PBWeakReferenceAdditions_category;
extern const Category NSMutableSet_PBWeakReferenceAdditions_category;

}  // namespace pelvor
