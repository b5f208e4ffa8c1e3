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
/// Stands for every common mode: the default mode, and those that `addCommonMode` was given. Work is added
/// under this name; a loop cannot run in it.
inline constexpr NSString* NSRunLoopCommonModes = u"NSRunLoopCommonModes"_ns;

/// What a descriptor is watched for; values may be combined. An error, or a closed other end, counts as both.
enum NSDescriptorEvents : std::uint32_t {
    NSDescriptorReadable = 1,
    NSDescriptorWritable = 2,
};

/// Waits for the work of its thread and does it: ordered performs, timers, descriptors, performs that other
/// threads ask for, queued notifications. Each thread has one loop. A loop runs in a mode and does only the
/// work that was added for that mode; other work waits.
///
///     NSRunLoop* loop = NSRunLoop::currentRunLoop();
///     loop->addDescriptor_events_target_selector_forMode(socket, NSDescriptorReadable, reader, "read:"_sel,
///                                                        NSDefaultRunLoopMode);
///     while (!isDone) loop->runMode_beforeDate(NSDefaultRunLoopMode, nullptr);
///
/// A turn of the loop does, inside an autorelease pool: the ordered performs that were there at its
/// beginning; the timers that are due; ready descriptors and other threads' performs; the notifications that
/// are to be posted as soon as possible; and, if none of these was ready, one notification that is to be
/// posted when idle. If there is no such notification either, the thread sleeps until there is work. A loop
/// may be run from inside a call that it makes.
///
/// An exception of such a call leaves the operation that runs the loop and ends the turn; work that was not
/// done waits for the next turn. The loop converts a date that it is given to a moment of a steady clock,
/// which nobody can set. All operations are for the loop's own thread, except `wakeUp`, `stop` and `perform`.
class PELVOR_EXPORT NSRunLoop : public NSObject {
    PELVOR_CLASS(NSRunLoop, NSObject);

  public:
    /// Returns the thread's loop, which is made on first demand.
    static NSRunLoop* currentRunLoop();
    /// Returns the main thread's loop. Any thread.
    static NSRunLoop* mainRunLoop();

    /// Returns the mode that the loop runs in; null while the loop does not run.
    NSString* currentMode() { return _currentMode; }
    /// Makes `mode` one of the modes that NSRunLoopCommonModes stands for. Raises NSInvalidArgumentException
    /// if `mode` is null.
    void addCommonMode(NSString* mode);
    /// Returns whether one of the names in `modes` is the mode or stands for it. A null or empty list stands
    /// for the default mode.
    bool isMode_amongModes(NSString* mode, NSArray* modes);

    // Running

    /// Waits for work until the date and does one turn; with a null date, waits for as long as it takes.
    /// Returns true if there was work or the loop was woken, false if there was no work until the date or
    /// nothing to wait for. The main thread's loop waits even if it has nothing to wait for, since another
    /// thread can always give it work. Raises NSInvalidArgumentException if `mode` is null.
    bool runMode_beforeDate(NSString* mode, NSDate* limit);
    /// Takes turns in the default mode until the date has come, `stop` was called, or there is nothing to
    /// wait for.
    void runUntilDate(NSDate* limit);
    /// Takes turns in the default mode until `stop` was called, or there is nothing to wait for.
    void run();
    /// Ends the innermost `runUntilDate` or `run` after its turn. Does nothing if neither is running; a later
    /// call of `runUntilDate` or `run` is not stopped. Any thread.
    void stop();
    /// Makes `runMode:beforeDate:` return instead of waiting, now or when it next comes to wait. Any thread.
    void wakeUp();
    /// Returns whether there are timers, descriptors, performs or notifications for the mode, ready or not.
    bool hasWorkForMode(NSString* mode);

    // Work

    /// Adds the timer, which the loop retains until the timer is invalidated. Does nothing if the timer is
    /// invalid or is in the mode already. Raises NSInvalidArgumentException if the timer or the mode is null.
    void addTimer_forMode(NSTimer* timer, NSString* mode);
    /// Sends `selector` with the descriptor, an int, to the target whenever one of `events` (of
    /// NSDescriptorEvents) is there. The target is retained. Raises NSInvalidArgumentException if target,
    /// selector or mode is null, if there are no events, or if the descriptor cannot be waited for. Remove
    /// the descriptor before closing it.
    void addDescriptor_events_target_selector_forMode(int descriptor, std::uint32_t events, id target,
                                                      SEL selector, NSString* mode);
    /// Removes everything that was added for the descriptor in the mode.
    void removeDescriptor_forMode(int descriptor, NSString* mode);
    /// Sends the message, with `argument` if it takes one, at the beginning of the next turn in one of the
    /// modes: messages of a lower order first, messages of one order as they came. Target and argument are
    /// retained until then. Raises NSInvalidArgumentException if target or selector is null.
    void performSelector_target_argument_order_modes(SEL selector, id target, id argument,
                                                     std::uint32_t order, NSArray* modes);
    /// Forgets the performs with this selector, this target and an equal argument.
    void cancelPerformSelector_target_argument(SEL selector, id target, id argument);
    /// Forgets the performs with this target.
    void cancelPerformSelectorsWithTarget(id target);

    // A host with a loop of its own waits until the descriptor is readable or the limit date has come, then
    // has the ready work done, and asks for the limit date again.

    /// Returns a descriptor that is readable when there may be work. It belongs to the loop; it is only for
    /// waiting.
    int descriptor();
    /// Returns when there is work in the mode at the latest, if the descriptor does not become readable
    /// before: a past date if there is work now, null if there is only the descriptor to wait for. The date
    /// is one of the system's clock as that is set now; a host that waits by another clock takes the time
    /// until the date at once.
    NSDate* limitDateForMode(NSString* mode);
    /// Does the work that is ready, without waiting. Returns whether there was any. Raises
    /// NSInvalidArgumentException if `mode` is null.
    bool performReadyWorkForMode(NSString* mode);

    /// Returns what a debugger wants to see: the mode that the loop runs in, the common modes, and the
    /// timers, descriptors and performs that wait, each with its modes.
    NSString* description() override;

    // C++ only
    /// Has the function called on the loop's thread when the loop runs in one of the modes; null stands for
    /// the default mode. Raises NSInvalidArgumentException if the function is empty. Any thread.
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
    Unretained<NSString> _currentMode = nullptr;  // the turn keeps the mode
};

}  // namespace pelvor
