// SPDX-License-Identifier: Apache-2.0
#include "Writer/Recovery/RecoveryStore.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "Foundation/NSLog.h"
#include "Foundation/StandardFolders.h"
#include "Writer/Recovery/RecoveryFile.h"

namespace pelvor {
namespace {

double secondsOf(const struct stat& state) {
    return static_cast<double>(state.st_mtim.tv_sec) + static_cast<double>(state.st_mtim.tv_nsec) / 1e9;
}

// Those that were changed last come first.
std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::pair<double, std::string>> files;
    DIR* stream = opendir(folder.c_str());
    if (!stream) return {};
    while (const dirent* entry = readdir(stream)) {
        struct stat state {};
        (void)fstatat(dirfd(stream), entry->d_name, &state, AT_SYMLINK_NOFOLLOW);
        files.emplace_back(-secondsOf(state), entry->d_name);
    }
    closedir(stream);
    std::sort(files.begin(), files.end());
    std::vector<std::string> names;
    for (auto& file : files) names.push_back(std::move(file.second));
    return names;
}

void logPassedOver(const std::string& path, const std::string& reason) {
    logText("the recovery file " + path + " is passed over: " + reason);
}

// Opens and locks a regular file. Without a descriptor the reason is empty if another process holds the lock.
LockedFile openedRecoveryFile(const std::string& path, struct stat& state, std::string& reason) {
    // Neither a link nor the other end of a pipe is followed or waited for.
    LockedFile file(open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (file < 0 || fstat(file, &state) != 0)
        reason = std::strerror(errno);
    else if (!S_ISREG(state.st_mode))
        reason = "it is no regular file";
    else if (state.st_uid != geteuid())
        reason = "it belongs to somebody else";
    else if (flock(file, LOCK_EX | LOCK_NB) == 0)
        return file;
    else if (errno != EWOULDBLOCK)
        reason = std::strerror(errno);
    return LockedFile();
}

bool readAll(int file, std::uint64_t size, std::string& bytes) {
    bytes.resize(static_cast<std::size_t>(size));
    for (std::size_t place = 0; place < bytes.size();) {
        const ssize_t count =
            pread(file, bytes.data() + place, bytes.size() - place, static_cast<off_t>(place));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        if (count == 0) bytes.resize(place);  // the file has become shorter
        place += static_cast<std::size_t>(count);
    }
    return true;
}

std::optional<RecoveryContent> contentOf(int file, std::uint64_t size, std::string& reason) {
    std::string bytes;
    if (size > kLongestRecoveryFile)
        reason = "it is too long";
    else if (!readAll(file, size, bytes))
        reason = std::strerror(errno);
    else
        return readRecovery(bytes, reason);
    return {};
}

void moveAside(const std::string& path, const std::string& reason) {
    logPassedOver(path, reason);
    rename(path.c_str(), (path + std::string(kDamagedExtension)).c_str());
}

// What a process left that was killed while it wrote a whole text.
void removeUnlessLocked(const std::string& path) {
    struct stat state;
    std::string reason;
    if (openedRecoveryFile(path, state, reason) >= 0) unlink(path.c_str());
}

void addDocument(std::vector<AbandonedDocument>& documents, const std::string& folder,
                 const std::string& name) {
    const std::string path = folder + '/' + name;
    std::string reason;
    struct stat state;
    LockedFile file = openedRecoveryFile(path, state, reason);
    if (!reason.empty()) logPassedOver(path, reason);
    if (file < 0) return;
    auto content = contentOf(file, static_cast<std::uint64_t>(state.st_size), reason);
    if (!content) return moveAside(path, reason);
    documents.push_back({std::move(content->origin), std::move(content->text), content->place,
                         Retained<NSDate>::retaining(NSDate::dateWithTimeIntervalSince1970(secondsOf(state))),
                         std::make_shared<RecoveryFile>(folder, name, std::move(file))});
}

}  // namespace

RecoveredFileState AbandonedDocument::fileState() const {
    if (!origin.file.isThere()) return RecoveredFileState::neverThere;
    const FileIdentity now = FileIdentity::ofFile(origin.path);
    if (!now.isThere()) return RecoveredFileState::missing;
    return now == origin.file ? RecoveredFileState::unchanged : RecoveredFileState::changed;
}

void AbandonedDocument::discard() {
    if (file) file->remove();
    file = nullptr;
}

RecoveryStore RecoveryStore::ofUser() {
    const char* state = std::getenv("XDG_STATE_HOME");
    const bool isNamed = state && *state == '/';
    return RecoveryStore(
        (isNamed ? state : NSHomeDirectory()->fileSystemRepresentation() + std::string("/.local/state")) +
        std::string("/pelvor-writer/recovery"));
}

std::vector<AbandonedDocument> RecoveryStore::abandonedDocuments() const {
    std::vector<AbandonedDocument> documents;
    const LockedFile lock = lockedRecoveryFolder(_folder);
    if (lock < 0) {
        if (errno != ENOENT) logPassedOver(_folder, std::strerror(errno));
        return documents;
    }
    std::size_t left = 0;
    for (const std::string& name : namesIn(_folder)) {
        if (name.ends_with(kUnfinishedExtension)) {
            removeUnlessLocked(_folder + '/' + name);
        } else if (name.ends_with(kRecoveryExtension)) {
            if (documents.size() < kMost)
                addDocument(documents, _folder, name);
            else
                ++left;
        }
    }
    if (left)
        logText(std::to_string(left) + " more recovery files in " + _folder + " wait for the next start");
    return documents;
}

std::shared_ptr<RecoveryFile> RecoveryStore::newFile() const {
    return std::make_shared<RecoveryFile>(_folder);
}

}  // namespace pelvor
