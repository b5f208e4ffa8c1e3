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

/// A reference that does not retain its object, for collections that are not to keep their objects alive.
/// Hash and comparison of a reference stand for the identity of its object:
///
///     auto watchers = NSMutableSet::init();
///     addWeakReferenceObject(watchers, view);        // the set holds a reference to the view
///     containsWeakReferenceObject(watchers, view);   // true
///
/// The reference is not cleared when its object ends: an object leaves the collections that hold references
/// to it before it is destroyed. (PBSafeWeakReference notices the end of its object.)
///
/// References do not change. Up to 50 references that have ended wait in a pool, and the reference that came
/// last is used again first. Objects of subclasses do not go to the pool. Any thread.
class PELVOR_EXPORT PBWeakReference : public NSObject {
    PELVOR_CLASS(PBWeakReference, NSObject);
    PELVOR_CREATORS(weakReferenceWithObject, initWithObject);

  public:
    static void initialize(Class* cls);
    static PBWeakReference* weakReferenceWithObject(id object, Class* cls = classObject());
    /// Sets the object by `setObject`, which a subclass may override.
    static Retained<PBWeakReference> initWithObject(id object, Class* cls = classObject());

    id object() { return _weakObj; }
    virtual void setObject(id object) { _weakObj = object; }

    /// The address of the object.
    std::uintptr_t hash() override { return reinterpret_cast<std::uintptr_t>(_weakObj); }
    /// Whether `other` is a reference to the same object, or the object itself. The object's own `isEqual`
    /// knows nothing of references.
    bool isEqual(id other) override;
    /// "PBWeakReference<0x…>", with the address of the reference.
    NSString* description() override;
    /// The same instance, retained.
    Retained<Object> copyWithZone(void* zone) override;
    Retained<PBWeakReference> copy() { return Retained<PBWeakReference>::retaining(this); }

    // C++ only
    /// Does what the inherited operation does, but more quickly for the only owner: the count need not be
    /// changed for a reference that goes to the pool.
    void release() noexcept {
        if (!isOnlyReference() || !recycle()) Object::release();
    }

  protected:
    PBWeakReference() { setRecycles(); }
    ~PBWeakReference() = default;
    bool recycle() noexcept override;

  private:
    // References that a thread makes one after the other stand one after the other in memory.
    static void* operator new(std::size_t size);
    static void operator delete(void* memory) noexcept;

    static Retained<Object> allocate(Class* cls);

    Unretained<Object> _weakObj = nullptr;
};

// Look-ups by a reference to `object`. In an array each entry is asked whether it is equal to the reference;
// a set that holds the object itself counts as holding a reference to it.

/// The index of the first reference to the object; NSNotFound if there is no such reference.
PELVOR_EXPORT NSUInteger indexOfWeakReferenceObject(NSArray* array, id object);
PELVOR_EXPORT bool containsWeakReferenceObject(NSSet* set, id object);
/// Adds a reference to the object, unless the set has an equal member.
PELVOR_EXPORT void addWeakReferenceObject(NSMutableSet* set, id object);
PELVOR_EXPORT void removeWeakReferenceObject(NSMutableSet* set, id object);

extern const Category NSArray_PBWeakReferenceAdditions_category;
extern const Category NSSet_PBWeakReferenceAdditions_category;
extern const Category NSMutableSet_PBWeakReferenceAdditions_category;

}  // namespace pelvor
