// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSNotification.h"

#include <atomic>
#include <utility>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSDictionary.h"
#include "Runtime/NSException.h"

namespace pelvor {
namespace {

// The notification that the thread's last post left.
constinit thread_local NSNotification* spareNotification = nullptr;

struct EndOfThread {
    ~EndOfThread() {
        if (auto* spare = std::exchange(spareNotification, nullptr)) spare->release();
    }
};

bool isLiteral(NSString* string) { return string->isa() == NSConstantString::classObject(); }

}  // namespace

PELVOR_DEFINE_CLASS(NSNotification, foundationLibrary) {
    methods.creator<"notificationWithName:object:", &NSNotification::notificationWithName_object>();
    methods.creator<"notificationWithName:object:userInfo:",
                    &NSNotification::notificationWithName_object_userInfo>();
    methods.instance<"name", &NSNotification::name>();
    methods.instance<"object", &NSNotification::object>();
    methods.instance<"userInfo", &NSNotification::userInfo>();
}

// These are part of every post, so they make no calls of their own.
[[gnu::always_inline]] inline void NSNotification::fill(NSString* name, id object, NSDictionary* userInfo) {
    _name = isLiteral(name) ? name : name->copy().leak();
    if (object) _object.set(object);
    if (userInfo) _userInfo.set(userInfo);
}

[[gnu::always_inline]] inline void NSNotification::clear() noexcept {
    NSString* name = std::exchange(_name, nullptr);
    if (name && !isLiteral(name)) name->release();
    if (_object) _object = nullptr;
    if (_userInfo) _userInfo = nullptr;
}

NSNotification* NSNotification::notificationWithName_object(NSString* name, id object, Class* cls) {
    return notificationWithName_object_userInfo(name, object, nullptr, cls);
}

NSNotification* NSNotification::notificationWithName_object_userInfo(NSString* name, id object,
                                                                     NSDictionary* userInfo, Class* cls) {
    if (!name) raiseException(NSInvalidArgumentException, u"notificationWithName: the name is null"_ns);
    auto notification = make<NSNotification>(cls);
    notification->fill(name, object, userInfo);
    return std::move(notification).autorelease();
}

NSNotification::~NSNotification() { clear(); }

Retained<Object> NSNotification::copyWithZone(void*) { return Retained<Object>::retaining(this); }

NSString* NSNotification::description() {
    return NSString::stringWithFormat(u"<%s %p: name = %@; object = %@; userInfo = %@>"_ns, isa()->name(),
                                      static_cast<void*>(this), _name, _object, _userInfo);
}

PostedNotification::PostedNotification(NSString* name, id object, NSDictionary* userInfo) {
    bool mayReuse = spareNotification && NSNotification::classRecord.makesOwnInstances();
    _notification = mayReuse ? std::exchange(spareNotification, nullptr) : makeForThread();
    _notification->fill(name, object, userInfo);
}

[[gnu::noinline]] NSNotification* PostedNotification::makeForThread() {
    static thread_local EndOfThread endOfThread;
    return make<NSNotification>().leak();
}

PostedNotification::~PostedNotification() {
    bool mayKeep = _notification->retainCount() == 1 && _notification->isa() == NSNotification::classObject();
    if (mayKeep) {
        std::atomic_thread_fence(std::memory_order_acquire);  // after what other threads did with it
        _notification->clear();                               // may post, and leave a spare
    }
    if (mayKeep && !spareNotification)
        spareNotification = _notification;
    else
        _notification->release();
}

}  // namespace pelvor
