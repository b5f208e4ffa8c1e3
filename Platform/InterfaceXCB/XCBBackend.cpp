// SPDX-License-Identifier: Apache-2.0
#include "InterfaceXCB/XCBBackend.h"

#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace pelvor {

namespace {

/// Of the events that only grabs cause: pointer and focus are where they were.
bool isOfGrab(std::uint8_t mode) { return mode == XCB_NOTIFY_MODE_GRAB || mode == XCB_NOTIFY_MODE_UNGRAB; }

bool contains(const PixelRect& rect, const PixelPoint& point) {
    return point.x >= rect.x && point.x < rect.x + rect.width && point.y >= rect.y &&
           point.y < rect.y + rect.height;
}

}  // namespace

XCBBackend::XCBBackend(std::unique_ptr<XConnection> connection, BackendSink& sink)
    : _connection(std::move(connection)), _sink(sink) {}

XCBBackend::~XCBBackend() = default;

XWindow* XCBBackend::windowOf(BackendWindow id) {
    const auto found = std::ranges::find(_windows, id, &XWindow::id);
    return found == _windows.end() ? nullptr : found->get();
}

XWindow* XCBBackend::windowOfHandle(xcb_window_t handle) {
    const auto found = std::ranges::find(_windows, handle, &XWindow::handle);
    return found == _windows.end() ? nullptr : found->get();
}

// MARK: The loop

int XCBBackend::descriptor() const { return _isLost ? -1 : xcb_get_file_descriptor(*_connection); }

bool XCBBackend::prepare() {
    if (_isLost) return false;
    _connection->flush();
    if (_hasShown) startRest();
    return _connection->hasQueuedEvents() || _connection->isLost();
}

void XCBBackend::dispatch() {
    while (const XEvent event = _isLost ? nullptr : _connection->nextEvent())
        if (!_textInput.method().filter(event.get())) {
            deliver(*event);
            _pointer.setKnownPlace({});
        }
    if (!_isLost && _connection->isLost()) return loseDisplay();
    _selections.giveUpLate();
    _textInput.method().takeBackLate();
    _drags.giveUpLate();
    _connection->flush();
    if (_screens.collect()) _sink.screensChanged();
}

double XCBBackend::timeout() {
    return _isLost ? std::numeric_limits<double>::infinity()
                   : std::min({_selections.secondsLeft(), _textInput.method().secondsLeft(),
                               _drags.secondsLeft()});
}

/// What keys need is fetched when something is to be seen already.
void XCBBackend::startRest() {
    if (std::exchange(_hasStarted, true)) return;
    _textInput.prepare();
}

void XCBBackend::loseDisplay() {
    _isLost = true;
    _tracked = 0;
    _selections.giveUpAll();
    _drags.cancel();
    _textInput.method().abandon();
    _sink.lost("the connection to the server has ended");
}

// MARK: Windows

BackendWindow XCBBackend::createWindow(const WindowWishes& wishes) {
    if (_connection->isLost()) return 0;
    const XWindow* parent = windowOf(wishes.parent);
    const BackendWindow id = ++_latestWindow;
    _windows.push_back(std::make_unique<XWindow>(*_connection, id, wishes, parent ? parent->handle() : 0));
    return id;
}

void XCBBackend::destroyWindow(BackendWindow id) {
    if (_tracked == id) endTracking();
    if (_drags.window() == id) _drags.cancel();
    if (_focused == id) _focused = 0;
    _textInput.method().windowEnded(id);
    std::erase_if(_windows, [id](const auto& window) { return window->id() == id; });
    _connection->flush();
}

void XCBBackend::configure(BackendWindow id, const WindowChanges& changes) {
    XWindow* window = windowOf(id);
    if (!window) return;
    const bool hasManager = _screens.hasWindowManager();
    if (changes.title) window->setTitle(*changes.title);
    if (changes.isDocumentEdited) window->setDocumentEdited(*changes.isDocumentEdited);
    if (changes.minimumAndMaximum) window->setLimits(*changes.minimumAndMaximum);
    if (changes.frame) window->setFrame(*changes.frame);
    if (changes.isZoomed) window->zoom(*changes.isZoomed, hasManager, screenOf(*window).visibleFrame);
    if (changes.isFullScreen) window->fillScreen(*changes.isFullScreen, hasManager, screenOf(*window).frame);
    const bool isTold = changes.isMinimized && window->minimize(*changes.isMinimized, hasManager);
    if (changes.isShown) {
        if (!*changes.isShown && _tracked == id) endTracking();
        window->show(*changes.isShown);
    }
    if (changes.raises) window->raise();
    if (changes.takesFocus) window->takeFocus(hasManager);
    _connection->flush();
    if (isTold) tellConfigured(*window);
}

