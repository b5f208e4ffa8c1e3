// SPDX-License-Identifier: Apache-2.0
// XConnection: the connection to the X server, its atoms, and waiting for replies no longer than a moment.
#pragma once

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "InterfaceXCB/XTypes.h"

namespace pelvor {

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};
/// A reply or an event, which libxcb allocates by malloc.
template <class T>
using XReply = std::unique_ptr<T, FreeDeleter>;
/// An event of any kind, never defined: `kindOf` tells its kind, and `as` shows it as what it is.
struct XAnyEvent;
using XEvent = XReply<XAnyEvent>;

// Atoms that are interned together when the connection is made.
#define PELVOR_XCB_ATOMS(row)                                                                               \
    row(ATOM_PAIR) row(CLIPBOARD) row(CLIPBOARD_MANAGER) row(DELETE) row(INCR) row(MULTIPLE)                \
        row(PELVOR_SELECTION) row(PELVOR_TIME) row(SAVE_TARGETS) row(TARGETS) row(TIMESTAMP)                \
            row(UTF8_STRING) row(WM_CHANGE_STATE) row(WM_DELETE_WINDOW) row(WM_PROTOCOLS) row(WM_STATE)     \
                row(XdndActionCopy) row(XdndAware) row(XdndDrop) row(XdndEnter) row(XdndFinished)           \
                    row(XdndLeave) row(XdndPosition) row(XdndSelection) row(XdndStatus) row(XdndTypeList)   \
                        row(_MOTIF_WM_HINTS) row(_NET_ACTIVE_WINDOW) row(_NET_FRAME_EXTENTS)                \
                            row(_NET_REQUEST_FRAME_EXTENTS) row(_NET_SUPPORTING_WM_CHECK) row(_NET_WM_NAME) \
                                row(_NET_WM_PID) row(_NET_WM_PING) row(_NET_WM_STATE)                       \
                                    row(_NET_WM_STATE_FULLSCREEN) row(_NET_WM_STATE_HIDDEN)                 \
                                        row(_NET_WM_STATE_MAXIMIZED_HORZ) row(_NET_WM_STATE_MAXIMIZED_VERT) \
                                            row(_NET_WM_WINDOW_TYPE) row(_NET_WM_WINDOW_TYPE_DIALOG)        \
                                                row(_NET_WM_WINDOW_TYPE_NORMAL)                             \
                                                    row(_NET_WM_WINDOW_TYPE_POPUP_MENU)                     \
                                                        row(_NET_WM_WINDOW_TYPE_TOOLTIP) row(_NET_WORKAREA) \
                                                            row(_XKB_RULES_NAMES)

enum class Atom : std::uint8_t {
#define PELVOR_ATOM_NAME(name) name,
    PELVOR_XCB_ATOMS(PELVOR_ATOM_NAME)
#undef PELVOR_ATOM_NAME
        count
};

/// A property of a window; type 0 if there is none.
struct XProperty {
    xcb_atom_t type = 0;
    int format = 0;
    std::string bytes;

    /// The items of a property of format 32; empty for another format.
    std::vector<std::uint32_t> words() const;
};

/// Seconds of a clock that only goes forward.
double secondsNow();

class XConnection {
  public:
    /// Waits two seconds at most; null, with the reason written, if there is no display that we can use.
    static std::unique_ptr<XConnection> open(std::string* reason);
    ~XConnection();
    XConnection(const XConnection&) = delete;
    XConnection& operator=(const XConnection&) = delete;

    operator xcb_connection_t*() const { return _connection; }
    const xcb_screen_t& screen() const { return *_screen; }
    int screenNumber() const { return _screenNumber; }
    xcb_window_t root() const;
    /// What our windows are made with: 32-bit pixels of eight bits for each of red, green and blue.
    std::uint8_t depth() const { return _depth; }
    xcb_visualid_t visual() const { return _visual; }
    xcb_colormap_t colormap() const { return _colormap; }
    /// A window that is never shown, for selections and times.
    xcb_window_t helper() const { return _helper; }
    /// Whether this connection has made the window.
    bool owns(xcb_window_t window) const;
    /// Asks for the events of another program's window: its properties change, and it ends.
    void watch(xcb_window_t window);

    xcb_atom_t operator[](Atom atom);
    /// Asks the server for a name that was not asked for before; 0 if it does not reply.
    xcb_atom_t atomNamed(const std::string& name);
    /// Of no more than the first 1024 atoms: each one is asked for, and other programs make these lists.
    std::vector<std::string> namesOf(std::vector<std::uint32_t> atoms);

