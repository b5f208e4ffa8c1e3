// SPDX-License-Identifier: Apache-2.0
#include "InterfaceXCB/Connection.h"

#include <poll.h>
#include <xcb/randr.h>
#include <xcb/shm.h>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <mutex>
#include <thread>

// A field of its structures has the name of a keyword.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

namespace pelvor {

namespace {

constexpr const char* kAtomNames[] = {
#define PELVOR_ATOM_NAME(name) #name,
    PELVOR_XCB_ATOMS(PELVOR_ATOM_NAME)
#undef PELVOR_ATOM_NAME
};

/// What a thread that connects leaves behind, also if nobody waits for it any longer.
struct Attempt {
    std::mutex mutex;
    std::condition_variable done;
    bool isDone = false;
    bool isGivenUp = false;
    xcb_connection_t* connection = nullptr;
    int screen = 0;
};

/// Null if a server that exists does not reply; connecting waits for it without an end.
std::shared_ptr<Attempt> connectInTime() {
    auto attempt = std::make_shared<Attempt>();
    std::thread([attempt] {
        int screen = 0;
        xcb_connection_t* connection = xcb_connect(nullptr, &screen);
        const std::lock_guard lock(attempt->mutex);
        if (attempt->isGivenUp) return xcb_disconnect(connection);
        attempt->connection = connection;
        attempt->screen = screen;
        attempt->isDone = true;
        attempt->done.notify_one();
    }).detach();
    std::unique_lock lock(attempt->mutex);
    if (attempt->done.wait_for(lock, std::chrono::seconds(2), [&] { return attempt->isDone; }))
        return attempt;
    attempt->isGivenUp = true;
    return nullptr;
}

std::string displayName() {
    const char* display = std::getenv("DISPLAY");
    return std::string("the display \"") + (display ? display : "") + "\"";
}

XEvent received(xcb_generic_event_t* event) { return XEvent(reinterpret_cast<XAnyEvent*>(event)); }

}  // namespace

double secondsNow() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

std::vector<std::uint32_t> XProperty::words() const {
    if (format != 32 || bytes.empty()) return {};
    std::vector<std::uint32_t> words(bytes.size() / sizeof(std::uint32_t));
    std::memcpy(words.data(), bytes.data(), words.size() * sizeof(std::uint32_t));
    return words;
}

std::unique_ptr<XConnection> XConnection::open(std::string* reason) {
    const auto refuse = [reason](const std::string& text) {
        if (reason) *reason = text;
        return nullptr;
    };
    const std::shared_ptr<Attempt> attempt = connectInTime();
    if (!attempt) return refuse(displayName() + " does not reply");
    std::unique_ptr<XConnection> self(new XConnection);
    self->_connection = attempt->connection;
    self->_screenNumber = attempt->screen;
    if (self->isLost()) return refuse(displayName() + " cannot be connected to");

    xcb_connection_t* c = *self;
    for (xcb_extension_t* extension : {&xcb_shm_id, &xcb_randr_id, &xcb_xkb_id})
        xcb_prefetch_extension_data(c, extension);
    for (std::size_t i = 0; i < std::size(kAtomNames); ++i)
        self->_atomSequences[i] =
            xcb_intern_atom(c, 0, static_cast<std::uint16_t>(std::strlen(kAtomNames[i])), kAtomNames[i])
                .sequence;
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(c));
    for (int i = 0; i < attempt->screen && screens.rem > 1; ++i) xcb_screen_next(&screens);
    self->_screen = screens.data;
    if (!self->findVisual()) return refuse(displayName() + " has no 24-bit colours");

    const std::uint32_t rootEvents[] = {XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY};
    xcb_change_window_attributes(c, self->root(), XCB_CW_EVENT_MASK, rootEvents);
    self->_helper = xcb_generate_id(c);
    const std::uint32_t helperEvents[] = {XCB_EVENT_MASK_PROPERTY_CHANGE};
    xcb_create_window(c, XCB_COPY_FROM_PARENT, self->_helper, self->root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, helperEvents);
    self->flush();
    return self;
}

XConnection::~XConnection() {
    _events.clear();
    if (_connection) xcb_disconnect(_connection);
}

xcb_window_t XConnection::root() const { return _screen->root; }

bool XConnection::isLost() const { return !_connection || xcb_connection_has_error(_connection) != 0; }

void XConnection::flush() const { xcb_flush(_connection); }

bool XConnection::owns(xcb_window_t window) const {
    const xcb_setup_t* setup = xcb_get_setup(_connection);
    return (window & ~setup->resource_id_mask) == setup->resource_id_base;
}