/// The one that holds the window's middle, else the main one.
const BackendScreen& XCBBackend::screenOf(const XWindow& window) {
    const PixelRect& frame = window.frame();
    const int x = frame.x + frame.width / 2;
    const int y = frame.y + frame.height / 2;
    const std::vector<BackendScreen>& screens = _screens.list();
    const auto found = std::ranges::find_if(screens, [&](const BackendScreen& screen) {
        return x >= screen.frame.x && x < screen.frame.x + screen.frame.width && y >= screen.frame.y &&
               y < screen.frame.y + screen.frame.height;
    });
    return found == screens.end() ? screens.front() : *found;
}

void XCBBackend::tellConfigured(const XWindow& window) {
    _sink.configured(window.id(), window.frame(), window.isMinimized(), window.isZoomed());
}

PixelRect XCBBackend::frameExtents(BackendWindow id) {
    XWindow* window = windowOf(id);
    return window ? window->frameExtents(_screens.hasWindowManager()) : PixelRect{};
}

const BackendImage* XCBBackend::beginPaint(BackendWindow id) {
    XWindow* window = windowOf(id);
    return window ? window->beginPaint() : nullptr;
}

void XCBBackend::present(BackendWindow id, std::span<const PixelRect> damage, bool isLast) {
    if (XWindow* window = windowOf(id)) _hasShown |= window->present(damage, isLast);
}

// MARK: Pointer and tracking

void XCBBackend::setCursor(BackendWindow id, BackendCursor cursor) {
    if (const XWindow* window = windowOf(id)) _pointer.setCursor(window->handle(), cursor);
}

bool XCBBackend::beginTracking(BackendWindow id) {
    const XWindow* menu = windowOf(id);
    if (!menu || _connection->isLost()) return false;
    _tracked = id;
    _hasGrab = _pointer.grab(menu->handle());
    return _hasGrab;
}

void XCBBackend::endTracking() {
    _tracked = 0;
    if (std::exchange(_hasGrab, false)) _pointer.ungrab();
}

// MARK: Keys

void XCBBackend::interpretKey(BackendWindow window, const BackendKey& key) {
    _textInput.interpret(window, key);
}

void XCBBackend::setTextInput(BackendWindow window, const PixelRect* caret) {
    const XWindow* shown = windowOf(window);
    if (!shown) return;
    _textInput.method().setCaret(window, shown->handle(), caret);
    if (!caret) _textInput.reset(window);
    _connection->flush();
}

void XCBBackend::resetComposing(BackendWindow window) { _textInput.reset(window); }

// MARK: Selections

bool XCBBackend::offerSelection(BackendSelection selection, std::vector<std::string> types,
                                SelectionProvider provider) {
    return _selections.offer(selection, std::move(types), std::move(provider));
}

void XCBBackend::requestTypes(BackendSelection selection, SelectionReceiver done) {
    _selections.requestTypes(selection, std::move(done));
}

void XCBBackend::requestSelection(BackendSelection selection, const std::string& type,
                                  SelectionReceiver done) {
    _selections.request(selection, type, std::move(done),
                        selection == BackendSelection::drag ? _drags.dropTime() : 0);
}

bool XCBBackend::beginDrag(BackendWindow id, std::function<void(bool isTaken)> done) {
    const XWindow* window = windowOf(id);
    return window && _drags.begin(id, window->handle(), std::move(done));
}

// Under Wayland the user's layouts are the compositor's, and what this server is told changes nothing.

std::vector<BackendLayout> XCBBackend::layouts() {
    return _screens.areOfWayland() ? std::vector<BackendLayout>() : _keyboard.layouts();
}

bool XCBBackend::setLayout(std::uint32_t group) {
    return !_screens.areOfWayland() && _keyboard.setLayout(group);
}

void XCBBackend::beep() {
    xcb_bell(*_connection, 0);
    _connection->flush();
}

// MARK: Events

