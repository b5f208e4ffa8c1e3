// SPDX-License-Identifier: Apache-2.0
// NSThread: threads of the process.
#pragma once

#include <functional>

#include "Foundation/NSString.h"

namespace pelvor {

class NSDate;
class NSMutableDictionary;

/// Posted on the default centre, with a null object, once in the life of the process: on the thread that is
/// about to start the first further thread through NSThread, before the new thread runs.
inline constexpr NSString* NSWillBecomeMultiThreadedNotification =
    u"NSWillBecomeMultiThreadedNotification"_ns;

/// A thread of the process. A thread is started with a message, and gives its results to the main thread:
///
///     NSThread::detachNewThreadSelector_toTarget_withObject("count:"_sel, counter, document);
///     // in Counter::count, at its end:
///     performSelectorOnMainThread_withObject_waitUntilDone(view, "show:"_sel, result, false);
///
/// Threads that were started by other means have an object as well, from the first time that they ask for
/// `currentThread`. Class operations are for any thread; the operations of an object are for its thread only.
class PELVOR_EXPORT NSThread : public NSObject {
    PELVOR_CLASS(NSThread, NSObject);

  public:
    /// Starts a thread that sends the message to the target, with `argument` if it takes one, inside an
    /// autorelease pool, and then ends. Target and argument are retained until then. An exception of the
    /// method is logged and ends the thread. Raises NSInvalidArgumentException if target or selector is null,
    /// and NSGenericException if the system gives no thread.
    static void detachNewThreadSelector_toTarget_withObject(SEL selector, id target, id argument);

    static NSThread* currentThread();
    /// Returns the thread that the process began with.
    static NSThread* mainThread();
    static bool isMainThread();
    /// Returns whether NSThread has ever started a thread.
    static bool isMultiThreaded();

    /// These put the calling thread to sleep until the date, or for the time in seconds. They return at once
    /// for a null date, a date in the past, and a time that is not above 0.
    static void sleepUntilDate(NSDate* date);
    static void sleepForTimeInterval(double seconds);

    /// Returns the thread's name; "" unless it was set. Tools of the system show its first 15 bytes.
    NSString* name() { return _name; }
    void setName(NSString* name);
    /// Returns the thread's own dictionary, which is made on first demand. Its objects are released when the
    /// thread ends.
    NSMutableDictionary* threadDictionary();

    // C++ only
    /// Starts a thread that calls the function, as `detachNewThreadSelector_toTarget_withObject` does.
    static void detach(std::function<void()> entry);

  protected:
    NSThread();
    ~NSThread();

  private:
    friend struct EndOfForeignThread;
    static void runAndEnd(std::function<void()>& entry);
    static void endCurrent();

    Retained<NSString> _name;
    Retained<NSMutableDictionary> _threadDictionary;
};

}  // namespace pelvor