void XConnection::watch(xcb_window_t window) {
    if (owns(window)) return;  // its events are those that it was made with
    const std::uint32_t events[] = {XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY};
    xcb_change_window_attributes(_connection, window, XCB_CW_EVENT_MASK, events);
}

bool XConnection::findVisual() {
    const xcb_setup_t* setup = xcb_get_setup(_connection);
    if (setup->image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST) return false;
    bool has32Bits = false;
    for (auto format = xcb_setup_pixmap_formats_iterator(setup); format.rem; xcb_format_next(&format))
        has32Bits |= format.data->depth == 24 && format.data->bits_per_pixel == 32;
    if (!has32Bits) return false;
    for (auto depth = xcb_screen_allowed_depths_iterator(_screen); depth.rem; xcb_depth_next(&depth))
        for (auto visual = xcb_depth_visuals_iterator(depth.data); depth.data->depth == 24 && visual.rem;
             xcb_visualtype_next(&visual)) {
            const bool fits = visual.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR &&
                              visual.data->red_mask == 0xFF0000 && visual.data->blue_mask == 0xFF;
            if (fits && (_visual == 0 || visual.data->visual_id == _screen->root_visual))
                _visual = visual.data->visual_id;
        }
    if (_visual == 0) return false;
    _depth = 24;
    _colormap = _screen->default_colormap;
    if (_visual != _screen->root_visual) {
        _colormap = xcb_generate_id(_connection);
        xcb_create_colormap(_connection, XCB_COLORMAP_ALLOC_NONE, _colormap, root(), _visual);
    }
    return true;
}

bool XConnection::sharesMemory() {
    if (isLost()) return false;
    if (!_sharesMemory) {
        const xcb_query_extension_reply_t* extension = xcb_get_extension_data(_connection, &xcb_shm_id);
        const auto version = extension && extension->present
                                 ? wait<xcb_shm_query_version_reply_t>(xcb_shm_query_version(_connection))
                                 : nullptr;
        _sharesMemory = version && version->major_version * 100 + version->minor_version >= 102;
    }
    return *_sharesMemory;
}

// MARK: Atoms

xcb_atom_t XConnection::operator[](Atom atom) {
    if (!_hasAtoms) {
        _hasAtoms = true;
        for (std::size_t i = 0; i < std::size(kAtomNames); ++i) {
            const auto reply = wait<xcb_intern_atom_reply_t>(_atomSequences[i]);
            if (!reply) continue;
            _atoms[i] = reply->atom;
            _atomsByName[kAtomNames[i]] = reply->atom;
            _namesByAtom[reply->atom] = kAtomNames[i];
        }
    }
    return _atoms[static_cast<std::size_t>(atom)];
}

xcb_atom_t XConnection::atomNamed(const std::string& name) {
    (*this)[Atom::TARGETS];
    if (const auto found = _atomsByName.find(name); found != _atomsByName.end()) return found->second;
    const auto length = static_cast<std::uint16_t>(std::min<std::size_t>(name.size(), UINT16_MAX));
    const auto reply = wait<xcb_intern_atom_reply_t>(xcb_intern_atom(_connection, 0, length, name.c_str()));
    if (!reply) return 0;
    _namesByAtom[reply->atom] = name;
    return _atomsByName[name] = reply->atom;
}

std::vector<std::string> XConnection::namesOf(std::vector<std::uint32_t> atoms) {
    constexpr std::size_t kMostNames = 1024;
    atoms.resize(std::min(atoms.size(), kMostNames));
    std::vector<std::pair<xcb_atom_t, xcb_get_atom_name_cookie_t>> asked;
    for (const xcb_atom_t atom : atoms)
        if (!_namesByAtom.contains(atom)) asked.emplace_back(atom, xcb_get_atom_name(_connection, atom));
    for (const auto& [atom, cookie] : asked)
        if (const auto reply = wait<xcb_get_atom_name_reply_t>(cookie)) {
            const std::string name(xcb_get_atom_name_name(reply.get()),
                                   static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get())));
            _namesByAtom[atom] = name;
            _atomsByName[name] = atom;
        }
    std::vector<std::string> names;
    for (const xcb_atom_t atom : atoms)
        if (const auto found = _namesByAtom.find(atom); found != _namesByAtom.end())
            names.push_back(found->second);
    return names;
}

// MARK: Events and replies

void XConnection::readWhatIsThere() {
    while (XEvent event = received(xcb_poll_for_event(_connection))) _events.push_back(std::move(event));
}

const XAnyEvent* XConnection::peekEvent() {
    if (_events.empty())
        if (XEvent event = received(xcb_poll_for_event(_connection))) _events.push_back(std::move(event));
    return _events.empty() ? nullptr : _events.front().get();
}

