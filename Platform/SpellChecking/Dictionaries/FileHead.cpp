// SPDX-License-Identifier: Apache-2.0
#include "SpellChecking/Dictionaries/FileHead.h"

#include <sys/stat.h>

#include <algorithm>

#include "Shared/Descriptor.h"

namespace pelvor {

std::optional<FileHead> readHead(const std::string& path, std::size_t limit) {
    const Descriptor file = openedAt(AT_FDCWD, path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY);
    struct stat status;
    if (!file || ::fstat(file, &status) != 0) return {};
    if (!S_ISREG(status.st_mode)) {
        errno = 0;
        return {};
    }
    FileHead head{
        {},
        static_cast<std::uint64_t>(status.st_size),
        {status.st_dev, status.st_ino, status.st_mtim.tv_sec * 1'000'000'000 + status.st_mtim.tv_nsec}};
    head.bytes.resize(std::min<std::uint64_t>(limit, head.size));
    for (std::size_t count = 0; count < head.bytes.size();) {
        const auto step =
            uninterrupted([&] { return ::read(file, head.bytes.data() + count, head.bytes.size() - count); });
        if (step < 0) return {};
        if (step == 0) head.bytes.resize(count);  // somebody cut the file
        count += static_cast<std::size_t>(step);
    }
    return head;
}

}  // namespace pelvor
