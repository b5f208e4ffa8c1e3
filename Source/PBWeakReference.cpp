// SPDX-License-Identifier: Apache-2.0
#include "PBWeakReference.h"

#include <mutex>

#include "BaseLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSMutableSet.h"
#include "Foundation/NSString.h"
#include "PBObjectPool.h"
#include "Runtime/Message.h"
#include "Runtime/Registry.h"
#include "Shared/RowMemory.h"

namespace pelvor {
namespace {

constexpr std::uint32_t kPoolCapacity = 50;

// Of all threads; made by `initialize`, never destroyed.
PBObjectPool* sharedPool = nullptr;

// The thread's own gone reference: most are made for one look-up, and the next is made when that is over.
constinit thread_local PBWeakReference* spareReference = nullptr;
constinit thread_local bool mayKeepSpare = false;

struct EndOfThread {
    ~EndOfThread() {
        mayKeepSpare = false;
        hasEnded = true;
        if (spareReference) std::exchange(spareReference, nullptr)->release();
    }
    bool hasEnded = false;
};

[[gnu::noinline]] bool openThread() {
    static thread_local EndOfThread endOfThread;
    return mayKeepSpare = !endOfThread.hasEnded;
}

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
    methods.classLevel<"weakReferenceWithObject:", &PBWeakReference::weakReferenceWithObject>();
    methods.classLevel<"initWithObject:", &PBWeakReference::initWithObject>();
    methods.instance<"object", &PBWeakReference::object>();
    methods.instance<"setObject:", &PBWeakReference::setObject>();
    methods.instance<"hash", &PBWeakReference::hash>();
    methods.instance<"isEqual:", &PBWeakReference::isEqual>();
    methods.instance<"copyWithZone:", &PBWeakReference::copyWithZone>();
}

void PBWeakReference::initialize(Class* cls) {
    if (cls == classObject()) sharedPool = PBObjectPool::initWithCapacity(kPoolCapacity).leak();
}

PBWeakReference* PBWeakReference::weakReferenceWithObject(id object, Class* cls) {
    return initWithObject(object, cls).autorelease();
}

Retained<PBWeakReference> PBWeakReference::initWithObject(id object, Class* cls) {
    if (PBWeakReference* spare = cls == classObject() ? takeSpare() : nullptr) {
        spare->_weakObj = object;
        return Retained<PBWeakReference>::adopting(spare);
    }
    auto reference = make<PBWeakReference>(cls);
    reference->setObject(object);
    return reference;
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

// MARK: Recycling

Retained<Object> PBWeakReference::allocate(Class* cls) {
    if (PBWeakReference* spare = cls == classObject() ? takeSpare() : nullptr)
        return Retained<Object>::adopting(spare);
    return Retained<Object>::adopting(cls->createInstance());
}

// A gone reference, count one; none if there is none, or another class poses as this one.
PBWeakReference* PBWeakReference::takeSpare() {
    if (!classRecord.makesOwnInstances()) [[unlikely]]
        return nullptr;
    if (spareReference) [[likely]]
        return std::exchange(spareReference, nullptr);
    return takePooled();
}

[[gnu::noinline]] PBWeakReference* PBWeakReference::takePooled() {
    if (sharedPool->isEmpty()) return nullptr;
    std::lock_guard guard(*sharedPool->_lock);
    return static_cast<PBWeakReference*>(sharedPool->popObject().leak());
}

bool PBWeakReference::recycle() noexcept {
    if (isa() != &classRecord) return false;
    _weakObj = nullptr;
    if (mayKeepSpare && !spareReference) [[likely]] {
        spareReference = this;
        return true;
    }
    return recycleInPool();
}

[[gnu::noinline]] bool PBWeakReference::recycleInPool() noexcept {
    if (!spareReference && openThread()) {
        spareReference = this;
        return true;
    }
    if (sharedPool->isFull()) return false;
    std::lock_guard guard(*sharedPool->_lock);
    return sharedPool->poolObject(this);
}

// MARK: Memory

namespace {

// In front of each reference, to tell a larger one, of a subclass, from those that stand in rows.
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

// A reference for one look-up. The thread's gone one, if it has any, is borrowed from its place and put back
// there, unless a set has kept it.
class LookUpReference {
  public:
    explicit LookUpReference(id object) : _reference(PBWeakReference::initWithObject(object).leak()) {}
    ~LookUpReference() {
        if (mayKeepSpare && !spareReference && _reference->isOnlyReference() &&
            _reference->isa() == PBWeakReference::classObject()) [[likely]] {
            _reference->_weakObj = nullptr;
            spareReference = _reference;
        } else {
            _reference->release();
        }
    }
    LookUpReference(const LookUpReference&) = delete;
    LookUpReference& operator=(const LookUpReference&) = delete;

    operator PBWeakReference*() const { return _reference; }

  private:
    PBWeakReference* _reference;
};

NSUInteger indexOfWeakReferenceObject(NSArray* array, id object) {
    return array->indexOfObject(LookUpReference(object));
}

bool containsWeakReferenceObject(NSSet* set, id object) {
    return set->containsObject(LookUpReference(object));
}

void addWeakReferenceObject(NSMutableSet* set, id object) { set->addObject(LookUpReference(object)); }

void removeWeakReferenceObject(NSMutableSet* set, id object) { set->removeObject(LookUpReference(object)); }

}  // namespace pelvor
