// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/TextFiles/TextFileSource.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace pelvor {

TextFileSource::TextFileSource(const char* path) : _descriptor(open(path, O_RDONLY | O_CLOEXEC)) {
    struct stat status;
    _isOpen = _descriptor >= 0 && fstat(_descriptor, &status) == 0;
    if (!_isOpen) _failure = errno;
    if (!_isOpen) return;
    _length = static_cast<std::uint64_t>(std::max<off_t>(status.st_size, 0));
    posix_fadvise(_descriptor, 0, 0, POSIX_FADV_SEQUENTIAL);
}

TextFileSource::~TextFileSource() {
    if (_descriptor >= 0) close(_descriptor);
}

std::ptrdiff_t TextFileSource::readAt(std::uint64_t place, std::span<char> buffer) const {
    if (_descriptor < 0) {
        const std::string_view piece =
            _bytes.substr(std::min<std::uint64_t>(place, _bytes.size()), buffer.size());
        return std::copy(piece.begin(), piece.end(), buffer.begin()) - buffer.begin();
    }
    std::size_t length = 0;
    while (length < buffer.size()) {
        const ssize_t count = pread(_descriptor, buffer.data() + length, buffer.size() - length,
                                    static_cast<off_t>(place + length));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return _failure = errno, -1;
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
    }
    return static_cast<std::ptrdiff_t>(length);
}

}  // namespace pelvor
