// SPDX-License-Identifier: Apache-2.0
// XScreens: the monitors, and what panels and docks leave of them.
#pragma once

#include "Interface/Backend/Backend.h"
#include "InterfaceXCB/Connection.h"

namespace pelvor {

class XScreens {
  public:
    /// Asks for everything; the replies are read when they are needed.
    explicit XScreens(XConnection& connection);

    /// The main one first.
    const std::vector<BackendScreen>& list();
    /// Whether a window manager runs now. What one has left behind when it ended counts for nothing.
    bool hasWindowManager();

    /// Asks again; `collect` finds out what came of it. Servers do not tell each change.
    void ask();
    /// Whether the screens changed, as far as the server has replied.
    bool collect();
    /// Whether the server shows its windows through Wayland.
    bool areOfWayland();
    /// Whether the event was about the screens, and the server was asked again.
    bool handle(const XAnyEvent& event);

  private:
    /// The sequence numbers of the requests.
    struct Question {
        unsigned int monitors;
        unsigned int workArea;
        unsigned int resources;
        unsigned int manager;
    };
    void read();
    bool isManager(xcb_window_t window);
    PixelRect workArea(const XReply<xcb_get_property_reply_t>& reply) const;

    XConnection& _connection;
    std::vector<BackendScreen> _screens;
    std::optional<Question> _question;
    xcb_window_t _manager = 0;
    std::uint8_t _firstEvent = 0;
    bool _hasMonitors = false;
    std::optional<bool> _areOfWayland;
};

/// Pixels for each unit of length, by the resolution that the user has set for texts; 1 if none is set.
float scaleOfResources(std::string_view resources);

}  // namespace pelvor
