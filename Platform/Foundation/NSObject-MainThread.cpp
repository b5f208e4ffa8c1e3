// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSObject-MainThread.h"

#include <atomic>
#include <exception>

#include "Foundation/NSArray.h"
#include "Foundation/NSFormat.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSThread.h"
#include "Runtime/NSException.h"
#include "Runtime/NSProxy.h"
#include "Runtime/Registry.h"

namespace pelvor {
namespace {

template <class Root>
void defineMainThread(MethodTable<Root>& methods) {
    methods.template instance<"performSelectorOnMainThread:withObject:waitUntilDone:modes:",
                              &performSelectorOnMainThread_withObject_waitUntilDone_modes>();
    methods.template instance<"performSelectorOnMainThread:withObject:waitUntilDone:",
                              &performSelectorOnMainThread_withObject_waitUntilDone>();
}

// A call that another thread waits for, on that thread's stack: it may be gone as soon as it is done.
class AwaitedCall {
  public:
    AwaitedCall(id target, SEL selector, id argument)
        : _target(target), _selector(selector), _argument(argument) {}

    void call() {
        try {
            _target->performSelector_withObject(_selector, _argument);
        } catch (...) {
            _failure = std::current_exception();
        }
        _isDone.store(1, std::memory_order_release);
        _isDone.notify_one();
    }
    void wait() {
        _isDone.wait(0, std::memory_order_acquire);
        if (_failure) std::rethrow_exception(std::move(_failure));
    }

  private:
    id _target;
    SEL _selector;
    id _argument;
    std::atomic<int> _isDone{0};
    std::exception_ptr _failure;
};

}  // namespace

constinit const Category NSObject_MainThread_category =
    Category::of<NSObject, defineMainThread<NSObject>>("MainThread");

// Objects that stand in for others have no methods of NSObject's and would forward these; the message that is
// performed is the one to forward.
constinit const Category NSProxy_MainThread_category =
    Category::of<NSProxy, defineMainThread<NSProxy>>("MainThread");

void performSelectorOnMainThread_withObject_waitUntilDone_modes(id target, SEL selector, id argument,
                                                                bool wait, NSArray* modes) {
    if (!target) return;
    if (!selector) raiseException(NSInvalidArgumentException, u"no selector to perform"_ns);
    auto keptTarget = Retained<Object>::retaining(target);
    auto keptArgument = Retained<Object>::retaining(argument);
    if (wait && NSThread::isMainThread()) {
        target->performSelector_withObject(selector, argument);
    } else if (wait) {
        AwaitedCall awaited(target, selector, argument);
        NSRunLoop::mainRunLoop()->perform([&awaited] { awaited.call(); }, modes);
        awaited.wait();
    } else {
        auto call = [selector, keptTarget, keptArgument] {
            keptTarget->performSelector_withObject(selector, keptArgument);
        };
        NSRunLoop::mainRunLoop()->perform(std::move(call), modes);
    }
}

void performSelectorOnMainThread_withObject_waitUntilDone(id target, SEL selector, id argument, bool wait) {
    static NSArray* const commonModes = NSArray::initWithObjects({NSRunLoopCommonModes}).leak();
    performSelectorOnMainThread_withObject_waitUntilDone_modes(target, selector, argument, wait, commonModes);
}

}  // namespace pelvor
