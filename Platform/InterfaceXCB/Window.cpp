// SPDX-License-Identifier: Apache-2.0
#include "InterfaceXCB/Window.h"

#include <unistd.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <utility>

namespace pelvor {

namespace {

constexpr std::uint32_t kEvents =
    XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_BUTTON_PRESS |
    XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_ENTER_WINDOW |
    XCB_EVENT_MASK_LEAVE_WINDOW | XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
    XCB_EVENT_MASK_FOCUS_CHANGE | XCB_EVENT_MASK_PROPERTY_CHANGE;

/// WM_NORMAL_HINTS.
struct SizeHints {
    enum : std::uint32_t { userPlace = 1, userSize = 2, least = 16, greatest = 32, gravity = 512 };
    std::uint32_t flags = userPlace | userSize | gravity;
    std::int32_t place[4] = {};
    std::int32_t leastSize[2] = {};
    std::int32_t greatestSize[2] = {};
    std::int32_t unused[8] = {};
    std::uint32_t winGravity = XCB_GRAVITY_STATIC;
};
constexpr std::uint32_t kIconicState = 3;
constexpr int kAnySize = 32767;

// Numbers that a coordinate of the protocol cannot hold would wrap around.
std::uint32_t clampedPlace(int place) { return static_cast<std::uint32_t>(std::clamp(place, -32768, 32767)); }
std::uint32_t clampedExtent(int extent) {
    return static_cast<std::uint32_t>(std::clamp(extent, 1, kAnySize));
}

PixelRect clamped(const PixelRect& rect) {
    return {static_cast<int>(clampedPlace(rect.x)), static_cast<int>(clampedPlace(rect.y)),
            static_cast<int>(clampedExtent(rect.width)), static_cast<int>(clampedExtent(rect.height))};
}

}  // namespace

XWindow::XWindow(XConnection& connection, BackendWindow id, const WindowWishes& wishes, xcb_window_t parent)
    : _connection(connection),
      _id(id),
      _kind(wishes.kind),
      _frame(clamped(wishes.frame)),
      _title(wishes.title),
      _isResizable(wishes.isResizable) {
    xcb_connection_t* c = connection;
    _handle = xcb_generate_id(c);
    // No background, so that nothing flashes before the contents are pushed; what was shown stays where it
    // is.
    const std::uint32_t values[] = {XCB_BACK_PIXMAP_NONE, 0, XCB_GRAVITY_NORTH_WEST, isPopUp(), kEvents,
                                    connection.colormap()};
    xcb_create_window(c, connection.depth(), _handle, connection.root(), static_cast<std::int16_t>(_frame.x),
                      static_cast<std::int16_t>(_frame.y), static_cast<std::uint16_t>(_frame.width),
                      static_cast<std::uint16_t>(_frame.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      connection.visual(),
                      XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_BIT_GRAVITY |
                          XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
                      values);
    _gc = xcb_generate_id(c);
    const std::uint32_t noExposures[] = {0};
    xcb_create_gc(c, _gc, _handle, XCB_GC_GRAPHICS_EXPOSURES, noExposures);

    constexpr Atom kTypes[] = {Atom::_NET_WM_WINDOW_TYPE_NORMAL, Atom::_NET_WM_WINDOW_TYPE_DIALOG,
                               Atom::_NET_WM_WINDOW_TYPE_POPUP_MENU, Atom::_NET_WM_WINDOW_TYPE_TOOLTIP};
    const auto set = [&](xcb_atom_t name, xcb_atom_t type, const std::vector<std::uint32_t>& words) {
        connection.setProperty(_handle, name, type, words);
    };
    set(connection[Atom::_NET_WM_WINDOW_TYPE], XCB_ATOM_ATOM, {connection[kTypes[static_cast<int>(_kind)]]});
    set(connection[Atom::WM_PROTOCOLS], XCB_ATOM_ATOM,
        {connection[Atom::WM_DELETE_WINDOW], connection[Atom::_NET_WM_PING]});
    set(connection[Atom::_NET_WM_PID], XCB_ATOM_CARDINAL, {static_cast<std::uint32_t>(::getpid())});
    set(connection[Atom::XdndAware], XCB_ATOM_ATOM, {5});
    if (parent) set(XCB_ATOM_WM_TRANSIENT_FOR, XCB_ATOM_WINDOW, {parent});
    if (!wishes.hasTitleBar)
        set(connection[Atom::_MOTIF_WM_HINTS], connection[Atom::_MOTIF_WM_HINTS], {2, 0, 0, 0, 0});
    connection.setProperty(_handle, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING,
                           wishes.name + '\0' + wishes.name + '\0');
    std::string machine(256, '\0');
    if (::gethostname(machine.data(), machine.size() - 1) == 0)
        connection.setProperty(_handle, XCB_ATOM_WM_CLIENT_MACHINE, XCB_ATOM_STRING, machine.c_str());
    sendTitle();
    sendHints(_frame);
}

XWindow::~XWindow() {
    if (_connection.isLost()) return;
    xcb_free_gc(_connection, _gc);
    xcb_destroy_window(_connection, _handle);
}

// MARK: What is wished

void XWindow::sendHints(const PixelRect& frame) {
    SizeHints hints;
    const auto limit = [](int wished, int otherwise) { return wished > 0 ? wished : otherwise; };
    if (!_isResizable) {
        hints.flags |= SizeHints::least | SizeHints::greatest;
        hints.leastSize[0] = hints.greatestSize[0] = frame.width;
        hints.leastSize[1] = hints.greatestSize[1] = frame.height;
    } else if (_limits != PixelRect{}) {
        hints.flags |= SizeHints::least | SizeHints::greatest;
        hints.leastSize[0] = limit(_limits.x, 1);
        hints.leastSize[1] = limit(_limits.y, 1);
        hints.greatestSize[0] = limit(_limits.width, kAnySize);
        hints.greatestSize[1] = limit(_limits.height, kAnySize);
    }
    std::vector<std::uint32_t> words(sizeof hints / 4);
    std::memcpy(words.data(), &hints, sizeof hints);
    _connection.setProperty(_handle, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, words);
}

void XWindow::sendTitle() {
    const std::string shown = (_isEdited ? "*" : "") + _title;
    _connection.setProperty(_handle, _connection[Atom::_NET_WM_NAME], _connection[Atom::UTF8_STRING], shown);
    _connection.setProperty(_handle, XCB_ATOM_WM_NAME, _connection[Atom::UTF8_STRING], shown);
}

void XWindow::setTitle(const std::string& title) {
    if (_title == title) return;
    _title = title;
    sendTitle();
}

void XWindow::setDocumentEdited(bool isEdited) {
    if (std::exchange(_isEdited, isEdited) != isEdited) sendTitle();
}

void XWindow::setLimits(const PixelRect& minimumAndMaximum) {
    _limits = minimumAndMaximum;
    sendHints(_frame);
}

void XWindow::setFrame(const PixelRect& wished) {
    const PixelRect frame = clamped(wished);
    const std::uint32_t values[] = {clampedPlace(frame.x), clampedPlace(frame.y), clampedExtent(frame.width),
                                    clampedExtent(frame.height)};
    // Nobody is asked about a window that is not shown, and there may be nothing to tell.
    if (!_isShown) _frame = frame;
    if (!_isResizable) sendHints(frame);
    xcb_configure_window(
        _connection, _handle,
        XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
        values);
}

void XWindow::show(bool isShown) {
    if (std::exchange(_isShown, isShown) == isShown) return;
    _isVisible = false;
    if (isShown) {
        xcb_map_window(_connection, _handle);
        return;
    }
    _wantsFocus = false;
    xcb_unmap_window(_connection, _handle);
    if (isPopUp()) return;
    // A window manager takes away the frame of a window that says it is withdrawn.
    xcb_unmap_notify_event_t withdrawn{};
    withdrawn.response_type = XCB_UNMAP_NOTIFY;
    withdrawn.event = _connection.root();
    withdrawn.window = _handle;
    xcb_send_event(_connection, 0, _connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&withdrawn));
}

void XWindow::changeState(bool isOn, Atom first, Atom second, bool hasManager) {
    const xcb_atom_t states[] = {_connection[first], _connection[second]};
    if (_isShown && hasManager) {
        _connection.sendMessage(_connection.root(), _handle, _connection[Atom::_NET_WM_STATE],
                                {isOn, states[0], first == second ? 0 : states[1], 1, 0},
                                XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
        return;
    }
    std::vector<std::uint32_t> now = _connection.property(_handle, _connection[Atom::_NET_WM_STATE]).words();
    for (const xcb_atom_t state : states) {
        std::erase(now, state);
        if (isOn) now.push_back(state);
    }
    _connection.setProperty(_handle, _connection[Atom::_NET_WM_STATE], XCB_ATOM_ATOM, now);
}

void XWindow::fill(bool isFilling, const PixelRect& frame) {
    if (isFilling == _frameBefore.has_value()) return;
    const PixelRect target = isFilling ? frame : *_frameBefore;
    if (isFilling) {
        _frameBefore = _frame;
    } else {
        _frameBefore.reset();
    }
    setFrame(target);
}

void XWindow::zoom(bool isZoomed, bool hasManager, const PixelRect& visible) {
    changeState(isZoomed, Atom::_NET_WM_STATE_MAXIMIZED_VERT, Atom::_NET_WM_STATE_MAXIMIZED_HORZ, hasManager);
    if (hasManager) return;
    _isZoomed = isZoomed;
    fill(isZoomed, visible);
}

void XWindow::fillScreen(bool isFullScreen, bool hasManager, const PixelRect& screen) {
    changeState(isFullScreen, Atom::_NET_WM_STATE_FULLSCREEN, Atom::_NET_WM_STATE_FULLSCREEN, hasManager);
    if (!hasManager) fill(isFullScreen, screen);
}

bool XWindow::minimize(bool isMinimized, bool hasManager) {
    // WM_HINTS: takes keys; begins as an icon or not.
    _connection.setProperty(_handle, XCB_ATOM_WM_HINTS, XCB_ATOM_WM_HINTS,
                            {3, 1, isMinimized ? kIconicState : 1, 0, 0, 0, 0, 0, 0});
    if (!_isShown) return false;
    if (!hasManager) {
        _isMinimized = isMinimized;
        _isVisible = false;
        if (isMinimized)
            xcb_unmap_window(_connection, _handle);
        else
            xcb_map_window(_connection, _handle);
        return true;
    }
    if (isMinimized)
        _connection.sendMessage(_connection.root(), _handle, _connection[Atom::WM_CHANGE_STATE],
                                {kIconicState, 0, 0, 0, 0},
                                XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
    else
        xcb_map_window(_connection, _handle);
    return false;
}

void XWindow::raise() {
    const std::uint32_t above[] = {XCB_STACK_MODE_ABOVE};
    xcb_configure_window(_connection, _handle, XCB_CONFIG_WINDOW_STACK_MODE, above);
}

void XWindow::takeFocus(bool hasManager) {
    if (isPopUp()) return;
    _wantsFocus = !_isMapped;  // a window that is not there yet cannot have it
    if (_wantsFocus) return;
    if (hasManager)
        _connection.sendMessage(_connection.root(), _handle, _connection[Atom::_NET_ACTIVE_WINDOW],
                                {1, _connection.time(), 0, 0, 0},
                                XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
    else
        xcb_set_input_focus(_connection, XCB_INPUT_FOCUS_PARENT, _handle, XCB_CURRENT_TIME);
}

// MARK: What came of it

bool XWindow::handleConfigure(const xcb_configure_notify_event_t& event) {
    PixelRect frame{event.x, event.y, event.width, event.height};
    // Places of other windows may be relative to a frame around them, or, when a manager sends them, wrong.
    if (!isPopUp()) {
        const auto place = _connection.wait<xcb_translate_coordinates_reply_t>(
            xcb_translate_coordinates(_connection, _handle, _connection.root(), 0, 0));
        if (!place) return false;
        frame.x = place->dst_x;
        frame.y = place->dst_y;
    }
    _frame = frame;
    return true;
}

void XWindow::handleMap(bool isMapped, bool hasManager) {
    _isMapped = isMapped;
    if (!isMapped) {
        _isVisible = false;
        return;
    }
    if (!hasManager) _isMinimized = false;  // a manager that ends leaves all windows shown
    if (_wantsFocus) takeFocus(hasManager);
}

bool XWindow::handleProperty(xcb_atom_t name) {
    if (name != _connection[Atom::_NET_WM_STATE] && name != _connection[Atom::WM_STATE]) return false;
    const std::vector<std::uint32_t> states =
        _connection.property(_handle, _connection[Atom::_NET_WM_STATE]).words();
    const std::vector<std::uint32_t> state =
        _connection.property(_handle, _connection[Atom::WM_STATE]).words();
    const auto has = [&](Atom atom) { return std::ranges::find(states, _connection[atom]) != states.end(); };
    const bool isZoomed = has(Atom::_NET_WM_STATE_MAXIMIZED_VERT) && has(Atom::_NET_WM_STATE_MAXIMIZED_HORZ);
    const bool isMinimized = !state.empty() && state[0] == kIconicState;
    const bool isChanged = isZoomed != _isZoomed || isMinimized != _isMinimized;
    _isZoomed = isZoomed;
    _isMinimized = isMinimized;
    return isChanged;
}

PixelRect XWindow::frameExtents(bool hasManager) {
    if (isPopUp() || !hasManager) return {};
    const xcb_atom_t name = _connection[Atom::_NET_FRAME_EXTENTS];
    std::vector<std::uint32_t> extents = _connection.property(_handle, name).words();
    if (extents.size() < 4 && !_isShown) {
        _connection.sendMessage(_connection.root(), _handle, _connection[Atom::_NET_REQUEST_FRAME_EXTENTS],
                                {},
                                XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
        _connection.waitForEvent(0.1, [&](const XAnyEvent& event) {
            if (kindOf(event) != XCB_PROPERTY_NOTIFY) return false;
            const auto& change = as<xcb_property_notify_event_t>(event);
            return change.window == _handle && change.atom == name;
        });
        extents = _connection.property(_handle, name).words();
    }
    if (extents.size() < 4) return {};
    // The order of the property is left, right, top, bottom.
    const auto number = [&](std::size_t i) { return static_cast<int>(std::min(extents[i], 1000U)); };
    return {number(0), number(2), number(1), number(3)};
}

// MARK: Painting

const BackendImage* XWindow::beginPaint() {
    if (!_isFrameOpen && _image.isBeingRead() && !_connection.isLost()) {
        _isAwaited = true;
        return nullptr;
    }
    _isFrameOpen = true;
    _image.resize(_frame.width, _frame.height);
    _painted.width = std::min(_painted.width, _frame.width);
    _painted.height = std::min(_painted.height, _frame.height);
    return &_image.pixels();
}

void XWindow::push(const PixelRect& part) {
    const BackendImage& image = _image.pixels();
    const int x = std::max(part.x, 0);
    const int y = std::max(part.y, 0);
    const PixelRect inside{x, y, std::min(part.x + part.width, image.width) - x,
                           std::min(part.y + part.height, image.height) - y};
    if (inside.width > 0 && inside.height > 0) _image.push(_handle, _gc, inside);
}

bool XWindow::present(std::span<const PixelRect> damage, bool isLast) {
    // What is sent to a window that cannot be seen is lost; all of it is sent when it can.
    if (_isVisible) std::ranges::for_each(damage, [this](const PixelRect& part) { push(part); });
    if (isLast) {
        _isFrameOpen = false;
        _painted = {0, 0, _image.pixels().width, _image.pixels().height};
    }
    _connection.flush();
    return isLast && _isVisible;
}

PixelRect XWindow::expose(const PixelRect& part) {
    _isVisible = true;
    const bool isPainted = part.x + part.width <= _painted.width && part.y + part.height <= _painted.height;
    if (!isPainted) return part;
    push(part);
    return {};
}

bool XWindow::noteRead(bool all) {
    if (all)
        _image.forgetReads();
    else
        _image.noteRead();
    return !_image.isBeingRead() && std::exchange(_isAwaited, false);
}

}  // namespace pelvor
