// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSThread.h"

#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <system_error>
#include <thread>
#include <utility>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/RunLoop/Deadline.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/NSException.h"

namespace pelvor {
namespace {

std::atomic<bool> isAnnounced{false};
std::atomic<bool> hasStartedThread{false};

// Owned by the thread.
constinit thread_local NSThread* ownThread = nullptr;

template <class Call>
void callAndLogExceptions(NSString* what, Call call) {
    try {
        call();
    } catch (const NSException& exception) {
        NSLog(u"%@: %s: %s"_ns, what, exception.name(), exception.reason());
    } catch (...) {
        NSLog(u"%@: %s"_ns, what, currentExceptionReason());
    }
}

void announceSecondThread() {
    if (isAnnounced.exchange(true)) return;
    callAndLogExceptions(u"Ignoring exception raised by an observer of the first further thread"_ns, [] {
        NSNotificationCenter::defaultCenter()->postNotificationName_object(
            NSWillBecomeMultiThreadedNotification, nullptr);
    });
}

}  // namespace

// Ends the object of a thread that was started by other means.
struct EndOfForeignThread {
    ~EndOfForeignThread() { NSThread::endCurrent(); }
};

PELVOR_DEFINE_CLASS(NSThread, foundationLibrary) {
    methods.classLevel<"detachNewThreadSelector:toTarget:withObject:",
                       &NSThread::detachNewThreadSelector_toTarget_withObject>();
    methods.classLevel<"currentThread", &NSThread::currentThread>();
    methods.classLevel<"mainThread", &NSThread::mainThread>();
    methods.classLevel<"isMainThread", &NSThread::isMainThread>();
    methods.classLevel<"isMultiThreaded", &NSThread::isMultiThreaded>();
    methods.classLevel<"sleepUntilDate:", &NSThread::sleepUntilDate>();
    methods.classLevel<"sleepForTimeInterval:", &NSThread::sleepForTimeInterval>();
    methods.instance<"name", &NSThread::name>();
    methods.instance<"setName:", &NSThread::setName>();
    methods.instance<"threadDictionary", &NSThread::threadDictionary>();
}

NSThread::NSThread() { _name.set(u""_ns); }

NSThread::~NSThread() = default;

// MARK: Starting threads

void NSThread::detachNewThreadSelector_toTarget_withObject(SEL selector, id target, id argument) {
    if (!target || !selector)
        raiseException(NSInvalidArgumentException,
                       u"detachNewThreadSelector:toTarget:withObject: the %s is null"_ns,
                       target ? "selector" : "target");
    // The last reference is released inside the thread's pool, before others can see that the thread has
    // ended.
    auto keptTarget = Retained<Object>::retaining(target);
    auto keptArgument = Retained<Object>::retaining(argument);
    detach([selector, keptTarget, keptArgument]() mutable {
        auto ownTarget = std::move(keptTarget);
        auto ownArgument = std::move(keptArgument);
        ownTarget->performSelector_withObject(selector, ownArgument);
    });
}

void NSThread::detach(std::function<void()> entry) {
    if (!entry) raiseException(NSInvalidArgumentException, u"detach: the function is empty"_ns);
    classRecord.initializeIfNeeded();
    announceSecondThread();
    hasStartedThread.store(true, std::memory_order_release);
    try {
        std::thread([entry = std::move(entry)]() mutable { runAndEnd(entry); }).detach();
    } catch (const std::system_error& error) {
        raiseException(NSGenericException, u"NSThread: the system gives no thread: %s"_ns, error.what());
    }
}

// The objects that the thread owns are released inside a pool, before the function itself ends.
void NSThread::runAndEnd(std::function<void()>& entry) {
    AutoreleasePool pool;
    callAndLogExceptions(u"Thread ended by an uncaught exception"_ns, entry);
    entry = nullptr;
    pool.drain();
    endCurrent();
}

// The thread's object is still there while the objects of its dictionary end.
void NSThread::endCurrent() {
    if (!ownThread) return;
    AutoreleasePool pool;
    ownThread->_threadDictionary = nullptr;
    pool.drain();
    std::exchange(ownThread, nullptr)->release();
}

bool NSThread::isMultiThreaded() { return hasStartedThread.load(std::memory_order_acquire); }

// MARK: Threads as objects

NSThread* NSThread::currentThread() {
    if (ownThread) [[likely]]
        return ownThread;
    if (isMainThread()) return ownThread = mainThread();
    static thread_local EndOfForeignThread endOfForeignThread;
    return ownThread = make<NSThread>().leak();
}

// The main thread's object stays, so that other threads can use it at any time.
NSThread* NSThread::mainThread() {
    static NSThread* const thread = make<NSThread>().leak();
    return thread;
}

bool NSThread::isMainThread() {
    static thread_local const bool isMain = gettid() == getpid();
    return isMain;
}

void NSThread::setName(NSString* name) {
    _name = name ? name->copy() : Retained<NSString>::retaining(u""_ns);
    if (this == currentThread() && !isMainThread())
        pthread_setname_np(pthread_self(), _name->toUTF8().substr(0, 15).c_str());
}

NSMutableDictionary* NSThread::threadDictionary() {
    if (!_threadDictionary) _threadDictionary = NSMutableDictionary::init();
    return _threadDictionary;
}

// MARK: Sleeping

void NSThread::sleepUntilDate(NSDate* date) { std::this_thread::sleep_until(deadline(date)); }

void NSThread::sleepForTimeInterval(double seconds) {
    constexpr double kLongest = 1e9;  // beyond the range of the clock
    if (seconds > 0) std::this_thread::sleep_for(std::chrono::duration<double>(std::min(seconds, kLongest)));
}

}  // namespace pelvor
