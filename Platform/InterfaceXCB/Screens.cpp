// SPDX-License-Identifier: Apache-2.0
#include "InterfaceXCB/Screens.h"

#include <xcb/randr.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace pelvor {

namespace {

/// Asks for a property of the root window; returns the request's sequence number.
unsigned int askForProperty(XConnection& connection, xcb_atom_t name) {
    return xcb_get_property(connection, 0, connection.root(), name, XCB_GET_PROPERTY_TYPE_ANY, 0, 1 << 18)
        .sequence;
}

std::vector<std::uint32_t> wordsOf(const XReply<xcb_get_property_reply_t>& reply) {
    if (!reply || reply->format != 32) return {};
    const auto* words = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {words, words + reply->value_len};
}

PixelRect intersection(const PixelRect& a, const PixelRect& b) {
    const int x = std::max(a.x, b.x);
    const int y = std::max(a.y, b.y);
    return {x, y, std::min(a.x + a.width, b.x + b.width) - x, std::min(a.y + a.height, b.y + b.height) - y};
}

}  // namespace

float scaleOfResources(std::string_view resources) {
    constexpr std::string_view kName = "Xft.dpi:";
    std::size_t start = resources.find(kName);
    while (start != std::string_view::npos && start > 0 && resources[start - 1] != '\n')
        start = resources.find(kName, start + 1);
    if (start == std::string_view::npos) return 1;
    resources.remove_prefix(start + kName.size());
    resources.remove_prefix(std::min(resources.find_first_not_of(" \t"), resources.size()));
    float dotsInInch = 0;
    std::from_chars(resources.data(), resources.data() + resources.size(), dotsInInch);
    if (!(dotsInInch > 0)) return 1;
    return std::clamp(std::round(dotsInInch / 96 * 4) / 4, 1.0F, 8.0F);
}

