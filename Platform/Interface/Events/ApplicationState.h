// SPDX-License-Identifier: Apache-2.0
// ApplicationState: what the application is made of.
#pragma once

#include <deque>
#include <vector>

#include "Interface/Backend/DisplayConnection.h"
#include "Interface/Menus/MenuKeys.h"
#include "Interface/NSApplication.h"
#include "Interface/NSCursor.h"
#include "Interface/NSEvent.h"
#include "Interface/NSMenu.h"
#include "Interface/NSWindow.h"
#include "Runtime/WeakHandle.h"

namespace pelvor {

struct ModalSession {
    Retained<NSWindow> window;
    NSInteger code = NSRunContinuesResponse;
};

/// Tells the application of the exception that is being handled. Only inside a catch clause.
void reportCurrentException();

struct PELVOR_EXPORT ApplicationState {
    explicit ApplicationState(NSApplication* owner) : app(owner) {}

    Unretained<NSApplication> app;
    std::deque<Retained<NSEvent>> queue;
    Retained<NSEvent> current;
    std::vector<Unretained<NSWindow>> windows;  // each takes itself out when it ends
    std::vector<Retained<NSWindow>> ordered;    // on the screen, the front one first
    std::vector<std::unique_ptr<ModalSession>> sessions;
    Unretained<NSWindow> keyWindow = nullptr;  // it takes itself out when it ends
    Unretained<NSWindow> mainWindow = nullptr;
    WeakHandle focused;  // the window that the back end gives the keys
    WeakHandle pointerWindow;
    WeakHandle delegate;
    Retained<NSMenu> mainMenu;
    MenuKeys menuKeys;
    std::vector<Retained<NSCursor>> cursors;  // pushed; the last one is current
    double focusLost = 0;                     // when no window had the focus any more; 0 while one has
    NSInteger lastWindowNumber = 0;
    int waiting = 0;  // calls of `next` on the stack
    int hiddenCursors = 0;
    bool isCursorHiddenUntilMove = false;
    bool isRunning = false;
    bool stops = false;
    bool isActive = false;
    bool isLaunched = false;
    bool terminatesProcess = true;
    bool windowsNeedUpdate = false;
    bool deliversInRunLoop = false;
    bool isWaitingForReply = false;

    static NSApplication* existing();
    /// Ends the application and the connection; for tests.
    static void end();

    void post(NSEvent* event) { insert(event, false); }
    void insert(NSEvent* event, bool atStart);
    /// Joins moves of the pointer that nobody has seen yet.
    void postPointer(NSEvent* event);
    /// The next event; null when the date has come, or when `isOver`, which is asked before each wait.
    using Ending = bool (ApplicationState::*)();
    Retained<NSEvent> next(std::uint32_t mask, NSDate* limit, NSString* mode, bool dequeue,
                           Ending isOver = nullptr);
    bool runIsOver();
    bool modalRunIsOver();
    bool performKeyEquivalent(NSEvent* event);
    bool openMenuByKey(NSEvent* event);
    /// Hands the event on; exceptions are reported.
    void handle(NSEvent* event);
    void handleSystem(NSEvent* event);
    void wake();
    bool hasWork();
    void finishTurn();
    void notify(NSString* name, SEL selector);

    void setKeyWindow(NSWindow* window);
    void setMainWindow(NSWindow* window);
    /// Kept alive, for loops in which windows come and go.
    std::vector<Retained<NSWindow>> allWindows();
    void forget(NSWindow* window);
    void noteClosed();
    void noteFocus(NSWindow* window, bool isFocused);
    void updateActivity();
    void pickKeyWindow();
    bool allowsEvents(NSWindow* window);
    NSWindow* modalWindow();
    /// Whether an alert or a panel can be answered: by a user at a display, or by a program that plays one.
    bool canAsk();
    void showCursor();
    NSInteger runSession(ModalSession& session);
    void finishTermination();
};

}  // namespace pelvor
