// SPDX-License-Identifier: Apache-2.0
// XServerScope: an X server of its own for a test, programs that run under it, and somebody who types there.
#pragma once

#include <signal.h>
#include <xcb/xcb.h>

#include <memory>
#include <string>
#include <vector>

#include "Interface/Backend/Backend.h"
#include "InterfaceXCB/Connection.h"

namespace pelvor {

/// A program that ends with the scope, or with the test if that comes first.
class ProgramScope {
  public:
    ProgramScope(const std::vector<std::string>& arguments, int descriptor = -1,
                 const std::string& input = "");
    ~ProgramScope() { end(); }
    ProgramScope(const ProgramScope&) = delete;
    ProgramScope& operator=(const ProgramScope&) = delete;

    int pid() const { return _pid; }
    void end(int signal = 0);  ///< 0: SIGTERM
    /// Waits until the program ends by itself.
    void wait();

  private:
    int _pid = -1;
};

/// DISPLAY names the server while the scope lives.
class XServerScope {
  public:
    enum class Manager { none, openbox };
    explicit XServerScope(Manager manager = Manager::none, std::vector<std::string> options = {});
    ~XServerScope();

    /// False if there is no Xvfb on this machine.
    static bool isPossible();
    void startManager();
    /// The manager crashes.
    void killManager() { _manager->end(SIGKILL); }

    /// Sees and does what another program would.
    xcb_connection_t* peer() { return *_peer; }
    xcb_window_t root() const { return _peer->root(); }
    XConnection& peerConnection() { return *_peer; }
    ProgramScope& server() { return *_server; }

    // Real keys, by the number that BackendKey::code has, and real pointer events.
    void key(int code, bool isDown);
    void press(int code) {
        key(code, true);
        key(code, false);
    }
    void movePointer(int x, int y);
    void button(int number, bool isDown);
    void click(int x, int y, int number = 1);

    /// The pixel on the screen, 0xRRGGBB.
    std::uint32_t pixel(int x, int y);
    /// Waits for a program to end.
    static void run(const std::vector<std::string>& arguments) { ProgramScope(arguments).wait(); }

  private:
    void play(std::uint8_t kind, int detail, int x, int y);

    std::unique_ptr<ProgramScope> _server;
    std::unique_ptr<ProgramScope> _manager;
    std::unique_ptr<XConnection> _peer;
};

}  // namespace pelvor
