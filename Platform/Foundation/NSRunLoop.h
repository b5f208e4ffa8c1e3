// SPDX-License-Identifier: Apache-2.0
// NSRunLoop: what a thread does between one piece of work and the next.
#pragma once

#include <functional>
#include <memory>

#include "Foundation/NSDate.h"
#include "Foundation/NSString.h"

namespace pelvor {

class NSArray;
class NSDelayedPerform;
class NSTimer;

/// The mode in which a loop runs unless it is told otherwise.
inline constexpr NSString* NSDefaultRunLoopMode = u"NSDefaultRunLoopMode"_ns;
/// Stands for every mode that was made a common one; the default mode is from the start. For adding to, not
/// for running in.
inline constexpr NSString* NSRunLoopCommonModes = u"NSRunLoopCommonModes"_ns;

/// What a descriptor is watched for; may be combined. Errors and a closed other end count as both.
enum NSDescriptorEvents : std::uint32_t {
    NSDescriptorReadable = 1,
    NSDescriptorWritable = 2,
};

/// Waits for the work of its thread and does it: ordered performs, timers, descriptors, performs that other
/// threads ask for, queued notifications. Each thread has one loop. A loop runs in a mode and does only
/// what was added for that mode; the rest waits.
///
///     while (!isDone) NSRunLoop::currentRunLoop()->runMode_beforeDate(NSDefaultRunLoopMode, nullptr);
///
/// One turn, inside an autorelease pool: what was to be performed at its beginning, in order; timers that
/// are due; descriptors and other threads' performs; notifications to be posted as soon as possible; and, if
/// nothing of that was ready, one notification to be posted when idle. If there is none either, the thread
/// sleeps until there is work. A loop may be run from inside what it calls.
///
/// What a call raises leaves the running operation and takes the rest of the turn with it; the loop can be
/// run again and nothing that waits is lost. Dates are turned into moments of a clock that nobody sets when
/// they are given. For the loop's own thread, but for `wakeUp` and `stop`.
class PELVOR_EXPORT NSRunLoop : public NSObject {
    PELVOR_CLASS(NSRunLoop, NSObject);

  public:
    /// The thread's loop, made on first demand.
    static NSRunLoop* currentRunLoop();
    /// The main thread's. Any thread.
    static NSRunLoop* mainRunLoop();

    /// The mode that the loop runs in; none while it does not run.
    NSString* currentMode() { return _currentMode; }
    /// Makes `mode` one of those that NSRunLoopCommonModes stands for.
    void addCommonMode(NSString* mode);
    /// Whether one of the names is the mode, or stands for it. No list, or an empty one, is the default mode.
    bool isMode_amongModes(NSString* mode, NSArray* modes);

    // Running

    /// Does one turn, after waiting for work until the date; no date waits for as long as it takes. True if
    /// there was work, or the loop was woken; false if there was none until then, or nothing to wait for. The
    /// main thread's loop can always be given work by another thread, so it waits also when it has none.
    bool runMode_beforeDate(NSString* mode, NSDate* limit);
    /// Turns in the default mode until the date, or until `stop`, or until there is nothing to wait for.
    void runUntilDate(NSDate* limit);
    /// The same without a date.
    void run();
    /// The innermost `runUntilDate` or `run` ends after its turn. Does nothing when none is under way; it
    /// does not keep a later one from running. Any thread.
    void stop();
    /// Ends the wait of `runMode:beforeDate:`, now or when it next comes to wait, so that its caller looks
    /// around. Any thread.
    void wakeUp();
    /// Whether the mode has timers, descriptors, performs or notifications, ready or not.
    bool hasWorkForMode(NSString* mode);

    // Work

    /// Does nothing for a timer that has fired or is in the mode already.
    void addTimer_forMode(NSTimer* timer, NSString* mode);
    /// Sends `selector` with the descriptor, an int, whenever one of `events` (of NSDescriptorEvents) is
    /// there. The target is retained. Raises NSInvalidArgumentException for no target, selector or events,
    /// and for a descriptor that cannot be waited for. Remove it before closing it.
    void addDescriptor_events_target_selector_forMode(int descriptor, std::uint32_t events, id target,
                                                      SEL selector, NSString* mode);
    /// Removes all that was added for the descriptor in the mode.
    void removeDescriptor_forMode(int descriptor, NSString* mode);
    /// Sends the message at the beginning of the next turn in one of the modes, those of lower order first
    /// and equal ones as they came. Target and argument are retained until then.
    void performSelector_target_argument_order_modes(SEL selector, id target, id argument,
                                                     std::uint32_t order, NSArray* modes);
    /// Forgets performs with the same selector, target and an equal or identical argument.
    void cancelPerformSelector_target_argument(SEL selector, id target, id argument);
    void cancelPerformSelectorsWithTarget(id target);

    // A host with a loop of its own. It waits until the descriptor is readable or the deadline has come,
    // then does the ready work, and asks again.

    /// Readable when there may be work. The loop's own; only for waiting.
    int descriptor();
    /// When there is work in the mode at the latest if the descriptor stays silent: a moment that is over
    /// when there is some now, none when there is only the descriptor to wait for. By the system's clock as
    /// it is now; a host that goes by another takes the time until then at once.
    NSDate* limitDateForMode(NSString* mode);
    /// Does what is ready, without waiting; whether there was any.
    bool performReadyWorkForMode(NSString* mode);

    // C++ only
    /// Has the function called in one of the modes on the loop's thread. Any thread.
    void perform(std::function<void()> work, NSArray* modes);

  protected:
    NSRunLoop();
    ~NSRunLoop();

  private:
    friend class NSDelayedPerform;
    friend struct NSObject_DelayedPerforming;
    friend struct OwnRunLoop;
    enum class Wait { no, yes };
    class Turn;
    class Run;
    struct State;

    void abandon();
    void signal();
    bool runMode(NSString* mode, NSTimeInterval limit);
    bool turn(NSString* mode, Wait wait, NSTimeInterval limit);
    bool doReadyWork(NSString* mode, Wait wait, NSTimeInterval limit);
    bool firePerforms(NSString* mode);
    bool fireTimers(NSString* mode);
    bool pollDescriptors(NSString* mode, NSTimeInterval timeout);
    bool serve(NSString* mode, int descriptor, std::uint32_t events, std::uint64_t limit);
    bool serveThreads(NSString* mode);
    void acknowledgeSignal(int ready);
    bool hasThreadPerforms(NSString* mode);
    bool hasPerforms(NSString* mode);
    NSTimeInterval nextMoment(NSString* mode);
    void watchForMode(NSString* mode);
    bool isModeNamed(NSString* mode, NSString* name);
    void listDelayed(NSDelayedPerform* perform);
    void unlistDelayed(NSDelayedPerform* perform);
    void cancelDelayed(id receiver, const std::function<bool(NSDelayedPerform*)>& isMeant);

    std::unique_ptr<State> _state;
    NSString* _currentMode = nullptr;
};

}  // namespace pelvor
