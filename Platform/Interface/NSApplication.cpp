// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSApplication.h"

#include <algorithm>
#include <cstdlib>

#include "Foundation/NSLog.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/RunLoop/Deadline.h"
#include "Interface/Events/ApplicationState.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSInputManager.h"
#include "Interface/Windows/ToolTipView.h"
#include "Interface/Windows/WindowState.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSApplication, interfaceLibrary) {
    methods.classLevel<"sharedApplication", &NSApplication::sharedApplication>();
    methods.instance<"hasDisplay", &NSApplication::hasDisplay>();
    methods.instance<"run", &NSApplication::run>();
    methods.instance<"stop:", &NSApplication::stop>();
    methods.instance<"isRunning", &NSApplication::isRunning>();
    methods.instance<"finishLaunching", &NSApplication::finishLaunching>();
    methods.instance<"deliverEventsInRunLoop", &NSApplication::deliverEventsInRunLoop>();
    methods.instance<"terminate:", &NSApplication::terminate>();
    methods
        .instance<"replyToApplicationShouldTerminate:", &NSApplication::replyToApplicationShouldTerminate>();
    methods.instance<"terminatesProcess", &NSApplication::terminatesProcess>();
    methods.instance<"setTerminatesProcess:", &NSApplication::setTerminatesProcess>();
    methods.instance<"reportException:", &NSApplication::reportException>();
    methods.instance<"nextEventMatchingMask:untilDate:inMode:dequeue:",
                     &NSApplication::nextEventMatchingMask_untilDate_inMode_dequeue>();
    methods.instance<"discardEventsMatchingMask:beforeEvent:",
                     &NSApplication::discardEventsMatchingMask_beforeEvent>();
    methods.instance<"postEvent:atStart:", &NSApplication::postEvent_atStart>();
    methods.instance<"currentEvent", &NSApplication::currentEvent>();
    methods.instance<"sendEvent:", &NSApplication::sendEvent>();
    methods.instance<"sendAction:to:from:", &NSApplication::sendAction_to_from>();
    methods.instance<"targetForAction:", &NSApplication::targetForAction>();
    methods.instance<"targetForAction:to:from:", &NSApplication::targetForAction_to_from>();
    methods.instance<"mainMenu", &NSApplication::mainMenu>();
    methods.instance<"setMainMenu:", &NSApplication::setMainMenu>();
    methods.instance<"windows", &NSApplication::windows>();
    methods.instance<"orderedWindows", &NSApplication::orderedWindows>();
    methods.instance<"windowWithWindowNumber:", &NSApplication::windowWithWindowNumber>();
    methods.instance<"keyWindow", &NSApplication::keyWindow>();
    methods.instance<"mainWindow", &NSApplication::mainWindow>();
    methods.instance<"modalWindow", &NSApplication::modalWindow>();
    methods.instance<"updateWindows", &NSApplication::updateWindows>();
    methods.instance<"setWindowsNeedUpdate:", &NSApplication::setWindowsNeedUpdate>();
    methods.instance<"runModalForWindow:", &NSApplication::runModalForWindow>();
    methods.instance<"stopModal", &NSApplication::stopModal>();
    methods.instance<"stopModalWithCode:", &NSApplication::stopModalWithCode>();
    methods.instance<"abortModal", &NSApplication::abortModal>();
    methods.instance<"beginModalSessionForWindow:", &NSApplication::beginModalSessionForWindow>();
    methods.instance<"runModalSession:", &NSApplication::runModalSession>();
    methods.instance<"endModalSession:", &NSApplication::endModalSession>();
    methods.instance<"isActive", &NSApplication::isActive>();
    methods.instance<"activateIgnoringOtherApps:", &NSApplication::activateIgnoringOtherApps>();
    methods.instance<"delegate", &NSApplication::delegate>();
    methods.instance<"setDelegate:", &NSApplication::setDelegate>();
}

namespace {

// Never destroyed: at the end of the process, what it uses may have gone before it.
Retained<NSApplication>& sharedOne() {
    static auto* app = new Retained<NSApplication>;
    return *app;
}

}  // namespace

NSApplication* NSApp() { return sharedOne(); }

