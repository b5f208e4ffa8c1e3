// SPDX-License-Identifier: Apache-2.0
// XPointer: the pointer's shapes, what its events say, and tracking.
#pragma once

#include "InterfaceXCB/Keyboard.h"

namespace pelvor {

class XPointer {
  public:
    explicit XPointer(XConnection& connection) : _connection(connection) {}
    ~XPointer();
    XPointer(const XPointer&) = delete;
    XPointer& operator=(const XPointer&) = delete;

    void setCursor(xcb_window_t window, BackendCursor cursor);
    xcb_cursor_t cursor(BackendCursor cursor);
    struct State {
        PixelPoint place;
        std::uint32_t modifiers = 0;
    };
    /// Where the pointer is, without asking the server while an event is handled that tells it.
    PixelPoint place() { return _known ? *_known : state().place; }
    void setKnownPlace(std::optional<PixelPoint> place) { _known = place; }
    State state();

    /// Waits up to a fifth of a second while another program holds the pointer. Returns whether it is ours;
    /// if not, an earlier grab has ended as well.
    bool grab(xcb_window_t window, xcb_cursor_t cursor = 0);
    void ungrab();
    /// Of a grab that has a cursor of its own.
    void setGrabCursor(BackendCursor cursor);

    /// Of a button's press or release; `kind` is `scrolled` for the buttons that a wheel has, which tell
    /// nothing with their release.
    BackendPointer button(const xcb_button_press_event_t& event);
    BackendPointer motion(const xcb_motion_notify_event_t& event);
    BackendPointer crossing(const xcb_enter_notify_event_t& event);

  private:
    template <class Event>
    BackendPointer pointer(const Event& event);

    XConnection& _connection;
    xcb_cursor_context_t* _context = nullptr;
    bool _hasContext = false;
    std::optional<PixelPoint> _known;
    std::map<BackendCursor, xcb_cursor_t> _cursors;
};

}  // namespace pelvor
