// SPDX-License-Identifier: Apache-2.0
#include "XServerScope.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <thread>
#include <utility>

namespace pelvor {

namespace {

[[noreturn]] void fail(const std::string& reason) {
    std::fprintf(stderr, "%s\n", reason.c_str());
    std::abort();
}

}  // namespace

ProgramScope::ProgramScope(const std::vector<std::string>& arguments, int descriptor,
                           const std::string& input) {
    std::vector<char*> words;
    for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    int pipe[2] = {-1, -1};
    if (!input.empty() && ::pipe2(pipe, O_CLOEXEC) != 0) return;
    const int parent = ::getpid();
    _pid = ::fork();
    if (_pid == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent) ::_exit(1);
        const int nothing = ::open("/dev/null", O_RDWR);
        ::dup2(pipe[0] >= 0 ? pipe[0] : nothing, 0);
        ::dup2(nothing, 1);
        ::dup2(nothing, 2);
        if (descriptor >= 0) ::fcntl(descriptor, F_SETFD, 0);
        ::execvp(words[0], words.data());
        ::_exit(127);
    }
    if (pipe[0] < 0) return;
    ::close(pipe[0]);
    for (std::size_t done = 0; done < input.size();) {
        const ssize_t count = ::write(pipe[1], input.data() + done, input.size() - done);
        if (count <= 0) break;
        done += static_cast<std::size_t>(count);
    }
    ::close(pipe[1]);
}

void ProgramScope::end(int signal) {
    if (_pid <= 0) return;
    ::kill(_pid, signal ? signal : SIGTERM);
    ::kill(_pid, SIGCONT);
    wait();
}

void ProgramScope::wait() {
    if (_pid > 0) ::waitpid(std::exchange(_pid, -1), nullptr, 0);
}

bool XServerScope::isPossible() { return std::system("command -v Xvfb >/dev/null 2>&1") == 0; }

XServerScope::XServerScope(Manager manager, std::vector<std::string> options) {
    ::setenv("LC_ALL", "en_US.UTF-8", 1);
    int pipe[2];
    if (::pipe2(pipe, O_CLOEXEC) != 0) std::abort();
    std::vector<std::string> arguments{"Xvfb",         "-noreset",   "-nolisten",
                                       "tcp",          "-screen",    "0",
                                       "1280x1024x24", "-displayfd", std::to_string(pipe[1])};
    arguments.insert(arguments.end(), options.begin(), options.end());
    _server = std::make_unique<ProgramScope>(arguments, pipe[1]);
    ::close(pipe[1]);
    std::string number;
    for (char byte = 0; ::read(pipe[0], &byte, 1) == 1 && byte != '\n';) number += byte;
    ::close(pipe[0]);
    ::setenv("DISPLAY", (":" + number).c_str(), 1);
    std::string reason;
    _peer = XConnection::open(&reason);
    if (!_peer) fail("Xvfb does not start: " + reason);
    // The first key of XTEST changes the keyboard, which is told as a change of the layout.
    press(183);
    if (manager == Manager::openbox) startManager();
}

XServerScope::~XServerScope() {
    _manager.reset();
    _peer.reset();
}

void XServerScope::startManager() {
    _manager = std::make_unique<ProgramScope>(std::vector<std::string>{"openbox", "--sm-disable"});
    // It says that it is there before it cares for windows, and forgets those that are shown in between.
    XConnection& peer = *_peer;
    const xcb_window_t probe = xcb_generate_id(peer);
    xcb_create_window(peer, XCB_COPY_FROM_PARENT, probe, root(), 0, 0, 9, 9, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    const auto waitFor = [](auto condition) {
        for (int i = 0; i < 2000; ++i) {
            if (condition()) return;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        fail("openbox does not start");
    };
    waitFor([&] { return peer.property(root(), peer[Atom::_NET_SUPPORTING_WM_CHECK]).type != 0; });
    waitFor([&] {
        xcb_unmap_window(peer, probe);
        xcb_map_window(peer, probe);
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        return peer.property(probe, peer[Atom::WM_STATE]).type != 0;
    });
    xcb_destroy_window(peer, probe);
    waitFor([&] {
        const auto clients = peer.property(root(), peer.atomNamed("_NET_CLIENT_LIST")).words();
        return std::ranges::find(clients, probe) == clients.end();
    });
}

void XServerScope::play(std::uint8_t kind, int detail, int x, int y) {
    xcb_test_fake_input(peer(), kind, static_cast<std::uint8_t>(detail), 0, root(),
                        static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
    // Once the server replies, it has done what was asked before.
    _peer->wait<xcb_get_input_focus_reply_t>(xcb_get_input_focus(peer()));
}

void XServerScope::key(int code, bool isDown) {
    play(isDown ? XCB_KEY_PRESS : XCB_KEY_RELEASE, code + 8, 0, 0);
}

void XServerScope::movePointer(int x, int y) { play(XCB_MOTION_NOTIFY, 0, x, y); }

void XServerScope::button(int number, bool isDown) {
    play(isDown ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, number, 0, 0);
}

void XServerScope::click(int x, int y, int number) {
    movePointer(x, y);
    button(number, true);
    button(number, false);
}

std::uint32_t XServerScope::pixel(int x, int y) {
    const auto image = _peer->wait<xcb_get_image_reply_t>(
        xcb_get_image(peer(), XCB_IMAGE_FORMAT_Z_PIXMAP, root(), static_cast<std::int16_t>(x),
                      static_cast<std::int16_t>(y), 1, 1, ~0U));
    if (!image) return 0xFF000000;
    std::uint32_t value = 0;
    std::memcpy(&value, xcb_get_image_data(image.get()), sizeof value);
    return value & 0xFFFFFF;
}

}  // namespace pelvor