NSApplication::NSApplication() : _state(std::make_unique<ApplicationState>(this)) {}
NSApplication::~NSApplication() = default;

NSApplication* NSApplication::sharedApplication() {
    if (!sharedOne()) {
        sharedOne() = make<NSApplication>();
        DisplayConnection::shared();
    }
    return sharedOne();
}

void ApplicationState::end() {
    AutoreleasePool pool;
    Retained<NSApplication> app = sharedOne();
    ToolTipView::hide();
    if (app) {
        ApplicationState& state = app->state();
        state.delegate = {};
        for (const auto& window : state.allWindows()) {
            window->setDelegate(nullptr);
            window->orderOut(nullptr);
        }
        state.queue.clear();
        state.current = nullptr;
    }
    NSInputManager::forget();
    sharedOne() = nullptr;
    app = nullptr;
    DisplayConnection::close();
}

bool NSApplication::hasDisplay() { return DisplayConnection::shared().backend().hasDisplay(); }

// MARK: The main loop

void NSApplication::finishLaunching() {
    if (std::exchange(_state->isLaunched, true)) return;
    _state->notify(NSApplicationWillFinishLaunchingNotification, "applicationWillFinishLaunching:"_sel);
    _state->notify(NSApplicationDidFinishLaunchingNotification, "applicationDidFinishLaunching:"_sel);
}

void NSApplication::run() {
    const auto held = Retained<NSApplication>::retaining(this);
    ApplicationState& state = *_state;
    const bool wasRunning = std::exchange(state.isRunning, true);
    state.stops = false;
    while (!state.stops) {
        AutoreleasePool pool;
        try {
            finishLaunching();
            if (!state.hasWork()) break;
            const Retained<NSEvent> event =
                state.next(NSAnyEventMask, NSDate::distantFuture(), NSDefaultRunLoopMode, true,
                           &ApplicationState::runIsOver);
            if (event) state.handle(event);
        } catch (...) {
            reportCurrentException();
        }
    }
    state.stops = false;
    state.isRunning = wasRunning;
}

void NSApplication::stop(id) {
    const auto& sessions = _state->sessions;
    const auto last = std::find_if(sessions.rbegin(), sessions.rend(), [](const auto& session) {
        return session->code == NSRunContinuesResponse;
    });
    if (last == sessions.rend())
        _state->stops = true;
    else
        (*last)->code = NSRunStoppedResponse;
    _state->wake();
}

bool NSApplication::isRunning() { return _state->isRunning; }

void NSApplication::deliverEventsInRunLoop() {
    finishLaunching();
    _state->deliversInRunLoop = true;
    DisplayConnection::shared().needsTurn();
}

void NSApplication::terminate(id) {
    const auto held = Retained<NSApplication>::retaining(this);
    const SEL question = "applicationShouldTerminate:"_sel;
    if (Retained<Object> asked = _state->delegate.object(); asked && asked->respondsToSelector(question)) {
        const int reply = send<int>(asked.get(), question, this);
        if (reply == NSTerminateCancel) return;
        if (reply == NSTerminateLater) {
            _state->isWaitingForReply = true;
            return;
        }
    }
    _state->finishTermination();
}

void NSApplication::replyToApplicationShouldTerminate(bool shouldTerminate) {
    if (std::exchange(_state->isWaitingForReply, false) && shouldTerminate) _state->finishTermination();
}

void ApplicationState::finishTermination() {
    notify(NSApplicationWillTerminateNotification, "applicationWillTerminate:"_sel);
    DisplayConnection::shared().backend().saveClipboard();
    if (terminatesProcess) std::exit(0);
    for (const auto& session : sessions) session->code = NSRunAbortedResponse;
    stops = true;
    wake();
}

bool NSApplication::terminatesProcess() { return _state->terminatesProcess; }
void NSApplication::setTerminatesProcess(bool terminates) { _state->terminatesProcess = terminates; }

void NSApplication::reportException(NSString* description) {
    if (!description) return;
    NSLog(u"An exception ended the handling of an event: %@"_ns, description);
}

