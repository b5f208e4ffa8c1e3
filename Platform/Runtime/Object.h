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

/// Any object, or none.
using id = Object*;

/// The root of the C++ classes behind both class trees, NSObject's and NSProxy's: a class and a
/// reference count. Objects begin with a count of one, are made through their class
/// (`make<T>()`) and destroyed by the release that takes the last count. Counting is safe on any
/// thread; everything else follows the thread rule of the object's class.
class PELVOR_EXPORT Object {
  public:
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    /// The class record that messages are looked up in. `class_` may answer otherwise.
    Class* isa() const noexcept { return _isa; }

    Object* retain() noexcept {
        _retainCount.fetch_add(1, std::memory_order_relaxed);
        return this;
    }
    void release() noexcept {
        if (_flags.load(std::memory_order_relaxed) & kOverridesRelease) [[unlikely]]
            return overriddenRelease();
        releaseReference();
    }
    /// Leaves one release to the current autorelease pool of this thread.
    Object* autorelease();
    std::uint32_t retainCount() const noexcept { return _retainCount.load(std::memory_order_relaxed); }

    /// The class of the object as it wants to be seen.
    virtual Class* class_();
    virtual bool isKindOfClass(Class* cls);
    virtual bool isMemberOfClass(Class* cls);
    virtual bool isProxy() { return false; }
    /// Whether the object answers the message. Any thread.
    virtual bool respondsToSelector(SEL selector);
    /// The types of the message's method; none when the object does not answer it.
    virtual NSMethodSignature* methodSignatureForSelector(SEL selector);
    /// Called with a message that has a signature and no method. The base raises as
    /// `doesNotRecognizeSelector` does.
    virtual void forwardInvocation(NSInvocation* invocation);
    /// Raises NSInvalidArgumentException: the object has no such method.
    [[noreturn]] virtual void doesNotRecognizeSelector(SEL selector);

    /// Identity, unless a class has a notion of equal contents. Equal objects have equal hashes.
    virtual bool isEqual(id other) { return this == other; }
    virtual std::uintptr_t hash() { return reinterpret_cast<std::uintptr_t>(this); }
    /// A text for logs and formats; "<Class: 0x…>" unless a class says more.
    virtual NSString* description();

    /// Sends the message and answers its result if that is an object, else none. Objects more than
    /// the method takes are dropped, missing ones are none.
    virtual id performSelector(SEL selector);
    virtual id performSelector_withObject(SEL selector, id object);
    virtual id performSelector_withObject_withObject(SEL selector, id first, id second);

  protected:
    constexpr Object() noexcept = default;
    constexpr Object(Class* isa, std::uint32_t count) noexcept : _isa(isa), _retainCount(count) {}
    ~Object() = default;

    /// Destroys the object as its own C++ class; PELVOR_CLASS defines it.
    virtual void destroy() noexcept = 0;

    /// A class that has its own idea of release calls this when an object is made, and overrides
    /// `overriddenRelease`, from where `releaseReference` is the ordinary release.
    void setOverridesRelease() noexcept { _flags.fetch_or(kOverridesRelease, std::memory_order_relaxed); }
    virtual void overriddenRelease() noexcept { releaseReference(); }
    void releaseReference() noexcept {
        // Not a release with a fence before `destroy`: the thread sanitizer does not know fences.
        if (isOnlyReference() || _retainCount.fetch_sub(1, std::memory_order_acq_rel) == 1) end();
    }
    /// Whether the caller's reference is the only one, and no other can come into being: a release will
    /// end the object and need not count down for it.
    bool isOnlyReference() const noexcept {
        return _retainCount.load(std::memory_order_acquire) == 1 && !isWatched();
    }

    /// The count of objects that live as long as the process; balanced use never brings it near 0.
    static constexpr std::uint32_t kImmortal = 0x40000000;

  private:
    friend struct Instances;
    friend class WeakHandle;

    static constexpr std::uint32_t kOverridesRelease = 1;
    static constexpr std::uint32_t kIsWatched = 2;  // weak handles are to be told of its end

    bool isWatched() const noexcept { return _flags.load(std::memory_order_acquire) & kIsWatched; }
    void end() noexcept {
        if (isWatched()) [[unlikely]]
            endWatch();
        destroy();
    }
    void endWatch() noexcept;

    Class* _isa = nullptr;
    std::atomic<std::uint32_t> _retainCount{1};
    std::atomic<std::uint32_t> _flags{0};
};

static_assert(sizeof(Object) <= 24);

}  // namespace pelvor
