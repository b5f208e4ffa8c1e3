// SPDX-License-Identifier: Apache-2.0
// XDrags: dragging content to windows of any program, and taking what they drag.
#pragma once

#include "InterfaceXCB/Pointer.h"
#include "InterfaceXCB/Selections.h"
#include "InterfaceXCB/Window.h"

namespace pelvor {

/// Both sides of a drag are partners that talk by messages; windows of this program are partners like all
/// others. One content can be dragged from here, and one be over our windows, at a time.
class XDrags {
  public:
    XDrags(XConnection& connection, BackendSink& sink, XPointer& pointer, XSelections& selections)
        : _connection(connection), _sink(sink), _pointer(pointer), _selections(selections) {}

    // From here

    bool begin(BackendWindow window, xcb_window_t handle, std::function<void(bool isTaken)> done);
    bool isDragging() const { return _done != nullptr && !_isReleased; }
    /// Of the window that drags; it has to end with that.
    BackendWindow window() const { return _window; }
    /// Whether the event belongs to the drag alone.
    bool handle(const XAnyEvent& event);
    void cancel();

    // To here

    /// Whether the message is one of a drag; `window` is null if it went to none of ours.
    bool handleMessage(const xcb_client_message_event_t& message, const XWindow* window);
    void endDrop(bool isTaken);
    /// When the content was dropped; 0 if none was.
    xcb_timestamp_t dropTime() const { return _drop.time; }

    double secondsLeft() const;
    void giveUpLate();

  private:
    /// The window below the pointer that takes part in drags, and how it is talked to.
    struct Target {
        xcb_window_t window = 0;
        std::uint32_t version = 0;
    };
    Target targetAt(PixelPoint place);
    void move(PixelPoint place, xcb_timestamp_t time);
    void sendPosition();
    void release();
    void finish(bool isTaken);
    void tell(Atom message, xcb_window_t to, std::array<std::uint32_t, 5> words);

    void enter(const std::uint32_t* words);
    void position(const std::uint32_t* words, const XWindow& window);
    void drop(const std::uint32_t* words);
    void leave();

    XConnection& _connection;
    BackendSink& _sink;
    XPointer& _pointer;
    XSelections& _selections;

    // From here
    std::function<void(bool isTaken)> _done;
    BackendWindow _window = 0;
    Target _target;
    PixelPoint _place;
    xcb_timestamp_t _time = 0;
    bool _awaitsStatus = false;
    bool _hasMoved = false;  ///< since the position that the target knows
    bool _isAccepted = false;
    bool _isReleased = false;
    bool _isDropped = false;
    double _deadline = 0;

    /// What is over our windows.
    struct Incoming {
        xcb_window_t source = 0;
        xcb_window_t handle = 0;
        BackendWindow window = 0;
        BackendDrag drag;
        bool isInside = false;
        bool isDropped = false;
        xcb_timestamp_t time = 0;
    };
    Incoming _drop;
};

}  // namespace pelvor