void reportCurrentException() {
    NSString* text = nullptr;
    try {
        throw;
    } catch (const std::exception& exception) {
        text = NSString::ofUTF8(exception.what());
    } catch (...) {
        text = u"unknown exception"_ns;
    }
    NSApplication* app = NSApplication::sharedApplication();
    send(app, "reportException:"_sel, text);
}

void ApplicationState::notify(NSString* name, SEL selector) {
    const auto held = Retained<NSApplication>::retaining(app);
    NSNotification* notice = NSNotification::notificationWithName_object(name, app);
    NSNotificationCenter::defaultCenter()->postNotification(notice);
    if (Retained<Object> told = delegate.object(); told && told->respondsToSelector(selector))
        send(told.get(), selector, notice);
}

// MARK: Actions

namespace {

bool responds(Object* object, SEL action) { return object && object->respondsToSelector(action); }

// Of the responders of a window, the window and its delegate.
id targetIn(NSWindow* window, SEL action) {
    if (!window) return nullptr;
    for (NSResponder* level = window->firstResponder(); level; level = level->nextResponder())
        if (responds(level, action)) return level;
    if (responds(window, action)) return window;
    id delegate = window->delegate();
    return responds(delegate, action) ? delegate : nullptr;
}

}  // namespace

id NSApplication::targetForAction(SEL action) {
    if (!action) return nullptr;
    NSWindow* key = keyWindow();
    if (id target = targetIn(key, action)) return target;
    NSWindow* main = mainWindow();
    if (main != key && !modalWindow())
        if (id target = targetIn(main, action)) return target;
    if (responds(this, action)) return this;
    id other = delegate();
    return responds(other, action) ? other : nullptr;
}

id NSApplication::targetForAction_to_from(SEL action, id target, id) {
    if (!target) return targetForAction(action);
    return responds(target, action) ? target : nullptr;
}

bool NSApplication::sendAction_to_from(SEL action, id target, id sender) {
    if (!action) return false;
    const auto found = Retained<Object>::retaining(targetForAction_to_from(action, target, sender));
    if (!found) return false;
    const auto heldSender = Retained<Object>::retaining(sender);
    send(found.get(), action, sender);
    return true;
}

bool NSApplication::tryToPerform_with(SEL action, id argument) {
    if (NSResponder::tryToPerform_with(action, argument)) return true;
    Retained<Object> other = _state->delegate.object();
    if (!action || !responds(other, action)) return false;
    send(other.get(), action, argument);
    return true;
}

void NSApplication::doCommandBySelector(SEL selector) {
    Retained<Object> other = _state->delegate.object();
    if (selector && !respondsToSelector(selector) && responds(other, selector))
        send(other.get(), selector, id(nullptr));
    else
        NSResponder::doCommandBySelector(selector);
}

id NSApplication::delegate() { return _state->delegate.object().autorelease(); }
void NSApplication::setDelegate(id delegate) { _state->delegate = WeakHandle(delegate); }

NSMenu* NSApplication::mainMenu() { return _state->mainMenu; }
void NSApplication::setMainMenu(NSMenu* menu) {
    _state->mainMenu.set(menu);
    for (const auto& window : _state->allWindows()) window->state().updateMenuBar();
}

// MARK: Windows

NSArray* NSApplication::windows() {
    NSMutableArray* list = NSMutableArray::array();
    for (NSWindow* window : _state->windows)
        if (!window->state().isClosed) list->addObject(window);
    return list;
}

NSArray* NSApplication::orderedWindows() {
    NSMutableArray* list = NSMutableArray::array();
    for (const auto& window : _state->ordered) list->addObject(window);
    return list;
}

NSWindow* NSApplication::windowWithWindowNumber(NSInteger number) {
    for (NSWindow* window : _state->windows)
        if (window->state().number == number) return window;
    return nullptr;
}

NSWindow* NSApplication::keyWindow() { return _state->keyWindow; }
NSWindow* NSApplication::mainWindow() { return _state->mainWindow; }
NSWindow* NSApplication::modalWindow() { return _state->modalWindow(); }

void NSApplication::setWindowsNeedUpdate(bool need) { _state->windowsNeedUpdate = need; }

