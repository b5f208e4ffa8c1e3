// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "Foundation/Files/FileContents.h"

namespace pelvor {
namespace {

class Descriptor {
  public:
    explicit Descriptor(int number) : _number(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (_number >= 0) ::close(_number);
    }
    explicit operator bool() const { return _number >= 0; }
    operator int() const { return _number; }
    bool close() { return ::close(std::exchange(_number, -1)) == 0; }

  private:
    int _number;
};

bool writeAll(int descriptor, std::span<const std::byte> content) {
    while (!content.empty()) {
        ssize_t written = ::write(descriptor, content.data(), content.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        content = content.subspan(static_cast<std::size_t>(written));
    }
    return true;
}

bool writeDirectly(const std::string& path, std::span<const std::byte> content) {
    Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
    return file && writeAll(file, content) && file.close();
}

// A new file beside the target, private or with the rights of the target or of any new file; its path to
// `path`.
int createBeside(const std::string& target, std::string& path, FileWriting writing) {
    static std::atomic<unsigned> counter{0};
    bool isPrivate = writing == FileWriting::atomicPrivate;
    int file;
    do {
        path = target + "." + std::to_string(::getpid()) + "-" + std::to_string(counter++);
        file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, isPrivate ? 0600 : 0666);
    } while (file < 0 && errno == EEXIST);
    struct stat status;
    if (file >= 0 && !isPrivate && ::stat(target.c_str(), &status) == 0)
        (void)!::fchmod(file, status.st_mode & 07777);
    return file;
}

bool writeAtomically(const std::string& path, std::span<const std::byte> content, FileWriting writing) {
    std::string target = path;
    if (char* real = ::realpath(path.c_str(), nullptr)) {
        target = real;  // a symbolic link stays what it is
        std::free(real);
    }
    std::string temporary;
    Descriptor file(createBeside(target, temporary, writing));
    if (!file) return false;
    bool isWritten = writeAll(file, content) && ::fsync(file) == 0 && file.close() &&
                     ::rename(temporary.c_str(), target.c_str()) == 0;
    if (!isWritten) ::unlink(temporary.c_str());
    return isWritten;
}

}  // namespace

bool readFile(const std::string& path, std::vector<std::byte>& content) {
    Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status;
    if (!file || ::fstat(file, &status) != 0 || S_ISDIR(status.st_mode)) return false;
    // The size is only where to begin: some files tell none, and others grow.
    std::size_t length = 0;
    content.resize(static_cast<std::size_t>(std::clamp<off_t>(status.st_size, 0, UINT32_MAX)) + 1);
    for (;;) {
        if (length == content.size()) content.resize(length * 2);
        ssize_t count = ::read(file, content.data() + length, content.size() - length);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
        if (length > UINT32_MAX) return false;
    }
    content.resize(length);
    return true;
}

bool writeFile(const std::string& path, std::span<const std::byte> content, FileWriting writing) {
    return writing == FileWriting::direct ? writeDirectly(path, content)
                                          : writeAtomically(path, content, writing);
}

}  // namespace pelvor
