// SPDX-License-Identifier: Apache-2.0
// NSApplication: the program as the user sees it: its events, its windows, its end.
#pragma once

#include <memory>

#include "Foundation/NSDate.h"
#include "Interface/NSResponder.h"
#include "Interface/NSScreen.h"

namespace pelvor {

class NSMenu;
class NSWindow;
struct ApplicationState;

/// The mode of the run loop while a panel runs modally, and while the mouse or a menu is followed. Both are
/// among NSRunLoopCommonModes once the application has been made. What waits for the default mode, such as
/// delayed messages and idle queues, waits meanwhile.
inline constexpr NSString* NSModalPanelRunLoopMode = u"NSModalPanelRunLoopMode"_ns;
inline constexpr NSString* NSEventTrackingRunLoopMode = u"NSEventTrackingRunLoopMode"_ns;

// Posted by the application, which is the sender. The delegate gets the same as a message,
// `applicationDidFinishLaunching:` and so on, if it has a method for it.

inline constexpr NSString* NSApplicationWillFinishLaunchingNotification =
    u"NSApplicationWillFinishLaunchingNotification"_ns;
inline constexpr NSString* NSApplicationDidFinishLaunchingNotification =
    u"NSApplicationDidFinishLaunchingNotification"_ns;
inline constexpr NSString* NSApplicationDidBecomeActiveNotification =
    u"NSApplicationDidBecomeActiveNotification"_ns;
inline constexpr NSString* NSApplicationDidResignActiveNotification =
    u"NSApplicationDidResignActiveNotification"_ns;
inline constexpr NSString* NSApplicationWillUpdateNotification = u"NSApplicationWillUpdateNotification"_ns;
inline constexpr NSString* NSApplicationDidUpdateNotification = u"NSApplicationDidUpdateNotification"_ns;
inline constexpr NSString* NSApplicationWillTerminateNotification =
    u"NSApplicationWillTerminateNotification"_ns;
/// The display has gone, as a line of the log says; windows stay as they are, unseen. The program can save
/// what it has. All modal runs and `run` return.
inline constexpr NSString* NSApplicationDidLoseDisplayNotification =
    u"NSApplicationDidLoseDisplayNotification"_ns;

/// What a modal session came to, unless it was stopped with another code.
enum : NSInteger {
    NSRunStoppedResponse = -1000,
    NSRunAbortedResponse = -1001,
    NSRunContinuesResponse = -1002,
};

enum NSApplicationTerminateReply : int {
    NSTerminateCancel = 0,
    NSTerminateNow = 1,
    NSTerminateLater = 2,
};

/// A window that runs modally; opaque.
using NSModalSession = struct ModalSession*;

/// The program as the user sees it. There is one application a process, made on first demand:
///
///     NSApplication* app = NSApplication::sharedApplication();
///     app->setDelegate(delegate);
///     window->makeKeyAndOrderFront(nullptr);
///     app->run();                                    // until `stop`, `terminate` or the delegate's end
///
/// Events come from the display into a queue; `run` takes each from there and hands it to `sendEvent`. While
/// it waits, the main run loop does its work. What is marked to be drawn is drawn before it waits.
///
/// **Exceptions** of event handling are told to `reportException` and end only the handling of their event.
///
/// **Without a display**, or with the environment's PELVOR_DISPLAY set to "none", everything works and nobody
/// sees it. If DISPLAY names a display that cannot be had, the reason is logged; so is any other value of
/// PELVOR_DISPLAY, which changes nothing.
///
/// **The module for displays**, PelvorInterfaceXCB.so, is loaded from the file that the environment's
/// PELVOR_INTERFACE_MODULE names, else from the folder of this library's code (of the program, if that holds
/// the library), from "../lib" beside that folder, or from where the system finds libraries.
///
/// **Under a loop of somebody else**, call `deliverEventsInRunLoop` instead of `run`; the host's loop drives
/// the main run loop (NSRunLoop::descriptor), and events are handed on from there. `stop` has nothing to
/// end then, and a `terminate` that does not end the process only posts its notification.
///
/// The delegate may have:
///
///     int applicationShouldTerminate:(NSApplication*)     an NSApplicationTerminateReply
///     bool applicationShouldTerminateAfterLastWindowClosed:(NSApplication*)    panels do not count
///
/// and the messages of the notifications above. Exceptions are not told to the delegate; override
/// `reportException` for that. Main thread.
class PELVOR_EXPORT NSApplication : public NSResponder {
    PELVOR_CLASS(NSApplication, NSResponder);

  public:
    /// The application, which connects to the display when it is made. Borrowed.
    static NSApplication* sharedApplication();

    /// Whether somebody can see windows.
    bool hasDisplay();

    // The main loop

