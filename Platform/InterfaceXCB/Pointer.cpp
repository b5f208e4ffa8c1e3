// SPDX-License-Identifier: Apache-2.0
#include "InterfaceXCB/Pointer.h"

#include <xcb/xcb.h>
#include <xcb/xcb_cursor.h>

#include <chrono>
#include <thread>
#include <utility>

namespace pelvor {

namespace {

constexpr float kLinesOfNotch = 3;
constexpr std::uint16_t kGrabbedEvents =
    XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION;

/// Names in cursor themes, and then in the font that every server has.
std::initializer_list<const char*> namesOf(BackendCursor cursor) {
    static constexpr std::initializer_list<const char*> kNames[] = {
        {"default", "left_ptr"},
        {"text", "xterm"},
        {"pointer", "hand2"},
        {"grab", "openhand", "hand1"},
        {"grabbing", "closedhand", "fleur"},
        {"crosshair"},
        {"w-resize", "left_side"},
        {"e-resize", "right_side"},
        {"ew-resize", "sb_h_double_arrow"},
        {"n-resize", "top_side"},
        {"s-resize", "bottom_side"},
        {"ns-resize", "sb_v_double_arrow"},
        {"not-allowed", "X_cursor"},
    };
    return kNames[static_cast<int>(cursor)];
}

/// The number of a button as hosts count; 0 for what a wheel has.
int buttonNumber(xcb_button_t button) {
    switch (button) {
        case 2:
            return 3;
        case 3:
            return 2;
        case 4:
        case 5:
        case 6:
        case 7:
            return 0;
        default:
            return button > 7 ? button - 4 : button;
    }
}

std::uint32_t buttonsDown(std::uint32_t state) {
    return (state & XCB_BUTTON_MASK_1 ? 1U : 0U) | (state & XCB_BUTTON_MASK_3 ? 2U : 0U) |
           (state & XCB_BUTTON_MASK_2 ? 4U : 0U);
}

}  // namespace

XPointer::~XPointer() {
    if (_context) xcb_cursor_context_free(_context);
}

// MARK: Shapes

xcb_cursor_t XPointer::cursor(BackendCursor cursor) {
    if (const auto found = _cursors.find(cursor); found != _cursors.end()) return found->second;
    if (_connection.isLost()) return 0;
    xcb_cursor_t made = 0;
    if (cursor == BackendCursor::hidden) {
        const xcb_pixmap_t empty = xcb_generate_id(_connection);
        xcb_create_pixmap(_connection, 1, empty, _connection.root(), 1, 1);
        const xcb_gcontext_t gc = xcb_generate_id(_connection);
        xcb_create_gc(_connection, gc, empty, 0, nullptr);
        const xcb_rectangle_t all{0, 0, 1, 1};
        xcb_poly_fill_rectangle(_connection, empty, gc, 1, &all);  // with 0
        made = xcb_generate_id(_connection);
        xcb_create_cursor(_connection, made, empty, empty, 0, 0, 0, 0, 0, 0, 0, 0);
        xcb_free_gc(_connection, gc);
        xcb_free_pixmap(_connection, empty);
    } else {
        if (!std::exchange(_hasContext, true))
            xcb_cursor_context_new(_connection, const_cast<xcb_screen_t*>(&_connection.screen()), &_context);
        for (const char* name : namesOf(cursor))
            if (_context && made == 0) made = xcb_cursor_load_cursor(_context, name);
    }
    return _cursors[cursor] = made;
}

void XPointer::setCursor(xcb_window_t window, BackendCursor shape) {
    const std::uint32_t values[] = {cursor(shape)};
    xcb_change_window_attributes(_connection, window, XCB_CW_CURSOR, values);
}

XPointer::State XPointer::state() {
    const auto reply =
        _connection.wait<xcb_query_pointer_reply_t>(xcb_query_pointer(_connection, _connection.root()));
    if (!reply) return {};
    return {{reply->root_x, reply->root_y}, XKeyboard::modifiers(reply->mask)};
}

// MARK: Tracking

bool XPointer::grab(xcb_window_t window, xcb_cursor_t cursor) {
    bool isOurs = false;
    for (int attempt = 0; attempt < 8 && !isOurs && !_connection.isLost(); ++attempt) {
        if (attempt > 0) std::this_thread::sleep_for(std::chrono::milliseconds(25));
        // Our windows get their pointer events as ever, all others' go to this window.
        const auto pointer = _connection.wait<xcb_grab_pointer_reply_t>(
            xcb_grab_pointer(_connection, 1, window, kGrabbedEvents, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                             XCB_NONE, cursor, XCB_CURRENT_TIME));
        if (!pointer) break;
        isOurs = pointer->status == XCB_GRAB_STATUS_SUCCESS;
    }
    if (!isOurs) {
        ungrab();  // what a server that hangs may still grab, and what an earlier call did
        return false;
    }
    xcb_discard_reply(_connection, xcb_grab_keyboard(_connection, 0, window, XCB_CURRENT_TIME,
                                                     XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)
                                       .sequence);
    return true;
}

void XPointer::ungrab() {
    xcb_ungrab_pointer(_connection, XCB_CURRENT_TIME);
    xcb_ungrab_keyboard(_connection, XCB_CURRENT_TIME);
    _connection.flush();
}

void XPointer::setGrabCursor(BackendCursor shape) {
    xcb_change_active_pointer_grab(_connection, cursor(shape), XCB_CURRENT_TIME, kGrabbedEvents);
    _connection.flush();
}

// MARK: Events

template <class Event>
BackendPointer XPointer::pointer(const Event& event) {
    BackendPointer pointer;
    pointer.place = {event.event_x, event.event_y};
    pointer.onScreen = {event.root_x, event.root_y};
    pointer.modifiers = XKeyboard::modifiers(event.state);
    pointer.buttonsDown = buttonsDown(event.state);
    pointer.seconds = _connection.secondsOf(event.time);
    return pointer;
}

BackendPointer XPointer::button(const xcb_button_press_event_t& event) {
    BackendPointer pointer = this->pointer(event);
    pointer.button = buttonNumber(event.detail);
    if (pointer.button == 0) {
        pointer.kind = BackendPointer::Kind::scrolled;
        (event.detail <= 5 ? pointer.linesY : pointer.linesX) =
            event.detail % 2 ? kLinesOfNotch : -kLinesOfNotch;
        return pointer;
    }
    const std::uint32_t bit = 1U << (pointer.button - 1);
    const bool isDown = kindOf(event) == XCB_BUTTON_PRESS;
    pointer.kind = isDown ? BackendPointer::Kind::down : BackendPointer::Kind::up;
    pointer.buttonsDown = isDown ? pointer.buttonsDown | bit : pointer.buttonsDown & ~bit;
    return pointer;
}

BackendPointer XPointer::motion(const xcb_motion_notify_event_t& event) { return pointer(event); }

BackendPointer XPointer::crossing(const xcb_enter_notify_event_t& event) {
    BackendPointer pointer = this->pointer(event);
    const bool isEnter = kindOf(event) == XCB_ENTER_NOTIFY;
    pointer.kind = isEnter ? BackendPointer::Kind::entered : BackendPointer::Kind::exited;
    return pointer;
}

}  // namespace pelvor