void NSApplication::updateWindows() {
    _state->windowsNeedUpdate = false;
    _state->notify(NSApplicationWillUpdateNotification, "applicationWillUpdate:"_sel);
    for (const auto& window : std::vector<Retained<NSWindow>>(_state->ordered)) window->update();
    _state->notify(NSApplicationDidUpdateNotification, "applicationDidUpdate:"_sel);
}

void ApplicationState::setKeyWindow(NSWindow* window) {
    if (keyWindow == window) return;
    const auto old = Retained<NSWindow>::retaining(keyWindow);
    const auto next = Retained<NSWindow>::retaining(window);
    keyWindow = window;
    if (old) old->resignKeyWindow();
    if (!window || keyWindow != window) return;
    window->becomeKeyWindow();
    if (keyWindow == window && window->canBecomeMainWindow()) setMainWindow(window);
}

void ApplicationState::setMainWindow(NSWindow* window) {
    if (mainWindow == window) return;
    const auto old = Retained<NSWindow>::retaining(mainWindow);
    const auto next = Retained<NSWindow>::retaining(window);
    mainWindow = window;
    if (old) old->resignMainWindow();
    if (window && mainWindow == window) window->becomeMainWindow();
}

std::vector<Retained<NSWindow>> ApplicationState::allWindows() {
    std::vector<Retained<NSWindow>> all;
    for (NSWindow* window : windows) all.push_back(Retained<NSWindow>::retaining(window));
    return all;
}

// The window is ending.
void ApplicationState::forget(NSWindow* window) {
    std::erase(windows, window);
    if (keyWindow == window) keyWindow = nullptr;
    if (mainWindow == window) mainWindow = nullptr;
}

void ApplicationState::noteClosed() {
    const SEL question = "applicationShouldTerminateAfterLastWindowClosed:"_sel;
    const bool isLast = std::none_of(ordered.begin(), ordered.end(), [](const auto& window) {
        return !window->state().isPanel && window->level() == NSNormalWindowLevel;
    });
    Retained<Object> asked = delegate.object();
    if (isLast && responds(asked, question) && send<bool>(asked.get(), question, app)) app->terminate(app);
}

// The front window that can have the keys.
void ApplicationState::pickKeyWindow() {
    if (keyWindow) return;
    for (const auto& window : std::vector<Retained<NSWindow>>(ordered)) {
        if (!window->canBecomeKeyWindow() || window->isMiniaturized() || !allowsEvents(window)) continue;
        window->makeKeyWindow();
        return;
    }
}

void ApplicationState::noteFocus(NSWindow* window, bool isFocused) {
    const auto held = Retained<NSWindow>::retaining(window);
    if (isFocused) {
        focused = WeakHandle(window);
        if (!allowsEvents(window)) {
            if (NSWindow* modal = modalWindow()) modal->makeKeyAndOrderFront(nullptr);
        } else if (window->isVisible() && window->canBecomeKeyWindow()) {
            auto place = std::find(ordered.begin(), ordered.end(), window);
            if (place != ordered.end()) std::rotate(ordered.begin(), place, place + 1);
            setKeyWindow(window);
        }
    } else if (focused.object() == window) {
        focused = {};
        if (keyWindow == window) setKeyWindow(nullptr);
        NSInputManager::currentInputManager()->abandonMarkedTextInWindow(window);
    }
    DisplayConnection::shared().needsTurn();
}

// Between two windows of the program the focus is nowhere until the window manager has moved it.
void ApplicationState::updateActivity() {
    constexpr double kPatience = 0.1;  // seconds
    const bool hasFocus = static_cast<bool>(focused.object());
    if (isActive == hasFocus) {
        focusLost = 0;
        return;
    }
    if (!hasFocus && focusLost == 0) {
        focusLost = steadyTime();
        DisplayConnection::shared().needsTurnAfter(kPatience);
    }
    if (!hasFocus && steadyTime() - focusLost < kPatience - 0.001) return;
    focusLost = 0;
    isActive = hasFocus;
    for (const auto& window : allWindows()) {
        if (!window->hidesOnDeactivate()) continue;
        if (!isActive && window->isVisible()) {
            window->orderOut(nullptr);
            window->state().isHiddenByDeactivation = true;
        } else if (isActive && std::exchange(window->state().isHiddenByDeactivation, false)) {
            window->orderFront(nullptr);
        }
    }
    if (isActive)
        notify(NSApplicationDidBecomeActiveNotification, "applicationDidBecomeActive:"_sel);
    else
        notify(NSApplicationDidResignActiveNotification, "applicationDidResignActive:"_sel);
}

