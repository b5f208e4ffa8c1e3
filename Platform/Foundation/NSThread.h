// SPDX-License-Identifier: Apache-2.0
// NSThread: threads of the process.
#pragma once

#include <functional>

#include "Foundation/NSString.h"

namespace pelvor {

class NSDate;
class NSMutableDictionary;

/// Posted on the default centre, with a null sender, once in the life of the process: before NSThread starts
/// its first thread. Posted on the thread that asked for the new thread.
inline constexpr NSString* NSWillBecomeMultiThreadedNotification =
    u"NSWillBecomeMultiThreadedNotification"_ns;

/// A thread of the process. A thread is started with a message, and gives its results to the main thread:
///
///     NSThread::detachNewThreadSelector_toTarget_withObject("count:"_sel, counter, document);
///     // in Counter::count, at its end:
///     performSelectorOnMainThread_withObject_waitUntilDone(view, "show:"_sel, result, false);
///
/// A thread that was started by other means gets an object as well, with its first call of `currentThread`.
/// Static operations may be called on any thread, the operations of an object only on the thread that the
/// object stands for.
class PELVOR_EXPORT NSThread : public NSObject {
    PELVOR_CLASS(NSThread, NSObject);

  public:
    /// Starts a thread that sends the message to the target inside an autorelease pool, and then ends. The
    /// message has `argument` as its argument if the method takes one. Target and argument are retained until
    /// the thread ends. An exception of the method is logged and ends the thread. Raises
    /// NSInvalidArgumentException if target or selector is null, and NSGenericException if the system cannot
    /// start a thread.
    static void detachNewThreadSelector_toTarget_withObject(SEL selector, id target, id argument);

    /// Returns the calling thread, borrowed; the object exists as long as the thread runs.
    static NSThread* currentThread();
    /// Returns the thread that the process began with, borrowed; the object exists as long as the process.
    static NSThread* mainThread();
    static bool isMainThread();
    /// Returns whether NSThread has ever started a thread.
    static bool isMultiThreaded();

    /// These put the calling thread to sleep until the date, or for the time in seconds. They return at once
    /// for a null date, a date in the past, and a time that is not above 0.
    static void sleepUntilDate(NSDate* date);
    static void sleepForTimeInterval(double seconds);

    /// Returns the thread's name, borrowed; "" unless a name was set.
    NSString* name() { return _name; }
    /// Copies the name; null stands for "". Tools of the system show the first 15 bytes of the name, except
    /// for the main thread.
    void setName(NSString* name);
    /// Returns the thread's own dictionary, borrowed, which the first call makes. The dictionary and its
    /// objects are released when the thread ends.
    NSMutableDictionary* threadDictionary();

    // C++ only
    /// Starts a thread that calls the function inside an autorelease pool, and then ends. Exceptions are
    /// treated as by `detachNewThreadSelector_toTarget_withObject`. Raises NSInvalidArgumentException for an
    /// empty function, and NSGenericException if the system cannot start a thread.
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