void XCBBackend::deliver(const XAnyEvent& event) {
    bool isLayoutChanged = false;
    if (_screens.handle(event) || _selections.handle(event) || _drags.handle(event)) return;
    if (_keyboard.handle(event, isLayoutChanged)) {
        if (isLayoutChanged) _sink.layoutChanged();
        return;
    }
    switch (kindOf(event)) {
        case 0:
            return deliverError(event);
        case XCB_KEY_PRESS:
        case XCB_KEY_RELEASE:
            return deliverKey(as<xcb_key_press_event_t>(event));
        case XCB_BUTTON_PRESS:
        case XCB_BUTTON_RELEASE:
            return deliverButton(as<xcb_button_press_event_t>(event));
        case XCB_MOTION_NOTIFY:
            return deliverMotion(as<xcb_motion_notify_event_t>(event));
        case XCB_ENTER_NOTIFY:
        case XCB_LEAVE_NOTIFY:
            return deliverCrossing(as<xcb_enter_notify_event_t>(event));
        case XCB_FOCUS_IN:
        case XCB_FOCUS_OUT:
            return deliverFocus(as<xcb_focus_in_event_t>(event));
        case XCB_CONFIGURE_NOTIFY:
            return deliverConfigure(as<xcb_configure_notify_event_t>(event));
        case XCB_EXPOSE:
            return deliverExpose(as<xcb_expose_event_t>(event));
        case XCB_CLIENT_MESSAGE:
            return deliverMessage(as<xcb_client_message_event_t>(event));
        case XCB_MAP_NOTIFY:
        case XCB_UNMAP_NOTIFY:
            if (XWindow* window = windowOfHandle(as<xcb_map_notify_event_t>(event).window)) {
                const bool isMapped = kindOf(event) == XCB_MAP_NOTIFY;
                _screens.ask();
                window->handleMap(isMapped, _screens.hasWindowManager());
                // A window manager places the window and then tells; without one nothing is changed.
                if (isMapped && !_screens.hasWindowManager()) tellConfigured(*window);
            }
            return;
        case XCB_PROPERTY_NOTIFY: {
            const auto& change = as<xcb_property_notify_event_t>(event);
            _connection->noteTime(change.time);
            XWindow* window = windowOfHandle(change.window);
            if (window && window->handleProperty(change.atom)) tellConfigured(*window);
            return;
        }
        default:
            break;
    }
    const xcb_query_extension_reply_t* shm = xcb_get_extension_data(*_connection, &xcb_shm_id);
    if (shm && shm->present && kindOf(event) == shm->first_event + XCB_SHM_COMPLETION)
        deliverRead(as<xcb_shm_completion_event_t>(event).drawable);
}

void XCBBackend::deliverKey(const xcb_key_press_event_t& event) {
    _connection->noteTime(event.time);
    const XWindow* window = windowOfHandle(event.event);
    const BackendKey key = _keyboard.key(event);
    if (!window) return;
    _pointer.setKnownPlace(PixelPoint{event.root_x, event.root_y});
    _textInput.note(window->id(), event);
    _sink.key(_tracked ? _tracked : window->id(), key);
}

void XCBBackend::deliverButton(const xcb_button_press_event_t& event) {
    _connection->noteTime(event.time);
    XWindow* window = windowOfHandle(event.event);
    const BackendPointer pointer = _pointer.button(event);
    const bool isPress = kindOf(event) == XCB_BUTTON_PRESS;
    if (!window || (pointer.kind == BackendPointer::Kind::scrolled && !isPress)) return;
    const BackendWindow id = window->id();
    if (pointer.kind == BackendPointer::Kind::down) {
        _textInput.reset(id);
        // Outside our windows, the window that has the grab gets what happens.
        if (_tracked == id && !contains(window->frame(), pointer.onScreen)) return _sink.trackingLost();
        if (!_screens.hasWindowManager() && !window->isPopUp() && _focused != id) {
            window->raise();
            window->takeFocus(false);
        }
    }
    _sink.pointer(id, pointer);
}

void XCBBackend::deliverMotion(const xcb_motion_notify_event_t& event) {
    // Only the latest of places that come one after the other matters.
    const XAnyEvent* next = _connection->peekEvent();
    if (next && kindOf(*next) == XCB_MOTION_NOTIFY &&
        as<xcb_motion_notify_event_t>(*next).event == event.event &&
        as<xcb_motion_notify_event_t>(*next).state == event.state)
        return;
    _connection->noteTime(event.time);
    if (const XWindow* window = windowOfHandle(event.event))
        _sink.pointer(window->id(), _pointer.motion(event));
}

