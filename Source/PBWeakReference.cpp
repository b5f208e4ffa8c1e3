// SPDX-License-Identifier: Apache-2.0
#include "PBWeakReference.h"

#include <atomic>
#include <mutex>
#include <thread>

#include "BaseLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSMutableSet.h"
#include "Foundation/NSString.h"
#include "PBObjectPool.h"
#include "Runtime/Message.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"
#include "Shared/RowMemory.h"

namespace pelvor {
namespace {

// The pool of all threads for references that have ended. Its lock is taken whenever a reference is made or
// ends, and held for a few instructions, so that a thread spins for it instead of going to sleep.
class SparePool {
  public:
    // Takes a reference out; returns null if the pool is empty.
    PBWeakReference* take() noexcept {
        if (_pool->isEmpty()) return nullptr;
        std::lock_guard guard(*this);
        return static_cast<PBWeakReference*>(_pool->popObject().leak());
    }
    // Takes over the caller's reference if there is room, and returns whether there was room.
    bool put(PBWeakReference* reference) noexcept {
        if (_pool->isFull()) return false;
        std::lock_guard guard(*this);
        return _pool->poolObject(reference);
    }
    void lock() noexcept {
        while (_isLocked.exchange(true, std::memory_order_acquire)) std::this_thread::yield();
    }
    void unlock() noexcept { _isLocked.store(false, std::memory_order_release); }

  private:
    static constexpr std::uint32_t kCapacity = 50;

    PBObjectPool* _pool = PBObjectPool::initWithCapacity(kCapacity).leak();
    std::atomic<bool> _isLocked{false};
};

// Made by `initialize`, never destroyed.
SparePool* spares = nullptr;

void defineArrayAdditions(MethodTable<NSArray>& methods) {
    methods.instance<"indexOfWeakReferenceObject:", &indexOfWeakReferenceObject>();
}
void defineSetAdditions(MethodTable<NSSet>& methods) {
    methods.instance<"containsWeakReferenceObject:", &containsWeakReferenceObject>();
}
void defineMutableSetAdditions(MethodTable<NSMutableSet>& methods) {
    methods.instance<"addWeakReferenceObject:", &addWeakReferenceObject>();
    methods.instance<"removeWeakReferenceObject:", &removeWeakReferenceObject>();
}

}  // namespace

constinit const Category NSArray_PBWeakReferenceAdditions_category =
    Category::of<NSArray, defineArrayAdditions>("PBWeakReferenceAdditions");
constinit const Category NSSet_PBWeakReferenceAdditions_category =
    Category::of<NSSet, defineSetAdditions>("PBWeakReferenceAdditions");
constinit const Category NSMutableSet_PBWeakReferenceAdditions_category =
    Category::of<NSMutableSet, defineMutableSetAdditions>("PBWeakReferenceAdditions");

PELVOR_DEFINE_CLASS(PBWeakReference, baseLibrary) {
    methods.classLevel<"initialize", &PBWeakReference::initialize>();
    methods.classLevelAs<"alloc", &PBWeakReference::allocate>();
    methods.creator<"weakReferenceWithObject:", &PBWeakReference::weakReferenceWithObject>();
    methods.creator<"initWithObject:", &PBWeakReference::initWithObject>();
    methods.instance<"object", &PBWeakReference::object>();
    methods.instance<"setObject:", &PBWeakReference::setObject>();
    methods.instance<"hash", &PBWeakReference::hash>();
    methods.instance<"isEqual:", &PBWeakReference::isEqual>();
    methods.instance<"copyWithZone:", &PBWeakReference::copyWithZone>();
}

void PBWeakReference::initialize(Class* cls) {
    if (cls == classObject()) spares = new SparePool;
}

PBWeakReference* PBWeakReference::weakReferenceWithObject(id object, Class* cls) {
    return initWithObject(object, cls).autorelease();
}

Retained<PBWeakReference> PBWeakReference::initWithObject(id object, Class* cls) {
    auto reference = Retained<PBWeakReference>::adopting(static_cast<PBWeakReference*>(allocate(cls).leak()));
    reference->setObject(object);
    return reference;
}

// A class that poses as this one makes its own instances.
Retained<Object> PBWeakReference::allocate(Class* cls) {
    if (cls == classObject() && classRecord.makesOwnInstances())
        if (PBWeakReference* spare = spares->take()) return Retained<Object>::adopting(spare);
    return make<PBWeakReference>(cls);
}

bool PBWeakReference::recycle() noexcept {
    if (isa() != &classRecord) return false;
    _weakObj = nullptr;
    return spares->put(this);
}

bool PBWeakReference::isEqual(id other) {
    if (other && other->isa() == &classRecord)
        return static_cast<PBWeakReference*>(other)->_weakObj == _weakObj;
    auto* reference = cast<PBWeakReference>(other);
    return (reference ? reference->_weakObj : other) == _weakObj;
}

NSString* PBWeakReference::description() {
    return NSString::stringWithFormat(u"PBWeakReference<%p>"_ns, static_cast<void*>(this));
}

Retained<Object> PBWeakReference::copyWithZone(void*) { return Retained<Object>::retaining(this); }

// MARK: Memory

namespace {

// Stands in front of each reference, and tells references in rows from larger objects of a subclass, which
// are on the heap.
enum class Place : std::uint64_t { row, heap };
using Rows = RowMemory<PBWeakReference, sizeof(Place) + sizeof(PBWeakReference)>;

}  // namespace

void* PBWeakReference::operator new(std::size_t size) {
    bool isInRow = size == sizeof(PBWeakReference);
    auto* place = static_cast<Place*>(isInRow ? Rows::allocate() : ::operator new(sizeof(Place) + size));
    *place = isInRow ? Place::row : Place::heap;
    return place + 1;
}

void PBWeakReference::operator delete(void* memory) noexcept {
    auto* place = static_cast<Place*>(memory) - 1;
    if (*place == Place::row)
        Rows::free(place);
    else
        ::operator delete(place);
}

// MARK: Look-ups

NSUInteger indexOfWeakReferenceObject(NSArray* array, id object) {
    requireArgument(array, "indexOfWeakReferenceObject:", "the array");
    auto reference = PBWeakReference::initWithObject(object);
    return array->indexOfObject(reference);
}

bool containsWeakReferenceObject(NSSet* set, id object) {
    requireArgument(set, "containsWeakReferenceObject:", "the set");
    auto reference = PBWeakReference::initWithObject(object);
    return set->containsObject(reference);
}

void addWeakReferenceObject(NSMutableSet* set, id object) {
    requireArgument(set, "addWeakReferenceObject:", "the set");
    auto reference = PBWeakReference::initWithObject(object);
    set->addObject(reference);
}

void removeWeakReferenceObject(NSMutableSet* set, id object) {
    requireArgument(set, "removeWeakReferenceObject:", "the set");
    auto reference = PBWeakReference::initWithObject(object);
    set->removeObject(reference);
}

}  // namespace pelvor
