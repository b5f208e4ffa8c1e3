// SPDX-License-Identifier: Apache-2.0
// Object: what every object is, and what `id` points to.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "Runtime/Export.h"
#include "Runtime/Retained.h"
#include "Runtime/Selector.h"

namespace pelvor {

class Class;
class NSInvocation;
class NSMethodSignature;
class NSString;
class Object;

/// Any object, or null.
using id = Object*;

/// The root of the C++ classes behind both class trees, NSObject's and NSProxy's: a class and a
/// reference count. Objects begin with a count of one, are made through their class
/// (`make<T>()`) and destroyed by the release that takes the last count. Counting is safe on any
/// thread; everything else follows the thread rule of the object's class.
class PELVOR_EXPORT Object {
  public:
    /// Where the lists of PELVOR_CREATORS begin.
    template <class Self>
    struct CreatorCheck {};
    struct HiddenCreators {};

    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    /// The class record in which messages are looked up. `class_` may return another class.
    Class* isa() const noexcept { return _isa; }

    Object* retain() noexcept {
        _state.fetch_add(kReference, std::memory_order_relaxed);
        return this;
    }
    void release() noexcept {
        // The count comes first: a look at anything else before it would cost half as much again.
        State before = _state.fetch_sub(kReference, std::memory_order_acq_rel);
        if (before < 2 * kReference) end(before);
    }
    /// Has the current autorelease pool of this thread release the object once, at the end of the pool.
    Object* autorelease();
    std::uint32_t retainCount() const noexcept {
        return static_cast<std::uint32_t>(_state.load(std::memory_order_relaxed) / kReference);
    }

    /// The class that the object shows to others; a proxy may show the class of its target.
    virtual Class* class_();
    virtual bool isKindOfClass(Class* cls);
    virtual bool isMemberOfClass(Class* cls);
    virtual bool isProxy() { return false; }
    /// Whether the object has a method for the selector. Any thread.
    virtual bool respondsToSelector(SEL selector);
    /// The types of the method that the object has for the selector, or null.
    virtual NSMethodSignature* methodSignatureForSelector(SEL selector);
    /// Called with a message that has a signature and no method. The base raises as
    /// `doesNotRecognizeSelector` does.
    virtual void forwardInvocation(NSInvocation* invocation);
    /// Raises NSInvalidArgumentException: the object has no such method.
    [[noreturn]] virtual void doesNotRecognizeSelector(SEL selector);

    /// Whether both are the same object; classes with contents override this and compare the contents. Equal
    /// objects have equal hashes.
    virtual bool isEqual(id other) { return this == other; }
    virtual std::uintptr_t hash() { return reinterpret_cast<std::uintptr_t>(this); }
    /// A text for logs and formats; "<Class: 0x…>" unless a class says more.
    virtual NSString* description();

    /// Sends the message and returns its result if the result is an object, else null. Arguments that the
    /// method does not take are dropped; arguments that are missing are null.
    virtual id performSelector(SEL selector);
    virtual id performSelector_withObject(SEL selector, id object);
    virtual id performSelector_withObject_withObject(SEL selector, id first, id second);

  protected:
    constexpr Object() noexcept = default;
    constexpr Object(Class* isa, std::uint32_t count) noexcept : _isa(isa), _state(count * kReference) {}
    ~Object() = default;

    /// Destroys the object as its own C++ class; PELVOR_CLASS defines it.
    virtual void destroy() noexcept = 0;

    /// A class that keeps objects for another use says so when one is made, and overrides `recycle`.
    void setRecycles() noexcept { _state.fetch_or(kRecycles, std::memory_order_relaxed); }
    /// Called by the release that takes the last count, which the object has again: true keeps the object
    /// with that count, false destroys it. Not called while weak handles refer to it.
    virtual bool recycle() noexcept { return false; }
    /// Whether the caller's reference is the only one, and no other can come into being.
    bool isOnlyReference() const noexcept {
        return (_state.load(std::memory_order_acquire) & ~kRecycles) == kReference;
    }

    /// The count of objects that live as long as the process; balanced use never brings it near 0.
    static constexpr std::uint32_t kImmortal = 0x40000000;

  private:
    friend struct Instances;
    friend class WeakHandle;

    // The count, in steps of `kReference`, above the marks.
    using State = std::uint64_t;
    static constexpr State kRecycles = 1;
    static constexpr State kIsWatched = 2;  // weak handles are to be told of its end
    static constexpr State kReference = 4;

    void end(State before) noexcept {
        if (before != kReference) return endMarked(before);
        stayWhileEnding();
        destroy();
    }
    // What is released as the object ends may retain and release the object, which must not end it again.
    void stayWhileEnding() noexcept { _state.store(kReference, std::memory_order_relaxed); }
    void endMarked(State before) noexcept;
    void endWatch() noexcept;

    Class* _isa = nullptr;
    std::atomic<State> _state{kReference};
};

static_assert(sizeof(Object) <= 24);

}  // namespace pelvor
