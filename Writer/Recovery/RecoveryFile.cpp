// SPDX-License-Identifier: Apache-2.0
#include "Writer/Recovery/RecoveryFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace pelvor {
namespace {

// Edits may be so long however short the text is.
constexpr std::uint64_t kLeastEdits = 64 << 10;

// Makes the folder and those above it that are missing.
bool makeFolders(const std::string& path) {
    for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        if (mkdir(path.substr(0, end).c_str(), 0700) != 0 && errno != EEXIST) return false;
        if (end == std::string::npos) return true;
    }
}

bool writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

std::string newName() {
    unsigned char bytes[8] = {};
    (void)!getrandom(bytes, sizeof bytes, 0);
    std::string name;
    for (const unsigned char byte : bytes) {
        name += "0123456789abcdef"[byte >> 4];
        name += "0123456789abcdef"[byte & 15];
    }
    return name.append(kRecoveryExtension);
}

}  // namespace

LockedFile::~LockedFile() {
    const int reason = errno;
    if (_descriptor >= 0) close(_descriptor);
    errno = reason;
}

LockedFile lockedRecoveryFolder(const std::string& folder) {
    LockedFile opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened < 0) return opened;
    while (flock(opened, LOCK_EX) != 0)
        if (errno != EINTR) return LockedFile();
    return opened;
}

RecoveryFile::RecoveryFile(std::string folder) : _folder(std::move(folder)), _name(newName()) {}

RecoveryFile::RecoveryFile(std::string folder, std::string name, LockedFile file)
    : _folder(std::move(folder)), _name(std::move(name)), _file(std::move(file)) {}

bool RecoveryFile::writeText(NSData* origin, NSAttributedString* text, NSUInteger place) {
    std::string bytes(kRecoverySignature);
    RecoveryAttributes attributes;
    addOriginRecord(bytes, origin);
    if (!addEditRecord(bytes, attributes, text, {0, text->length()}, 0)) return false;
    addEditRecord(bytes, attributes, text, {place, 0}, 0);
    if (bytes.size() > kLongestRecoveryFile / 2) {  // there will be edits behind it
        errno = EFBIG;
        return false;
    }
    LockedFile made;
    if (!makeUnfinished(made) || !finish(made, bytes)) return false;
    _file = std::move(made);
    _attributes = std::move(attributes);
    _size = _textSize = bytes.size();
    return true;
}

// The folder is locked, so that nobody takes the file for one that was left before it is locked itself.
bool RecoveryFile::makeUnfinished(LockedFile& made) {
    if (!makeFolders(_folder)) return false;
    const LockedFile folder = lockedRecoveryFolder(_folder);
    if (folder < 0) return false;
    const std::string path = _folder + '/' + _name + std::string(kUnfinishedExtension);
    unlink(path.c_str());
    made = LockedFile(open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    return made >= 0 && flock(made, LOCK_EX | LOCK_NB) == 0;
}

bool RecoveryFile::finish(int made, std::string_view bytes) {
    const std::string path = _folder + '/' + _name;
    const std::string unfinished = path + std::string(kUnfinishedExtension);
    if (writeAll(made, bytes) && fdatasync(made) == 0) {
        const LockedFile folder = lockedRecoveryFolder(_folder);
        if (folder >= 0 && rename(unfinished.c_str(), path.c_str()) == 0) {
            (void)fsync(folder);  // the file is good whatever the disk says of its name
            return true;
        }
    }
    const int reason = errno;
    unlink(unfinished.c_str());
    errno = reason;
    return false;
}

bool RecoveryFile::writeEdit(NSData* origin, NSAttributedString* text, NSRange range, NSUInteger removed,
                             NSUInteger place) {
    struct stat state;
    if (!isThere() || fstat(_file, &state) != 0 || state.st_nlink == 0) return writeText(origin, text, place);
    std::string bytes;
    if (!addEditRecord(bytes, _attributes, text, range, removed)) return false;
    if (place != NSMaxRange(range)) addEditRecord(bytes, _attributes, text, {place, 0}, 0);
    const std::uint64_t edits = _size - _textSize + bytes.size();
    return edits > std::max(_textSize, kLeastEdits) ? writeText(origin, text, place) : append(bytes);
}

bool RecoveryFile::append(std::string_view bytes) {
    if (writeAll(_file, bytes) && fdatasync(_file) == 0) {
        _size += bytes.size();
        return true;
    }
    const int reason = errno;
    (void)!ftruncate(_file, static_cast<off_t>(_size));
    errno = reason;
    return false;
}

void RecoveryFile::remove() {
    if (isThere()) unlink((_folder + '/' + _name).c_str());
    _file = LockedFile();
    _attributes = {};
    _size = _textSize = 0;
}

}  // namespace pelvor
