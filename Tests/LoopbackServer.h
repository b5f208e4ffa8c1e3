// SPDX-License-Identifier: Apache-2.0
// LoopbackServer: a server for one test, which this machine alone can reach.
#pragma once

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace pelvor {

/// Answers up to 100 connections, one after the other, on a port of 127.0.0.1 that the kernel chooses:
///
///     LoopbackServer server([](LoopbackServer::Call& call) { call.answer("{}"); });
///     load(server.url("/list.plist"));
///
/// The connection is closed when the function returns, whatever the answer says of it. No call waits for
/// longer than 20 seconds; a test ends its loads before the server.
class LoopbackServer {
  public:
    struct Call {
        std::string head;  ///< "GET /list.plist HTTP/1.1\r\n…"
        std::string body;
        std::string target() const {
            return head.substr(head.find(' ') + 1, head.find(" HTTP") - head.find(' ') - 1);
        }

        /// Returns false once the client has gone.
        bool send(std::string_view bytes) const {
            while (!bytes.empty()) {
                const ssize_t count = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
                if (count <= 0) return false;
                bytes.remove_prefix(static_cast<std::size_t>(count));
            }
            return true;
        }
        void answer(std::string_view content, std::string_view fields = "") const {
            send("HTTP/1.1 200 OK\r\n" + std::string(fields) +
                 "Content-Length: " + std::to_string(content.size()) + "\r\n\r\n" + std::string(content));
        }
        void waitUntilClientGoes() const {
            char byte;
            while (waitUntilReadable(socket) && ::recv(socket, &byte, 1, 0) > 0) {
            }
        }

        int socket;
    };
    using Answer = std::function<void(Call&)>;

    explicit LoopbackServer(Answer answer) : _answer(std::move(answer)) {
        ::setenv("no_proxy", "*", 1);
        _listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (::bind(_listener, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
            ::listen(_listener, 8) != 0 ||
            ::getsockname(_listener, reinterpret_cast<sockaddr*>(&address), &length) != 0)
            std::abort();
        _port = ntohs(address.sin_port);
        _thread = std::thread([this] { serve(); });
    }
    ~LoopbackServer() {
        _isOver = true;
        ::shutdown(_listener, SHUT_RDWR);
        _thread.join();
        ::close(_listener);
    }
    LoopbackServer(const LoopbackServer&) = delete;

    std::string url(const std::string& target = "/") const {
        return "http://127.0.0.1:" + std::to_string(_port) + target;
    }
    int port() const { return _port; }
    /// The calls that came so far.
    std::vector<Call> calls() {
        std::lock_guard lock(_mutex);
        return _calls;
    }

  private:
    static bool waitUntilReadable(int socket) {
        pollfd entry{socket, POLLIN, 0};
        return ::poll(&entry, 1, 20'000) == 1;
    }

    void serve() {
        for (int count = 0; count < 100 && !_isOver && waitUntilReadable(_listener); ++count) {
            const int socket = ::accept4(_listener, nullptr, nullptr, SOCK_CLOEXEC);
            if (socket < 0) return;
            Call call{{}, {}, socket};
            receive(call);
            {
                std::lock_guard lock(_mutex);
                _calls.push_back(call);
            }
            _answer(call);
            ::shutdown(socket, SHUT_WR);
            call.waitUntilClientGoes();
            ::close(socket);
        }
    }

    static void receive(Call& call) {
        std::string text;
        std::size_t end = text.npos, length = 0;
        char bytes[65536];
        while (end == text.npos || text.size() < end + length) {
            if (!waitUntilReadable(call.socket)) break;
            const ssize_t count = ::recv(call.socket, bytes, sizeof bytes, 0);
            if (count <= 0) break;
            text.append(bytes, static_cast<std::size_t>(count));
            if (text[0] < 'A') break;  // no request, but the beginning of a secure connection
            if (end != text.npos || (end = text.find("\r\n\r\n")) == text.npos) continue;
            end += 4;
            const std::size_t field = text.find("Content-Length: ");
            if (field < end) length = std::strtoul(text.c_str() + field + 16, nullptr, 10);
        }
        call.head = text.substr(0, end);
        if (end != text.npos) call.body = text.substr(end);
    }

    Answer _answer;
    int _listener = -1, _port = 0;
    std::atomic<bool> _isOver = false;
    std::mutex _mutex;
    std::vector<Call> _calls;
    std::thread _thread;
};

}  // namespace pelvor
