// SPDX-License-Identifier: Apache-2.0
#include "InterfaceXCB/Drags.h"

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace pelvor {

namespace {

constexpr std::uint32_t kVersion = 5;
constexpr std::uint32_t kOldestVersion = 3;
constexpr double kStatusPatience = 1;
constexpr double kDropPatience = 10;  // a partner reads the content meanwhile
constexpr xcb_keycode_t kEscapeKey = 9;

std::uint32_t packed(PixelPoint place) {
    return static_cast<std::uint32_t>(place.x) << 16 | (static_cast<std::uint32_t>(place.y) & 0xFFFF);
}

}  // namespace

void XDrags::tell(Atom message, xcb_window_t to, std::array<std::uint32_t, 5> words) {
    _connection.sendMessage(to, to, _connection[message], words);
    _connection.flush();
}

// MARK: From here

bool XDrags::begin(BackendWindow window, xcb_window_t handle, std::function<void(bool isTaken)> done) {
    const std::vector<std::string>& types = _selections.offeredTypes(BackendSelection::drag);
    if (_done || types.empty() || !done || _connection.isLost()) return false;
    if (!_pointer.grab(handle, _pointer.cursor(BackendCursor::notAllowed))) return false;
    std::vector<std::uint32_t> atoms;
    for (const std::string& type : types) atoms.push_back(_connection.atomNamed(type));
    _connection.setProperty(_connection.helper(), _connection[Atom::XdndTypeList], XCB_ATOM_ATOM, atoms);
    _done = std::move(done);
    _window = window;
    _target = {};
    _awaitsStatus = _hasMoved = _isAccepted = _isReleased = _isDropped = false;
    move(_pointer.state().place, _connection.time());
    return true;
}

XDrags::Target XDrags::targetAt(PixelPoint place) {
    xcb_window_t window = _connection.root();
    for (int depth = 0; depth < 16; ++depth) {
        const auto found = _connection.wait<xcb_translate_coordinates_reply_t>(xcb_translate_coordinates(
            _connection, _connection.root(), window, static_cast<std::int16_t>(place.x),
            static_cast<std::int16_t>(place.y)));
        if (!found || found->child == XCB_NONE) break;
        window = found->child;
        const auto version = _connection.property(window, _connection[Atom::XdndAware]).words();
        if (!version.empty())
            return version[0] < kOldestVersion ? Target{} : Target{window, std::min(version[0], kVersion)};
    }
    return {};
}

void XDrags::move(PixelPoint place, xcb_timestamp_t time) {
    _place = place;
    _time = time;
    const Target target = targetAt(place);
    if (target.window != _target.window) {
        if (_target.window) tell(Atom::XdndLeave, _target.window, {_connection.helper()});
        _target = target;
        _awaitsStatus = false;
        _isAccepted = false;
        _pointer.setGrabCursor(BackendCursor::notAllowed);
        if (_target.window) {
            std::array<std::uint32_t, 5> words{_connection.helper(), _target.version << 24};
            const auto types =
                _connection.property(_connection.helper(), _connection[Atom::XdndTypeList]).words();
            words[1] |= types.size() > 3 ? 1 : 0;  // the others stand in the property
            std::copy_n(types.begin(), std::min<std::size_t>(types.size(), 3), words.begin() + 2);
            tell(Atom::XdndEnter, _target.window, words);
        }
    }
    _hasMoved = true;
    if (!_awaitsStatus) sendPosition();
}

void XDrags::sendPosition() {
    _hasMoved = false;
    if (!_target.window) return;
    _awaitsStatus = true;
    tell(Atom::XdndPosition, _target.window,
         {_connection.helper(), 0, packed(_place), _time, _connection[Atom::XdndActionCopy]});
}

void XDrags::release() {
    _isReleased = true;
    _pointer.ungrab();
    _deadline = secondsNow() + kStatusPatience;
    if (_awaitsStatus) return;  // it decides
    if (!_isAccepted) return finish(false);
    _isDropped = true;
    _deadline = secondsNow() + kDropPatience;
    tell(Atom::XdndDrop, _target.window, {_connection.helper(), 0, _time});
}

void XDrags::finish(bool isTaken) {
    if (!_done) return;
    if (!_isReleased) _pointer.ungrab();
    if (_target.window && !_isDropped) tell(Atom::XdndLeave, _target.window, {_connection.helper()});
    _target = {};
    _window = 0;
    std::exchange(_done, nullptr)(isTaken);
}

void XDrags::cancel() { finish(false); }

bool XDrags::handle(const XAnyEvent& event) {
    // A source that has ended says no more.
    if (kindOf(event) == XCB_DESTROY_NOTIFY && as<xcb_destroy_notify_event_t>(event).window == _drop.source)
        leave();
    if (!isDragging()) return false;
    switch (kindOf(event)) {
        case XCB_MOTION_NOTIFY: {
            const auto& motion = as<xcb_motion_notify_event_t>(event);
            const XAnyEvent* next = _connection.peekEvent();
            if (!next || kindOf(*next) != XCB_MOTION_NOTIFY)
                move({motion.root_x, motion.root_y}, motion.time);
            return true;
        }
        case XCB_BUTTON_RELEASE: {
            const auto& button = as<xcb_button_release_event_t>(event);
            if (button.detail != XCB_BUTTON_INDEX_1) return true;
            move({button.root_x, button.root_y}, button.time);
            release();
            return true;
        }
        case XCB_KEY_PRESS:
            if (as<xcb_key_press_event_t>(event).detail == kEscapeKey) cancel();
            return true;
        case XCB_BUTTON_PRESS:
        case XCB_KEY_RELEASE:
        case XCB_ENTER_NOTIFY:
        case XCB_LEAVE_NOTIFY:
            return true;
        default:
            return false;
    }
}

// MARK: To here

bool XDrags::handleMessage(const xcb_client_message_event_t& message, const XWindow* window) {
    if (message.format != 32) return false;
    const std::uint32_t* words = message.data.data32;
    const auto is = [&](Atom atom) { return message.type == _connection[atom]; };
    if (is(Atom::XdndStatus)) {
        if (!_done || words[0] != _target.window || !_awaitsStatus) return true;
        _awaitsStatus = false;
        _isAccepted = (words[1] & 1) != 0;
        if (_isReleased)
            release();
        else
            _pointer.setGrabCursor(_isAccepted ? BackendCursor::closedHand : BackendCursor::notAllowed);
        if (_hasMoved && !_isReleased) sendPosition();
    } else if (is(Atom::XdndFinished)) {
        // Older partners do not tell whether they took it.
        if (_isDropped && words[0] == _target.window) finish(_target.version < 5 || (words[1] & 1) != 0);
    } else if (is(Atom::XdndEnter)) {
        if (window) enter(words);
    } else if (words[0] != _drop.source || _drop.source == 0) {
        return is(Atom::XdndPosition) || is(Atom::XdndLeave) || is(Atom::XdndDrop);
    } else if (is(Atom::XdndPosition)) {
        if (window) position(words, *window);
    } else if (is(Atom::XdndLeave)) {
        leave();
    } else if (is(Atom::XdndDrop)) {
        drop(words);
    } else {
        return false;
    }
    return true;
}

void XDrags::enter(const std::uint32_t* words) {
    leave();
    _drop = {};
    _drop.source = words[0];
    _connection.watch(_drop.source);
    std::vector<std::uint32_t> types{words[2], words[3], words[4]};
    if (words[1] & 1) types = _connection.property(words[0], _connection[Atom::XdndTypeList]).words();
    std::erase(types, 0U);
    _drop.drag.types = _connection.namesOf(types);
}

void XDrags::position(const std::uint32_t* words, const XWindow& window) {
    const xcb_window_t source = _drop.source;
    _drop.handle = window.handle();
    _drop.window = window.id();
    _drop.drag.kind =
        std::exchange(_drop.isInside, true) ? BackendDrag::Kind::moved : BackendDrag::Kind::entered;
    _drop.drag.place = {static_cast<int>(words[2] >> 16) - window.frame().x,
                        static_cast<int>(words[2] & 0xFFFF) - window.frame().y};
    const xcb_window_t handle = _drop.handle;
    const BackendDrag drag = _drop.drag;
    const bool isAccepted = _sink.drag(_drop.window, drag);
    // An empty rectangle: all further moves are of interest.
    tell(Atom::XdndStatus, source,
         {handle, 2U | (isAccepted ? 1U : 0U), 0, 0, isAccepted ? _connection[Atom::XdndActionCopy] : 0U});
}

void XDrags::leave() {
    if (_drop.isDropped) endDrop(false);
    const Incoming gone = std::exchange(_drop, {});
    if (!gone.isInside) return;
    BackendDrag drag = gone.drag;
    drag.kind = BackendDrag::Kind::left;
    _sink.drag(gone.window, drag);
}

void XDrags::drop(const std::uint32_t* words) {
    _drop.time = words[2];
    _drop.isDropped = true;
    _drop.isInside = false;
    BackendDrag drag = _drop.drag;
    drag.kind = BackendDrag::Kind::dropped;
    if (_drop.window == 0 || !_sink.drag(_drop.window, drag)) endDrop(false);
}

void XDrags::endDrop(bool isTaken) {
    if (!_drop.isDropped) return;
    const Incoming gone = std::exchange(_drop, {});
    tell(Atom::XdndFinished, gone.source,
         {gone.handle, isTaken ? 1U : 0U, isTaken ? _connection[Atom::XdndActionCopy] : 0U});
}

// MARK: Time

double XDrags::secondsLeft() const {
    if (!_done || !_isReleased) return std::numeric_limits<double>::infinity();
    return std::max(_deadline - secondsNow(), 0.0);
}

void XDrags::giveUpLate() {
    if (_done && _isReleased && _deadline <= secondsNow()) finish(false);
}

}  // namespace pelvor