    /// Whether the server takes memory by its descriptor: not one on another machine, nor a very old one.
    bool sharesMemory();
    bool isLost() const;
    void flush() const;

    /// The next event that has come, or null; reads what is there.
    XEvent nextEvent();
    /// The event that `nextEvent` will return, or null.
    const XAnyEvent* peekEvent();
    /// Whether events wait already that were read with something else.
    bool hasQueuedEvents();
    /// Takes the first waiting event out that fits, waiting for one no longer than that; null if none came.
    template <class Fits>
    XEvent waitForEvent(double seconds, Fits fits);

    /// The reply, or null if there is an error, none comes in time, or the display is gone.
    template <class Reply>
    XReply<Reply> wait(unsigned int sequence, double seconds = 2) {
        return XReply<Reply>(static_cast<Reply*>(waitForReply(sequence, seconds)));
    }
    template <class Reply, class Cookie>
    XReply<Reply> wait(Cookie cookie, double seconds = 2) {
        return wait<Reply>(cookie.sequence, seconds);
    }

    /// Reads a property, and deletes it if that is wished.
    XProperty property(xcb_window_t window, xcb_atom_t name, bool deletes = false);
    void setProperty(xcb_window_t window, xcb_atom_t name, xcb_atom_t type,
                     const std::vector<std::uint32_t>& words);
    void setProperty(xcb_window_t window, xcb_atom_t name, xcb_atom_t type, std::string_view bytes);
    void sendMessage(xcb_window_t to, xcb_window_t about, xcb_atom_t type,
                     const std::array<std::uint32_t, 5>& words, std::uint32_t mask = 0);
    /// Tells who asked for a selection's content in which property it stands; XCB_NONE refuses the request.
    void sendSelectionNotice(const xcb_selection_request_event_t& request, xcb_atom_t property);

    /// The server's time of the event that is being handled or was lately; asks the server if that was long
    /// ago.
    xcb_timestamp_t time();
    void noteTime(xcb_timestamp_t time);
    /// The server's time in seconds, which goes on where the server's milliseconds begin again with 0.
    double secondsOf(xcb_timestamp_t time);

  private:
    XConnection() = default;
    bool findVisual();
    void readWhatIsThere();
    void waitForBytes(double seconds) const;
    void* waitForReply(unsigned int sequence, double seconds);

    xcb_connection_t* _connection = nullptr;
    const xcb_screen_t* _screen = nullptr;
    int _screenNumber = 0;
    std::uint8_t _depth = 0;
    xcb_visualid_t _visual = 0;
    xcb_colormap_t _colormap = 0;
    xcb_window_t _helper = 0;
    std::deque<XEvent> _events;
    std::array<unsigned int, static_cast<std::size_t>(Atom::count)> _atomSequences{};  ///< of the requests
    std::array<xcb_atom_t, static_cast<std::size_t>(Atom::count)> _atoms{};
    bool _hasAtoms = false;
    std::optional<bool> _sharesMemory;
    std::map<std::string, xcb_atom_t> _atomsByName;
    std::map<xcb_atom_t, std::string> _namesByAtom;
    xcb_timestamp_t _time = 0;
    double _timeNoted = 0;
    xcb_timestamp_t _latest = 0;
    std::uint64_t _turns = 0;
};

template <class Fits>
XEvent XConnection::waitForEvent(double seconds, Fits fits) {
    flush();
    std::size_t looked = 0;
    for (const double deadline = secondsNow() + seconds;;) {
        readWhatIsThere();
        for (; looked < _events.size(); ++looked)
            if (fits(*_events[looked])) {
                XEvent found = std::move(_events[looked]);
                _events.erase(_events.begin() + static_cast<std::ptrdiff_t>(looked));
                return found;
            }
        const double left = deadline - secondsNow();
        if (left <= 0 || isLost()) return nullptr;
        waitForBytes(left);
    }
}

/// The kind of an event, which is its first byte, without the bit that says that another client sent it.
template <class Event>
std::uint8_t kindOf(const Event& event) {
    return reinterpret_cast<const std::uint8_t&>(event) & 0x7F;
}
template <class T>
const T& as(const XAnyEvent& event) {
    return reinterpret_cast<const T&>(event);
}

}  // namespace pelvor