    /// Takes and handles events until `stop`; calls `finishLaunching` first. Without a display, returns once
    /// there are no windows on the screen, timers or other work to wait for.
    void run();
    /// Ends `run` after this event; during a modal run, ends that one with NSRunStoppedResponse. A modal run
    /// that is about to end, as all are when the display is lost, does not count.
    void stop(id sender);
    bool isRunning();
    /// Posts the two notifications of the launch, once.
    void finishLaunching();
    /// From now on events are handed on by the main run loop whenever that runs in the default mode.
    void deliverEventsInRunLoop();
    /// Asks the delegate, but no windows, and, unless it refuses, posts
    /// NSApplicationWillTerminateNotification and ends the process with status 0. After
    /// `setTerminatesProcess(false)` the process goes on, and `run` returns.
    virtual void terminate(id sender);
    /// What became of NSTerminateLater.
    void replyToApplicationShouldTerminate(bool shouldTerminate);
    /// Whether `terminate` ends the process (true at first) or only `run`.
    bool terminatesProcess();
    void setTerminatesProcess(bool terminates);
    /// An exception of event handling, as text. The base logs it.
    virtual void reportException(NSString* description);

    // Events

    /// The next event of these kinds (NS…Mask joined by "|"), or null if none comes until the date; a null
    /// date does not wait. While it waits, the run loop runs in the mode; null stands for the default mode.
    /// Unless `dequeue` is true, the event stays in the queue.
    NSEvent* nextEventMatchingMask_untilDate_inMode_dequeue(NSUInteger mask, NSDate* limit, NSString* mode,
                                                            bool dequeue);
    /// Forgets the events of these kinds that came before the last one; null stands for all.
    void discardEventsMatchingMask_beforeEvent(NSUInteger mask, NSEvent* last);
    void postEvent_atStart(NSEvent* event, bool atStart);
    /// The event that is handled, or was handled last; null before the first.
    NSEvent* currentEvent();
    /// Hands an event on: keys to key equivalents and then to the key window, other events to their window.
    virtual void sendEvent(NSEvent* event);

    // Actions

    /// Sends the action with the sender as argument to the target; with a null target, to the first object
    /// that `targetForAction` finds. Returns whether there was one with a method for it.
    virtual bool sendAction_to_from(SEL action, id target, id sender);
    /// The first that has a method for the action: the responders of the key window, the window, its
    /// delegate; the same of the main window; the application; its delegate. Null if none has.
    id targetForAction(SEL action);
    virtual id targetForAction_to_from(SEL action, id target, id sender);
    bool tryToPerform_with(SEL action, id argument) override;

    // The main menu, whose key equivalents work in all windows and whose titles stand in menu bars

    /// Null if there is none.
    NSMenu* mainMenu();
    /// Gives the windows that can become main a menu bar, or takes it away for null.
    void setMainMenu(NSMenu* menu);

    // Windows

    /// All windows that were not closed, in the order in which they were made.
    NSArray* windows();
    /// Those on the screen, the front one first.
    NSArray* orderedWindows();
    NSWindow* windowWithWindowNumber(NSInteger number);
    NSWindow* keyWindow();
    NSWindow* mainWindow();
    NSWindow* modalWindow();
    /// Has every window on the screen updated, before and after which it posts the notifications.
    void updateWindows();
    void setWindowsNeedUpdate(bool need);

    // Modal windows: while one runs, the other windows get no events, except those that work when modal.
    //
    //     // The panel's buttons have a target with these methods as actions:
    //     void Asker::ok(id) { NSApplication::sharedApplication()->stopModalWithCode(1); }
    //     void Asker::cancel(id) { NSApplication::sharedApplication()->stopModalWithCode(0); }
    //
    //     const NSInteger code = NSApplication::sharedApplication()->runModalForWindow(panel);
    //     panel->orderOut(nullptr);
    //     if (code == 1) save();
    //
    // `stopModal` and its kin have no sender, so that they cannot be actions themselves. A button without a
    // method of its own can have the application as target and `stop:` as action.

    /// Shows the window, in the middle of the screen if it was not shown yet, and handles events until the
    /// run is stopped. Returns the code it was stopped with, or NSRunAbortedResponse once the window is
    /// closed or taken from the screen. For null, returns NSRunAbortedResponse at once. Without a display,
    /// nobody presses a button, and only the program itself can stop the run.
    NSInteger runModalForWindow(NSWindow* window);
    /// Ends the innermost modal run with NSRunStoppedResponse, or with a code of the program's own. The
    /// window stays on the screen. Does nothing while no window runs modally.
    void stopModal();
    void stopModalWithCode(NSInteger code);
    /// Ends the innermost modal run with NSRunAbortedResponse. All three work also from timers and other
    /// parts of the run loop.
    void abortModal();
    /// Null for null. The session has to be ended.
    NSModalSession beginModalSessionForWindow(NSWindow* window);
    /// Handles the events that are there. Returns NSRunContinuesResponse, or the code of the end.
    NSInteger runModalSession(NSModalSession session);
    void endModalSession(NSModalSession session);

    // The program among others

    bool isActive();
    void activateIgnoringOtherApps(bool ignore);

    id delegate();
    /// Not kept alive; null once it has ended.
    void setDelegate(id delegate);
    void doCommandBySelector(SEL selector) override;

    // C++ only
    ApplicationState& state() { return *_state; }

  protected:
    NSApplication();
    ~NSApplication();

  private:
    std::unique_ptr<ApplicationState> _state;
};

/// The application if it has been made, else null: who only looks for it does not connect to a display.
PELVOR_EXPORT NSApplication* NSApp();

}  // namespace pelvor
