// SPDX-License-Identifier: Apache-2.0
// NSThread: threads of the process.
#pragma once

#include <functional>

#include "Foundation/NSString.h"

namespace pelvor {

class NSDate;
class NSMutableDictionary;

/// Posted on the default centre, by the thread that is about to start the first further thread through
/// NSThread and before that one runs. Without object; once in the life of the process.
inline constexpr NSString* NSWillBecomeMultiThreadedNotification =
    u"NSWillBecomeMultiThreadedNotification"_ns;

/// A thread. Threads that were started by other means have an object as well, from the first time that
/// they ask for it. Class operations are for any thread, an object's own for its thread only.
class PELVOR_EXPORT NSThread : public NSObject {
    PELVOR_CLASS(NSThread, NSObject);

  public:
    /// Starts a thread that sends the message to the target, with `argument` if it takes one, inside an
    /// autorelease pool, and then ends. Target and argument are retained until then. What the method
    /// raises is logged and ends the thread. Raises NSInvalidArgumentException for no target or selector,
    /// NSGenericException if the system gives no thread.
    static void detachNewThreadSelector_toTarget_withObject(SEL selector, id target, id argument);

    static NSThread* currentThread();
    /// The thread that the process began with.
    static NSThread* mainThread();
    static bool isMainThread();
    /// Whether NSThread has ever started a thread.
    static bool isMultiThreaded();

    /// Both return at once for a time that is over.
    static void sleepUntilDate(NSDate* date);
    static void sleepForTimeInterval(double seconds);

    /// "" unless it was set. The system shows the first 15 bytes of it for the current thread.
    NSString* name() { return _name; }
    void setName(NSString* name);
    /// The thread's own dictionary, made on first demand; its objects are released when the thread ends.
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