XEvent XConnection::nextEvent() {
    if (!peekEvent()) return nullptr;
    XEvent event = std::move(_events.front());
    _events.pop_front();
    return event;
}

bool XConnection::hasQueuedEvents() {
    while (XEvent event = received(xcb_poll_for_queued_event(_connection)))
        _events.push_back(std::move(event));
    return !_events.empty();
}

void XConnection::waitForBytes(double seconds) const {
    pollfd descriptor{xcb_get_file_descriptor(_connection), POLLIN, 0};
    ::poll(&descriptor, 1, static_cast<int>(std::ceil(seconds * 1000)));
}

void* XConnection::waitForReply(unsigned int sequence, double seconds) {
    flush();
    for (const double deadline = secondsNow() + seconds;;) {
        void* reply = nullptr;
        xcb_generic_error_t* error = nullptr;
        // Reading finds replies, too, and has to come first: what it finds is known only afterwards.
        readWhatIsThere();
        if (isLost()) return nullptr;
        if (xcb_poll_for_reply(_connection, sequence, &reply, &error)) {
            std::free(error);
            return reply;
        }
        const double left = deadline - secondsNow();
        if (left <= 0) {
            xcb_discard_reply(_connection, sequence);
            return nullptr;
        }
        waitForBytes(left);
    }
}

// MARK: Properties and messages

XProperty XConnection::property(xcb_window_t window, xcb_atom_t name, bool deletes) {
    const auto reply = wait<xcb_get_property_reply_t>(
        xcb_get_property(_connection, deletes, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, 0x1FFFFFFF));
    if (!reply || reply->type == XCB_NONE) return {};
    return {reply->type, reply->format,
            std::string(static_cast<const char*>(xcb_get_property_value(reply.get())),
                        static_cast<std::size_t>(xcb_get_property_value_length(reply.get())))};
}

void XConnection::setProperty(xcb_window_t window, xcb_atom_t name, xcb_atom_t type,
                              const std::vector<std::uint32_t>& words) {
    xcb_change_property(_connection, XCB_PROP_MODE_REPLACE, window, name, type, 32,
                        static_cast<std::uint32_t>(words.size()), words.data());
}

void XConnection::setProperty(xcb_window_t window, xcb_atom_t name, xcb_atom_t type, std::string_view bytes) {
    xcb_change_property(_connection, XCB_PROP_MODE_REPLACE, window, name, type, 8,
                        static_cast<std::uint32_t>(bytes.size()), bytes.data());
}

void XConnection::sendMessage(xcb_window_t to, xcb_window_t about, xcb_atom_t type,
                              const std::array<std::uint32_t, 5>& words, std::uint32_t mask) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = about;
    message.type = type;
    std::ranges::copy(words, message.data.data32);
    xcb_send_event(_connection, 0, to, mask, reinterpret_cast<const char*>(&message));
}

void XConnection::sendSelectionNotice(const xcb_selection_request_event_t& request, xcb_atom_t property) {
    xcb_selection_notify_event_t notice{};
    notice.response_type = XCB_SELECTION_NOTIFY;
    notice.time = request.time;
    notice.requestor = request.requestor;
    notice.selection = request.selection;
    notice.target = request.target;
    notice.property = property;
    xcb_send_event(_connection, 0, request.requestor, 0, reinterpret_cast<const char*>(&notice));
    flush();
}

// MARK: Time

void XConnection::noteTime(xcb_timestamp_t time) {
    if (time == XCB_CURRENT_TIME) return;
    _time = time;
    _timeNoted = secondsNow();
}

xcb_timestamp_t XConnection::time() {
    if (_time != XCB_CURRENT_TIME && secondsNow() - _timeNoted < 1) return _time;
    const xcb_atom_t property = (*this)[Atom::PELVOR_TIME];
    xcb_change_property(_connection, XCB_PROP_MODE_APPEND, _helper, property, XCB_ATOM_INTEGER, 32, 0,
                        nullptr);
    const XEvent event = waitForEvent(0.5, [&](const XAnyEvent& candidate) {
        return kindOf(candidate) == XCB_PROPERTY_NOTIFY &&
               as<xcb_property_notify_event_t>(candidate).atom == property;
    });
    if (event) noteTime(as<xcb_property_notify_event_t>(*event).time);
    return _time;
}

double XConnection::secondsOf(xcb_timestamp_t time) {
    const auto step = static_cast<std::int32_t>(time - _latest);
    std::uint64_t turns = _turns;
    if (step >= 0 && time < _latest) turns = ++_turns;
    if (step < 0 && time > _latest && turns > 0) --turns;
    if (step >= 0 || _latest == 0) _latest = time;
    return (static_cast<double>(turns) * 4294967296.0 + time) / 1000;
}

}  // namespace pelvor
