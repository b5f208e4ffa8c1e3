// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSObject-MainThread.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
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

// A thread waits for the main thread with this pipe. It is a pipe, because the kernel assumes that the writer
// of a pipe is about to sleep, and runs the reader on the same processor, which halves the time of a call.
class Bell {
  public:
    Bell() {
        if (pipe2(_ends, O_CLOEXEC) != 0)
            raiseException(NSGenericException,
                           u"performSelectorOnMainThread: the system gives no pipe to wait with: %s"_ns,
                           std::strerror(errno));
    }
    ~Bell() {
        close(_ends[0]);
        close(_ends[1]);
    }
    Bell(const Bell&) = delete;
    Bell& operator=(const Bell&) = delete;

    static Bell& ofThread() {
        static thread_local Bell bell;
        return bell;
    }
    void ring() {
        while (write(_ends[1], "", 1) < 0 && errno == EINTR) {
        }
    }
    void await() {
        char byte;
        while (read(_ends[0], &byte, 1) < 0 && errno == EINTR) {
        }
    }

  private:
    int _ends[2];
};

// A call for which another thread waits, on that thread's stack: the object may be gone as soon as the call
// is done.
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
        _bell.ring();
    }
    void wait() {
        _bell.await();
        if (_failure) std::rethrow_exception(std::move(_failure));
    }

  private:
    Unretained<Object> _target;
    SEL _selector;
    Unretained<Object> _argument;
    Bell& _bell = Bell::ofThread();
    std::exception_ptr _failure;
};

}  // namespace

constinit const Category NSObject_MainThread_category =
    Category::of<NSObject, defineMainThread<NSObject>>("MainThread");

// A proxy has no methods of NSObject and would forward these two; only the message that is performed is to be
// forwarded.
constinit const Category NSProxy_MainThread_category =
    Category::of<NSProxy, defineMainThread<NSProxy>>("MainThread");

void performSelectorOnMainThread_withObject_waitUntilDone_modes(id target, SEL selector, id argument,
                                                                bool wait, NSArray* modes) {
    if (!target) return;
    if (!selector)
        raiseException(NSInvalidArgumentException, u"performSelectorOnMainThread: the selector is null"_ns);
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