XScreens::XScreens(XConnection& connection) : _connection(connection) {
    const xcb_query_extension_reply_t* extension = xcb_get_extension_data(connection, &xcb_randr_id);
    if (extension && extension->present) {
        _firstEvent = extension->first_event;
        xcb_discard_reply(connection, xcb_randr_query_version(connection, 1, 5).sequence);
        xcb_randr_select_input(connection, connection.root(),
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
        _hasMonitors = true;
    }
    ask();
}

void XScreens::ask() {
    if (_question || _connection.isLost()) return;
    _question.emplace();
    if (_hasMonitors)
        _question->monitors = xcb_randr_get_monitors(_connection, _connection.root(), 1).sequence;
    _question->workArea = askForProperty(_connection, _connection[Atom::_NET_WORKAREA]);
    _question->resources = askForProperty(_connection, XCB_ATOM_RESOURCE_MANAGER);
    _question->manager = askForProperty(_connection, _connection[Atom::_NET_SUPPORTING_WM_CHECK]);
}

/// A window manager's window names itself; another window may have got the number of one that has ended.
bool XScreens::isManager(xcb_window_t window) {
    if (window == 0) return false;
    const auto words = _connection.property(window, _connection[Atom::_NET_SUPPORTING_WM_CHECK]).words();
    return !words.empty() && words[0] == window;
}

PixelRect XScreens::workArea(const XReply<xcb_get_property_reply_t>& reply) const {
    const std::vector<std::uint32_t> words = wordsOf(reply);
    if (_manager == 0 || words.size() < 4) return {-32768, -32768, 65535, 65535};
    // Any client can write there, and sums of two such numbers stay in range.
    const auto number = [&](std::size_t i) { return std::clamp(static_cast<int>(words[i]), -32768, 65535); };
    return {number(0), number(1), number(2), number(3)};
}

void XScreens::read() {
    const Question question = *_question;
    const auto monitors =
        _hasMonitors ? _connection.wait<xcb_randr_get_monitors_reply_t>(question.monitors) : nullptr;
    const auto areas = _connection.wait<xcb_get_property_reply_t>(question.workArea);
    const auto resources = _connection.wait<xcb_get_property_reply_t>(question.resources);
    const std::vector<std::uint32_t> manager =
        wordsOf(_connection.wait<xcb_get_property_reply_t>(question.manager));
    _question.reset();
    if (_connection.isLost() && !_screens.empty()) return;
    _manager = !manager.empty() && isManager(manager[0]) ? manager[0] : 0;

    const float scale =
        !resources
            ? 1
            : scaleOfResources({static_cast<const char*>(xcb_get_property_value(resources.get())),
                                static_cast<std::size_t>(xcb_get_property_value_length(resources.get()))});
    std::vector<BackendScreen> screens;
    if (monitors)
        for (auto monitor = xcb_randr_get_monitors_monitors_iterator(monitors.get()); monitor.rem;
             xcb_randr_monitor_info_next(&monitor)) {
            const xcb_randr_monitor_info_t& info = *monitor.data;
            if (info.width == 0 || info.height == 0) continue;
            const std::vector<std::string> names = _connection.namesOf({info.name});
            screens.push_back({{info.x, info.y, info.width, info.height},
                               {},
                               scale,
                               info.primary != 0,
                               names.empty() ? "" : names[0]});
        }
    if (screens.empty())
        screens.push_back(
            {{0, 0, _connection.screen().width_in_pixels, _connection.screen().height_in_pixels},
             {},
             scale,
             true,
             "screen"});
    const PixelRect area = workArea(areas);
    for (BackendScreen& screen : screens) {
        screen.visibleFrame = intersection(screen.frame, area);
        if (screen.visibleFrame.width <= 0 || screen.visibleFrame.height <= 0)
            screen.visibleFrame = screen.frame;
    }
    if (std::ranges::none_of(screens, &BackendScreen::isMain)) screens.front().isMain = true;
    std::stable_partition(screens.begin(), screens.end(),
                          [](const BackendScreen& screen) { return screen.isMain; });
    _screens = std::move(screens);
}

const std::vector<BackendScreen>& XScreens::list() {
    if (_question) read();
    return _screens;
}

bool XScreens::hasWindowManager() {
    if (_question) read();
    return _manager != 0;
}

bool XScreens::areOfWayland() {
    if (_areOfWayland || _connection.isLost()) return _areOfWayland.value_or(false);
    constexpr std::string_view kExtension = "XWAYLAND";  // of new servers; old ones name their screens so
    const auto extension = _connection.wait<xcb_query_extension_reply_t>(
        xcb_query_extension(_connection, kExtension.size(), kExtension.data()));
    const auto isOld = [&](const BackendScreen& screen) { return screen.name.starts_with(kExtension); };
    _areOfWayland = (extension && extension->present) || std::ranges::any_of(list(), isOld);
    return *_areOfWayland;
}

bool XScreens::collect() {
    if (!_question) return false;
    const std::vector<BackendScreen> before = _screens;
    read();
    return !before.empty() && before != _screens;
}

bool XScreens::handle(const XAnyEvent& event) {
    const std::uint8_t kind = kindOf(event);
    bool isOurs = _firstEvent != 0 && (kind == _firstEvent || kind == _firstEvent + XCB_RANDR_NOTIFY);
    if (kind == XCB_PROPERTY_NOTIFY) {
        const auto& change = as<xcb_property_notify_event_t>(event);
        isOurs =
            change.window == _connection.root() &&
            (change.atom == _connection[Atom::_NET_WORKAREA] || change.atom == XCB_ATOM_RESOURCE_MANAGER ||
             change.atom == _connection[Atom::_NET_SUPPORTING_WM_CHECK]);
    }
    if (kind == XCB_CONFIGURE_NOTIFY)
        isOurs = as<xcb_configure_notify_event_t>(event).window == _connection.root();
    if (isOurs) ask();
    return isOurs;
}

}  // namespace pelvor
