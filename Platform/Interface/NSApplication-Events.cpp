// SPDX-License-Identifier: Apache-2.0
// The application's queue of events, and where events go.
#include <algorithm>

#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSTimer.h"
#include "Foundation/RunLoop/Deadline.h"
#include "Interface/Events/ApplicationState.h"
#include "Interface/Menus/ContextMenu.h"
#include "Interface/NSInputManager.h"
#include "Interface/NSMenu.h"
#include "Interface/Windows/ToolTipView.h"
#include "Interface/Windows/WindowState.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"

namespace pelvor {

// MARK: The queue

void ApplicationState::insert(NSEvent* event, bool atStart) {
    if (!event) return;
    auto held = Retained<NSEvent>::retaining(event);
    if (atStart)
        queue.push_front(std::move(held));
    else
        queue.push_back(std::move(held));
    if (deliversInRunLoop && !waiting) DisplayConnection::shared().needsTurn();
}

void ApplicationState::postPointer(NSEvent* event) {
    const NSEventType type = event->type();
    const bool isMove = type == NSMouseMoved || type == NSLeftMouseDragged || type == NSRightMouseDragged ||
                        type == NSOtherMouseDragged;
    NSEvent* last = queue.empty() ? nullptr : queue.back().get();
    if (isMove && last && last->type() == type && last->windowNumber() == event->windowNumber() &&
        last->modifierFlags() == event->modifierFlags())
        queue.back() = EventMaker::joined(last, event);
    else
        post(event);
}

namespace {

bool matches(NSEvent* event, std::uint32_t mask) { return NSEventMaskFromType(event->type()) & mask; }

}  // namespace

Retained<NSEvent> ApplicationState::next(std::uint32_t mask, NSDate* limit, NSString* mode, bool dequeue,
                                         Ending isOver) {
    const auto held = Retained<NSApplication>::retaining(app);
    if (!mode) mode = NSDefaultRunLoopMode;
    NSRunLoop* loop = NSRunLoop::mainRunLoop();
    struct Waiting {
        explicit Waiting(int& count) : _count(++count) {}
        ~Waiting() { --_count; }
        int& _count;
    } const counted(waiting);
    bool isLast = false;
    while (true) {
        auto found = std::find_if(queue.begin(), queue.end(),
                                  [=](const auto& event) { return matches(event.get(), mask); });
        if (found != queue.end()) {
            Retained<NSEvent> event = *found;
            if (dequeue) queue.erase(found);
            return event;
        }
        if (isLast) return nullptr;
        if (DisplayConnection::shared().poll()) continue;
        if (!limit || limit->timeIntervalSinceNow() <= 0) {
            isLast = true;
            loop->performReadyWorkForMode(mode);
            DisplayConnection::shared().poll();
        } else {
            if (isOver && (this->*isOver)()) return nullptr;
            loop->runMode_beforeDate(mode, limit);
        }
    }
}

bool ApplicationState::runIsOver() { return stops || !hasWork(); }

bool ApplicationState::modalRunIsOver() {
    const ModalSession& session = *sessions.back();
    return session.code != NSRunContinuesResponse || !session.window->isVisible();
}

// Whether somebody can still give `run` something to do.
bool ApplicationState::hasWork() {
    return !queue.empty() || !ordered.empty() || DisplayConnection::shared().backend().hasDisplay() ||
           NSRunLoop::mainRunLoop()->hasWorkForMode(NSDefaultRunLoopMode);
}

NSEvent* NSApplication::nextEventMatchingMask_untilDate_inMode_dequeue(NSUInteger mask, NSDate* limit,
                                                                       NSString* mode, bool dequeue) {
    Retained<NSEvent> event = _state->next(mask, limit, mode, dequeue);
    if (event && dequeue) _state->current = event;
    return std::move(event).autorelease();
}

void NSApplication::discardEventsMatchingMask_beforeEvent(NSUInteger mask, NSEvent* last) {
    auto& queue = _state->queue;
    auto end = std::find(queue.begin(), queue.end(), last);
    const std::size_t kept = static_cast<std::size_t>(queue.end() - end);
    std::deque<Retained<NSEvent>> left;
    for (std::size_t i = 0; i < queue.size(); ++i)
        if (i + kept >= queue.size() || !matches(queue[i], mask)) left.push_back(queue[i]);
    queue.swap(left);
}

void NSApplication::postEvent_atStart(NSEvent* event, bool atStart) { _state->insert(event, atStart); }

NSEvent* NSApplication::currentEvent() { return _state->current; }

// A run that waits looks again.
void ApplicationState::wake() { NSRunLoop::mainRunLoop()->wakeUp(); }

// MARK: Handling

void ApplicationState::handle(NSEvent* event) {
    const auto held = Retained<NSApplication>::retaining(app);
    current.set(event);
    const bool isAltAlone = menuKeys.isAltAlone(event);
    try {
        menuKeys.showLetters(allowsEvents(keyWindow) ? keyWindow : nullptr);
        if (event->type() == NSSystemDefined)
            handleSystem(event);
        else
            send(app, "sendEvent:"_sel, event);
        if (isAltAlone && allowsEvents(keyWindow)) menuKeys.openFirst(keyWindow);
        if (windowsNeedUpdate) app->updateWindows();
    } catch (...) {
        reportCurrentException();
    }
}

void ApplicationState::handleSystem(NSEvent* event) {
    const auto window = Retained<NSWindow>::retaining(event->window());
    switch (static_cast<SystemEvent>(event->subtype())) {
        case SystemEvent::closeWindow:
            if (window && allowsEvents(window)) window->performClose(app);
            return;
        case SystemEvent::configured:
            if (window) window->state().applyReport();
            return;
        case SystemEvent::focus:
            if (window) noteFocus(window, event->data1());
            return;
        case SystemEvent::screensChanged:
            for (NSWindow* each : windows) each->state().painter.addAll();
            return notify(NSApplicationDidChangeScreenParametersNotification,
                          "applicationDidChangeScreenParameters:"_sel);
        case SystemEvent::layoutsChanged:
            return DisplayConnection::shared().tellLayoutChanges();
        case SystemEvent::displayLost:  // nobody can end what runs
            for (const auto& session : sessions) session->code = NSRunAbortedResponse;
            stops = true;
            DisplayConnection::shared().tellLayoutChanges();
            return notify(NSApplicationDidLoseDisplayNotification, "applicationDidLoseDisplay:"_sel);
        case SystemEvent::keysTaken:  // MenuKeys sees it
            return;
        case SystemEvent::input:
            return NSInputManager::currentInputManager()->deliverReplies();
    }
    send(app, "sendEvent:"_sel, event);
}

void ApplicationState::finishTurn() {
    const auto held = Retained<NSApplication>::retaining(app);
    if (deliversInRunLoop && !waiting) {
        while (!queue.empty()) {
            AutoreleasePool pool;
            const Retained<NSEvent> event = queue.front();
            queue.pop_front();
            handle(event);
        }
    }
    try {
        updateActivity();
    } catch (...) {
        reportCurrentException();
    }
    for (const auto& window : std::vector<Retained<NSWindow>>(ordered)) {
        try {
            window->state().tracking.refresh();
        } catch (...) {
            reportCurrentException();
        }
        window->state().painter.paint();
    }
}

void ApplicationState::showCursor() {
    auto window = pointerWindow.object();
    auto* under = cast<NSWindow>(window.get());
    if (!under || !under->state().backendWindow) return;
    const bool isHidden = hiddenCursors > 0 || isCursorHiddenUntilMove;
    const BackendCursor shape = isHidden          ? BackendCursor::hidden
                                : cursors.empty() ? BackendCursor::arrow
                                                  : cursors.back()->shape();
    if (std::exchange(under->state().shownCursor, shape) == shape) return;
    DisplayConnection::shared().backend().setCursor(under->state().backendWindow, shape);
    DisplayConnection::shared().needsTurn();
}

namespace {

// Keys that may stand for commands: what has a modifier that types nothing, and function keys.
bool mayBeEquivalent(NSEvent* event) {
    if (event->modifierFlags() & (NSCommandKeyMask | NSAlternateKeyMask | NSControlKeyMask)) return true;
    NSString* characters = event->characters();
    if (!characters->length()) return false;
    const unichar unit = characters->characterAtIndex(0);
    return unit >= NSF1FunctionKey && unit <= NSF35FunctionKey;
}

}  // namespace

bool ApplicationState::performKeyEquivalent(NSEvent* event) {
    if (keyWindow && allowsEvents(keyWindow) && send<bool>(keyWindow, "performKeyEquivalent:"_sel, event))
        return true;
    const auto menu = mainMenu;
    return menu && send<bool>(menu.get(), "performKeyEquivalent:"_sel, event);
}

// A title of the menu bar by its letter, or the context menu.
bool ApplicationState::openMenuByKey(NSEvent* event) {
    if (!keyWindow || !allowsEvents(keyWindow)) return false;
    return menuKeys.openByLetter(event, keyWindow) || openContextMenu(event, keyWindow);
}

void NSApplication::sendEvent(NSEvent* event) {
    if (!event) return;
    const auto held = Retained<NSApplication>::retaining(this);
    const auto heldEvent = Retained<NSEvent>::retaining(event);
    const NSEventType type = event->type();
    constexpr std::uint32_t kEndsTips =
        NSKeyDownMask | NSLeftMouseDownMask | NSRightMouseDownMask | NSOtherMouseDownMask | NSScrollWheelMask;
    if (NSEventMaskFromType(type) & kEndsTips) ToolTipView::hide();
    const bool isKey = type == NSKeyDown || type == NSKeyUp || type == NSFlagsChanged;
    if (type == NSKeyDown && mayBeEquivalent(event) && _state->performKeyEquivalent(event)) return;
    if (type == NSKeyDown && _state->openMenuByKey(event)) return;
    const auto window = Retained<NSWindow>::retaining(isKey && keyWindow() ? keyWindow() : event->window());
    if (!window) return;
    if (!isKey && type != NSScrollWheel && std::exchange(_state->isCursorHiddenUntilMove, false))
        _state->showCursor();
    if (_state->allowsEvents(window)) {
        send(window.get(), "sendEvent:"_sel, event);
    } else if (type == NSLeftMouseDown || type == NSKeyDown) {
        NSBeep();
        if (NSWindow* modal = modalWindow()) modal->makeKeyAndOrderFront(nullptr);
    }
}

}  // namespace pelvor
