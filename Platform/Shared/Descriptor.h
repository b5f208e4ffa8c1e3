// SPDX-License-Identifier: Apache-2.0
// Descriptor: owns a file descriptor; and what else every unit of files needs of the system's calls.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <utility>

namespace pelvor {

/// Sets `errno` and returns false.
inline bool failWith(int reason) {
    errno = reason;
    return false;
}

/// Makes the call again as long as a signal interrupts it.
template <class Call>
auto uninterrupted(Call call) {
    for (;;) {
        auto result = call();
        if (result >= 0 || errno != EINTR) return result;
    }
}

/// Owns a file descriptor. Closing it in the destructor does not change `errno`.
class Descriptor {
  public:
    explicit Descriptor(int number = -1) : _number(number) {}
    Descriptor(Descriptor&& other) noexcept : _number(std::exchange(other._number, -1)) {}
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { set(-1); }

    void set(int number) {
        int reason = errno;
        if (_number >= 0) ::close(_number);
        _number = number;
        errno = reason;
    }
    explicit operator bool() const { return _number >= 0; }
    operator int() const { return _number; }
    /// Returns whether the file system is content. An interrupted close has closed the descriptor.
    bool close() { return ::close(std::exchange(_number, -1)) == 0 || errno == EINTR; }
    int release() { return std::exchange(_number, -1); }

  private:
    int _number;
};

/// Opens a file, and again as long as a signal interrupts it.
inline Descriptor openedAt(int folder, const char* path, int flags, mode_t rights = 0) {
    return Descriptor(uninterrupted([&] { return ::openat(folder, path, flags | O_CLOEXEC, rights); }));
}

}  // namespace pelvor