bool NSApplication::isActive() { return _state->isActive; }

void NSApplication::activateIgnoringOtherApps(bool) {
    NSWindow* window = keyWindow() ? keyWindow() : mainWindow();
    if (window)
        window->makeKeyAndOrderFront(nullptr);
    else
        _state->pickKeyWindow();
}

// MARK: Modal windows

NSWindow* ApplicationState::modalWindow() {
    return sessions.empty() ? nullptr : sessions.back()->window.get();
}

bool ApplicationState::canAsk() {
    const InterfaceBackend& backend = DisplayConnection::shared().backend();
    return backend.hasUser() && (backend.hasDisplay() || isRunning);
}

bool ApplicationState::allowsEvents(NSWindow* window) {
    NSWindow* modal = modalWindow();
    if (!modal || !window || window->worksWhenModal() || window->level() >= NSPopUpMenuWindowLevel)
        return true;
    for (NSWindow* level = window; level; level = level->parentWindow())
        if (level == modal) return true;
    return false;
}

NSModalSession NSApplication::beginModalSessionForWindow(NSWindow* window) {
    if (!window) return nullptr;
    auto session = std::make_unique<ModalSession>();
    session->window.set(window);
    NSModalSession made = session.get();
    _state->sessions.push_back(std::move(session));
    if (!window->isVisible()) window->center();
    window->makeKeyAndOrderFront(nullptr);
    return made;
}

namespace {

ModalSession* sessionIn(ApplicationState& state, NSModalSession session) {
    for (const auto& known : state.sessions)
        if (known.get() == session) return session;
    return nullptr;
}

}  // namespace

NSInteger NSApplication::runModalSession(NSModalSession session) {
    if (!sessionIn(*_state, session)) return NSRunAbortedResponse;
    while (session->code == NSRunContinuesResponse) {
        const Retained<NSEvent> event = _state->next(NSAnyEventMask, nullptr, NSModalPanelRunLoopMode, true);
        if (!event) break;
        _state->handle(event);
        if (!sessionIn(*_state, session)) return NSRunAbortedResponse;
    }
    return session->code;
}

void NSApplication::endModalSession(NSModalSession session) {
    const auto held = Retained<NSApplication>::retaining(this);
    std::unique_ptr<ModalSession> ended;  // its window may end with it
    for (auto each = _state->sessions.begin(); each != _state->sessions.end(); ++each) {
        if (each->get() != session) continue;
        ended = std::move(*each);
        _state->sessions.erase(each);
        break;
    }
}

// A window that is no longer on the screen ends its run: nobody could.
NSInteger ApplicationState::runSession(ModalSession& session) {
    while (session.code == NSRunContinuesResponse) {
        AutoreleasePool pool;
        if (!session.window->isVisible()) return NSRunAbortedResponse;
        const Retained<NSEvent> event = next(NSAnyEventMask, NSDate::distantFuture(), NSModalPanelRunLoopMode,
                                             true, &ApplicationState::modalRunIsOver);
        if (event) handle(event);
    }
    return session.code;
}

NSInteger NSApplication::runModalForWindow(NSWindow* window) {
    const auto held = Retained<NSApplication>::retaining(this);
    NSModalSession session = beginModalSessionForWindow(window);
    if (!session) return NSRunAbortedResponse;
    struct End {
        NSApplication* app;
        NSModalSession session;
        ~End() { app->endModalSession(session); }
    } end{this, session};
    return _state->runSession(*session);
}

void NSApplication::stopModal() { stopModalWithCode(NSRunStoppedResponse); }

void NSApplication::stopModalWithCode(NSInteger code) {
    if (_state->sessions.empty()) return;
    _state->sessions.back()->code = code;
    _state->wake();
}

void NSApplication::abortModal() { stopModalWithCode(NSRunAbortedResponse); }

}  // namespace pelvor
