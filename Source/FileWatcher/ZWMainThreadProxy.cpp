// SPDX-License-Identifier: Apache-2.0
#include "FileWatcher/ZWMainThreadProxy.h"

#include "BaseLibrary.h"
#include "Foundation/NSObject-MainThread.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

void defineProxies(MethodTable<NSObject>& methods) {
    methods.instance<"mainThreadProxy", &mainThreadProxy>();
    methods.instance<"copyMainThreadProxy", &copyMainThreadProxy>();
}

}  // namespace

constinit const Category NSObject_ZWMainThreadProxy_category =
    Category::of<NSObject, defineProxies>("ZWMainThreadProxy");

PELVOR_DEFINE_CLASS(ZWMainThreadProxy, baseLibrary) {
    methods.creator<"initWithTarget:", &ZWMainThreadProxy::initWithTarget>();
    methods.instance<"respondsToSelector:", &ZWMainThreadProxy::respondsToSelector>();
    methods.instance<"methodSignatureForSelector:", &ZWMainThreadProxy::methodSignatureForSelector>();
    methods.instance<"forwardInvocation:", &ZWMainThreadProxy::forwardInvocation>();
    methods.instance<"performSelector:", &ZWMainThreadProxy::performSelector>();
    methods.instance<"performSelector:withObject:", &ZWMainThreadProxy::performSelector_withObject>();
    methods.instance<"mainThreadProxy", &ZWMainThreadProxy::mainThreadProxy>();
    methods.instance<"copyMainThreadProxy", &ZWMainThreadProxy::copyMainThreadProxy>();
}

Retained<ZWMainThreadProxy> ZWMainThreadProxy::initWithTarget(id target, Class* cls) {
    auto self = make<ZWMainThreadProxy>(cls);
    self->_target = target;
    return self;
}

bool ZWMainThreadProxy::implements(SEL selector) { return NSObject::respondsToSelector(selector); }

bool ZWMainThreadProxy::respondsToSelector(SEL selector) {
    return implements(selector) || (_target && _target->respondsToSelector(selector));
}

NSMethodSignature* ZWMainThreadProxy::methodSignatureForSelector(SEL selector) {
    if (NSMethodSignature* own = NSObject::methodSignatureForSelector(selector)) return own;
    return _target ? _target->methodSignatureForSelector(selector) : nullptr;
}

void ZWMainThreadProxy::requireTarget(SEL selector) {
    if (!_target || !_target->respondsToSelector(selector)) doesNotRecognizeSelector(selector);
}

void ZWMainThreadProxy::forwardInvocation(NSInvocation* invocation) {
    requireArgument(invocation, "forwardInvocation:", "the invocation");
    requireTarget(invocation->selector());
    invocation->retainArguments();
    auto target = Retained<Object>::retaining(_target);
    performSelectorOnMainThread_withObject_waitUntilDone(invocation, "invokeWithTarget:"_sel, target, true);
}

id ZWMainThreadProxy::performSelector(SEL selector) { return performSelector_withObject(selector, nullptr); }

id ZWMainThreadProxy::performSelector_withObject(SEL selector, id object) {
    if (implements(selector)) return NSObject::performSelector_withObject(selector, object);
    requireTarget(selector);
    auto target = Retained<Object>::retaining(_target);
    auto argument = Retained<Object>::retaining(object);
    performSelectorOnMainThread_withObject_waitUntilDone(target, selector, argument, true);
    return nullptr;
}

ZWMainThreadProxy* mainThreadProxy(NSObject* object) { return copyMainThreadProxy(object).autorelease(); }

Retained<ZWMainThreadProxy> copyMainThreadProxy(NSObject* object) {
    if (auto* proxy = cast<ZWMainThreadProxy>(object)) return proxy->copyMainThreadProxy();
    return ZWMainThreadProxy::initWithTarget(object);
}

}  // namespace pelvor
