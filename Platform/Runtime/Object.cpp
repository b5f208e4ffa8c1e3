// SPDX-License-Identifier: Apache-2.0
#include "Runtime/Object.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "Runtime/Message.h"
#include "Runtime/NSInvocation.h"
#include "Runtime/Private/Failures.h"

namespace pelvor {

void Object::endMarked(State before) noexcept {
    if (before & kIsWatched) {
        endWatch();
        stayWhileEnding();
    } else {
        _state.store(before, std::memory_order_relaxed);
        if (recycle()) return;
    }
    destroy();
}

Class* Object::class_() { return _isa; }

bool Object::isKindOfClass(Class* cls) { return _isa->isSubclassOfClass(cls); }

bool Object::isMemberOfClass(Class* cls) { return _isa == cls; }

bool Object::respondsToSelector(SEL selector) {
    const CacheEntry* entry = _isa->cached(selector);
    if (entry->selector == selector) return entry->function != nullptr;
    return _isa->instancesRespondTo(selector);
}

NSMethodSignature* Object::methodSignatureForSelector(SEL selector) {
    const CacheEntry* entry = _isa->cached(selector);
    if (entry->selector == selector) return entry->signature;
    return _isa->signatureOfInstanceMethod(selector);
}

void Object::forwardInvocation(NSInvocation* invocation) {
    requireNotNull(invocation, "forwardInvocation:", "the invocation");
    doesNotRecognizeSelector(invocation->selector());
}

void Object::doesNotRecognizeSelector(SEL selector) {
    char address[32];
    std::snprintf(address, sizeof address, "%p", static_cast<void*>(this));
    std::string reason = methodName(this, selector) + ": unrecognized selector sent to " +
                         (_isa->isMetaclass() ? "class " : "instance ") + address;
    if (!_isa->isListed()) reason += std::string("; the class is in no library's list");
    throw NSException(NSInvalidArgumentException, reason);
}

namespace {

// Sends a message with as many of the two objects as the method takes. Returns the result if it is an object,
// else null.
id perform(Object* target, SEL selector, id first, id second) {
    NSMethodSignature* signature = target->methodSignatureForSelector(selector);
    if (!signature) target->doesNotRecognizeSelector(selector);
    if (signature->argumentCount() > 2)
        throw NSException(NSInvalidArgumentException, std::string("performSelector: ") + selector.name() +
                                                          " takes more than two arguments");
    auto invocation = NSInvocation::initWithMethodSignature(signature);
    invocation->setSelector(selector);
    const id objects[] = {first, second};
    for (std::uint32_t i = 0; i < signature->argumentCount(); ++i)
        if (objects[i]) invocation->setArgument(static_cast<int>(i) + 2, objects[i]);
    invocation->invokeWithTarget(target);
    char type = signature->methodReturnType()[0];
    if (type != '@' && type != '#') return nullptr;
    id result = nullptr;
    invocation->getReturnValue(&result);
    return result;
}

}  // namespace

id Object::performSelector(SEL selector) {
    if (auto function = detail::matchingFunction(_isa, selector, SignatureFor<id>::kKey))
        return reinterpret_cast<id (*)(Object*, SEL)>(function)(this, selector);
    return perform(this, selector, nullptr, nullptr);
}

id Object::performSelector_withObject(SEL selector, id object) {
    if (auto function = detail::matchingFunction(_isa, selector, SignatureFor<id, id>::kKey))
        return reinterpret_cast<id (*)(Object*, SEL, id)>(function)(this, selector, object);
    // The form that most actions, timers and deferred messages have.
    if (auto function = detail::matchingFunction(_isa, selector, SignatureFor<void, id>::kKey)) {
        reinterpret_cast<void (*)(Object*, SEL, id)>(function)(this, selector, object);
        return nullptr;
    }
    return perform(this, selector, object, nullptr);
}

id Object::performSelector_withObject_withObject(SEL selector, id first, id second) {
    if (auto function = detail::matchingFunction(_isa, selector, SignatureFor<id, id, id>::kKey))
        return reinterpret_cast<id (*)(Object*, SEL, id, id)>(function)(this, selector, first, second);
    return perform(this, selector, first, second);
}

}  // namespace pelvor