void XCBBackend::deliverCrossing(const xcb_enter_notify_event_t& event) {
    _connection->noteTime(event.time);
    const XWindow* window = windowOfHandle(event.event);
    if (window && !isOfGrab(event.mode) && event.detail != XCB_NOTIFY_DETAIL_INFERIOR)
        _sink.pointer(window->id(), _pointer.crossing(event));
}

void XCBBackend::deliverFocus(const xcb_focus_in_event_t& event) {
    const XWindow* window = windowOfHandle(event.event);
    const bool isOfPointer =
        event.detail == XCB_NOTIFY_DETAIL_POINTER || event.detail == XCB_NOTIFY_DETAIL_INFERIOR;
    if (window && event.mode == XCB_NOTIFY_MODE_GRAB) _sink.keysTaken();
    if (!window || isOfGrab(event.mode) || isOfPointer) return;
    const BackendWindow id = window->id();
    const bool isFocused = kindOf(event) == XCB_FOCUS_IN;
    if (isFocused == (_focused == id)) return;
    _focused = isFocused ? id : 0;
    _keyboard.forgetKeysDown();
    _textInput.reset(id);
    _textInput.method().setFocused(id, event.event, isFocused);
    _sink.focus(id, isFocused);
    if (!isFocused && _tracked) _sink.trackingLost();
}

void XCBBackend::deliverConfigure(const xcb_configure_notify_event_t& event) {
    const XAnyEvent* next = _connection->peekEvent();
    if (next && kindOf(*next) == XCB_CONFIGURE_NOTIFY &&
        as<xcb_configure_notify_event_t>(*next).window == event.window)
        return;
    XWindow* window = windowOfHandle(event.window);
    if (!window) return;
    const PixelRect before = window->frame();
    if (!window->handleConfigure(event)) return;
    if (before.x != window->frame().x || before.y != window->frame().y) _screens.ask();
    tellConfigured(*window);
}

void XCBBackend::deliverExpose(const xcb_expose_event_t& event) {
    XWindow* window = windowOfHandle(event.window);
    if (!window) return;
    const PixelRect damage = window->expose({event.x, event.y, event.width, event.height});
    if (damage.width > 0) return _sink.expose(window->id(), damage);
    _hasShown = true;
    _connection->flush();
}

void XCBBackend::deliverMessage(const xcb_client_message_event_t& event) {
    const XWindow* window = windowOfHandle(event.window);
    if (_drags.handleMessage(event, window)) return;
    if (!window || event.type != (*_connection)[Atom::WM_PROTOCOLS] || event.format != 32) return;
    const xcb_atom_t protocol = event.data.data32[0];
    if (protocol == (*_connection)[Atom::WM_DELETE_WINDOW]) return _sink.close(window->id());
    if (protocol != (*_connection)[Atom::_NET_WM_PING]) return;
    std::array<std::uint32_t, 5> words{};
    std::ranges::copy(event.data.data32, words.begin());
    _connection->sendMessage(_connection->root(), _connection->root(), event.type, words,
                             XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
}

/// `handle` 0: of all windows.
void XCBBackend::deliverRead(xcb_window_t handle) {
    std::vector<BackendWindow> ready;
    for (const auto& window : _windows)
        if ((handle == 0 || window->handle() == handle) && window->noteRead(handle == 0))
            ready.push_back(window->id());
    for (const BackendWindow id : ready)
        if (windowOf(id)) _sink.paintReady(id);
}

void XCBBackend::deliverError(const XAnyEvent& event) {
    // Windows end while requests for them are under way, so that errors are nothing uncommon. One of sharing
    // pixels means that they will not be read.
    const xcb_query_extension_reply_t* shm = xcb_get_extension_data(*_connection, &xcb_shm_id);
    if (shm && shm->present && as<xcb_generic_error_t>(event).major_code == shm->major_opcode) deliverRead(0);
}

}  // namespace pelvor

/// Called by the library when there is a display.
extern "C" __attribute__((visibility("default"))) pelvor::InterfaceBackend* interface_backend_2(
    pelvor::BackendSink* sink, std::string* reason) {
    std::unique_ptr<pelvor::XConnection> connection = pelvor::XConnection::open(reason);
    return connection ? new pelvor::XCBBackend(std::move(connection), *sink) : nullptr;
}
