// SPDX-License-Identifier: Apache-2.0
#include "FileWatcher/Private/FileEventQueue.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/epoll.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <utility>

#include "FileWatcher/ZWKQueue.h"
#include "Foundation/NSFileManager.h"
#include "Foundation/NSLog.h"
#include "Shared/Descriptor.h"

namespace pelvor {
namespace {

constexpr std::uint32_t kEntryEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
constexpr std::uint32_t kLookAgain = IN_Q_OVERFLOW;
constexpr time_t kSecondsBetweenLooks = 1;

std::int64_t nanoseconds(const statx_timestamp& time) {
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

// Returns the number of the system's error, or 0.
int getState(int folder, const char* name, int flags, FileState& state) {
    struct statx found;
    if (statx(folder, name, flags, STATX_BASIC_STATS | STATX_BTIME, &found) != 0) return errno;
    state = {std::uint64_t{found.stx_dev_major} << 32 | found.stx_dev_minor,
             found.stx_ino,
             found.stx_mask & STATX_BTIME ? nanoseconds(found.stx_btime) : 0,
             nanoseconds(found.stx_mtime),
             nanoseconds(found.stx_ctime),
             found.stx_size,
             found.stx_nlink,
             found.stx_mode,
             found.stx_uid,
             found.stx_gid};
    return 0;
}

// A file system gives the number of a removed file to a new one, which was born later.
bool isSameFile(const FileState& a, const FileState& b) {
    return a.device == b.device && a.number == b.number && a.born == b.born;
}

// Some systems of files that are looked at, such as sshfs, give a file another number once the kernel has
// forgotten it.
bool isRenumbered(FileState a, const FileState& b) {
    a.number = b.number;
    return a == b;
}

// Whether other machines or programs change the files of such a system without the kernel's knowledge.
bool isBlindFor(std::uint32_t system) {
    constexpr std::uint32_t kBlind[] = {
        NFS_SUPER_MAGIC, SMB_SUPER_MAGIC, SMB2_SUPER_MAGIC, CIFS_SUPER_MAGIC, FUSE_SUPER_MAGIC,
        AFS_SUPER_MAGIC, AFS_FS_MAGIC,    CODA_SUPER_MAGIC, NCP_SUPER_MAGIC,  V9FS_MAGIC,
        0x00C36400,  // Ceph
        0x786F4256,  // folders of the host in a virtual machine
        0x0BD00BD0,  // Lustre
        0x47504653,  // GPFS
    };
    return std::find(std::begin(kBlind), std::end(kBlind), system) != std::end(kBlind);
}

std::uint32_t kernelEvents(std::uint32_t changes, bool isFolder) {
    std::uint32_t events = IN_DELETE_SELF;
    if (changes & ZWFileRenamed) events |= IN_MOVE_SELF;
    // Only who hears of renaming as well can tell a removed name from a changed one.
    if (changes & (ZWFileDeleted | ZWFileAttributesChanged | ZWFileLinkCountChanged))
        events |= IN_ATTRIB | IN_MOVE_SELF;
    if (isFolder && (changes & (ZWFileWritten | ZWFileLinkCountChanged))) events |= kEntryEvents;
    if (!isFolder && (changes & (ZWFileWritten | ZWFileExtended))) events |= IN_MODIFY;
    return events;
}

// The kernel tells of a changed name after the change, and holds the folder's lock until it has told. Who
// reads the folder waits for that lock.
void awaitChangeOfName(const std::string& name) {
    const std::size_t slash = name.find_last_of('/');
    const std::string parent = slash == std::string::npos ? "." : name.substr(0, slash + 1);
    const Descriptor folder = openedAt(AT_FDCWD, parent.c_str(), O_RDONLY | O_DIRECTORY | O_NONBLOCK);
    alignas(dirent64) char entries[512];
    if (folder) (void)getdents64(folder, entries, sizeof entries);
}

const char* limitBehind(int error) {
    switch (error) {
        case ENOSPC:
            return "fs.inotify.max_user_watches";
        case ENFILE:
            return "fs.file-max";
        case EMFILE:
            return "RLIMIT_NOFILE";
        default:
            return nullptr;
    }
}

// The kernel has one number for two limits.
const char* limitOfQueues(int error) {
    if (error != EMFILE) return limitBehind(error);
    const Descriptor another = openedAt(AT_FDCWD, "/", O_PATH);
    return another ? "fs.inotify.max_user_instances" : "RLIMIT_NOFILE";
}

void logRefusedQueue(int error) {
    const char* limit = limitOfQueues(error);
    NSLog(u"The kernel refuses a queue for file events: %s%s"_ns,
          limit ? "the limit is reached of " : std::strerror(error), limit ? limit : "");
    errno = error;
}

bool isLostConnection(int error) {
    return error == ESTALE || error == EIO || error == ENOTCONN || error == ENODEV || error == ENXIO ||
           error == EHOSTDOWN || error == ECONNABORTED;
}

}  // namespace

// MARK: The queue

std::shared_ptr<FileEventQueue> FileEventQueue::open() {
    std::shared_ptr<FileEventQueue> queue(new FileEventQueue);
    epoll_event readable{EPOLLIN, {}};
    if ((queue->_inotify = inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) < 0 ||
        (queue->_timer = timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)) < 0 ||
        (queue->_ready = epoll_create1(EPOLL_CLOEXEC)) < 0 ||
        epoll_ctl(queue->_ready, EPOLL_CTL_ADD, queue->_inotify, &readable) != 0 ||
        epoll_ctl(queue->_ready, EPOLL_CTL_ADD, queue->_timer, &readable) != 0) {
        logRefusedQueue(errno);
        return nullptr;
    }
    const char* polling = std::getenv("PELVOR_POLL_FILES");
    queue->_pollsAll = polling && *polling;
    return queue;
}

int FileEventQueue::close() {
    std::lock_guard lock(_mutex);
    for (auto& [watch, entry] : _entries)  // entries and files hold each other
        std::exchange(entry->file, nullptr)->entries.clear();
    _entries.clear();
    _files.clear();
    _polled.clear();
    int error = 0;
    for (int* descriptor : {&_ready, &_inotify, &_timer})
        if (*descriptor >= 0 && ::close(std::exchange(*descriptor, -1)) != 0) error = errno;
    return error;
}

void FileEventQueue::wake() {
    std::lock_guard lock(_mutex);
    setTimer(true);
}

void FileEventQueue::setTimer(bool atOnce) {
    itimerspec times{};
    if (!_polled.empty()) times.it_interval.tv_sec = kSecondsBetweenLooks;
    times.it_value = atOnce ? timespec{0, 1} : times.it_interval;
    _timerIsSet = atOnce || !_polled.empty();
    timerfd_settime(_timer, 0, &times, nullptr);
}

void FileEventQueue::noteLimit(int error, NSString* path) {
    const char* limit = limitBehind(error);
    if (limit && !_hasToldLimit.exchange(true))
        NSLog(
            u"Cannot watch %@: the limit is reached of %s. Further files are not watched, without a line for each."_ns,
            path, limit);
    errno = error;
}

// MARK: Watches

FileEventQueue::Watch FileEventQueue::add(NSString* path, std::uint32_t changes, Kind kind) {
    const char* bytes = NSFileManager::defaultManager()->fileSystemRepresentationWithPath(path);
    if (!bytes) return errno = EINVAL, 0;
    std::string name = bytes;
    Descriptor opened(::open(name.c_str(), O_PATH | O_CLOEXEC | (kind == Kind::folder ? O_DIRECTORY : 0)));
    FileState state;
    struct statfs system;
    if (opened < 0 || getState(opened, "", AT_EMPTY_PATH, state) != 0 || fstatfs(opened, &system) != 0) {
        noteLimit(errno, path);
        return 0;
    }
    std::lock_guard lock(_mutex);
    std::shared_ptr<File> file;
    if (_pollsAll || isBlindFor(static_cast<std::uint32_t>(system.f_type))) {
        file = std::make_shared<File>(File{state, -1, true, 0, {}});
        _polled.insert(file);
        if (_polled.size() == 1) setTimer(false);
    } else {
        // Through the descriptor, the watch comes to the file whose state was taken.
        const std::string place = "/proc/self/fd/" + std::to_string(opened);
        const int descriptor = inotify_add_watch(_inotify, place.c_str(),
                                                 kernelEvents(changes, S_ISDIR(state.mode)) | IN_MASK_ADD);
        if (descriptor < 0) {
            noteLimit(errno, path);
            return 0;
        }
        auto& known = _files[descriptor];  // a file has one watch, whatever the number of its paths
        if (!known) known = std::make_shared<File>(File{state, descriptor, false, 0, {}});
        file = known;
    }
    auto entry = std::make_shared<Entry>(
        Entry{++_last, Retained<NSString>::retaining(path), std::move(name), changes, file});
    file->entries.push_back(entry);
    _entries.emplace(_last, std::move(entry));
    return _last;
}

int FileEventQueue::remove(Watch watch) {
    std::lock_guard lock(_mutex);
    auto found = _entries.find(watch);
    if (found == _entries.end()) return 0;
    const std::shared_ptr<File> file = found->second->file;
    std::erase(file->entries, found->second);
    found->second->file = nullptr;
    _entries.erase(found);
    return file->entries.empty() ? endWatch(file) : 0;
}

int FileEventQueue::removeAll() {
    std::lock_guard lock(_mutex);
    int error = 0;
    for (auto& [watch, entry] : _entries) {
        const std::shared_ptr<File> file = std::exchange(entry->file, nullptr);
        if (file->entries.empty()) continue;  // ended with another of its paths
        file->entries.clear();
        if (int failure = endWatch(file)) error = failure;
    }
    _entries.clear();
    return error;
}

// That the kernel has ended the watch before is no error: it does so with the end of the file.
int FileEventQueue::endWatch(const std::shared_ptr<File>& file) {
    if (_polled.erase(file) && _polled.empty()) setTimer(false);
    if (file->descriptor < 0) return 0;
    const int descriptor = std::exchange(file->descriptor, -1);
    _files.erase(descriptor);
    return inotify_rm_watch(_inotify, descriptor) != 0 && errno != EINVAL ? errno : 0;
}

bool FileEventQueue::isWatched(Watch watch) {
    std::lock_guard lock(_mutex);
    return _entries.contains(watch);
}

bool FileEventQueue::hasWatches() {
    std::lock_guard lock(_mutex);
    return !_entries.empty();
}

// MARK: What the kernel tells

FileEventQueue::Event FileEventQueue::wait() {
    Event event;
    // Who was told to stop waiting may have been told before he began.
    if (next(event) || std::exchange(_isWoken, false)) return event;
    epoll_event ready;
    epoll_wait(_ready, &ready, 1, -1);
    next(event);
    _isWoken = false;
    return event;
}

bool FileEventQueue::next(Event& event) {
    receive();  // between any two reports, so that the kernel's own queue stays short
    std::unique_lock lock(_mutex);
    for (;;) {
        for (; !_events.empty(); _events.pop_front())
            if (_entries.contains(_events.front().watch)) {
                event = std::move(_events.front());
                _events.pop_front();
                return true;
            }
        if (_happened.empty()) return false;
        const std::shared_ptr<File> file = std::move(_happened.front());
        _happened.pop_front();
        lookInto(file, lock);
    }
}

void FileEventQueue::receive() {
    alignas(inotify_event) char buffer[65536];
    const ssize_t length = read(_inotify, buffer, sizeof buffer);
    std::uint64_t expirations;
    const bool looks = _timerIsSet && read(_timer, &expirations, sizeof expirations) > 0;
    if (looks) _isWoken = true;
    if (length <= 0 && !looks) return;
    std::lock_guard lock(_mutex);
    for (const char* place = buffer; place < buffer + std::max<ssize_t>(length, 0);) {
        const auto& event = *reinterpret_cast<const inotify_event*>(place);
        note(event);
        place += sizeof event + event.len;
    }
    if (looks)
        for (const auto& file : _polled) mark(file, kLookAgain);
}

void FileEventQueue::note(const inotify_event& event) {
    if (event.mask & IN_Q_OVERFLOW) return lookAtAll();
    auto found = _files.find(event.wd);
    if (found == _files.end()) return;
    if (event.mask & IN_IGNORED) {
        found->second->descriptor = -1;
        _files.erase(found);
    } else {
        mark(found->second, event.mask);
    }
}

void FileEventQueue::mark(const std::shared_ptr<File>& file, std::uint32_t happened) {
    if (!file->happened) _happened.push_back(file);
    file->happened |= happened;
}

// The kernel has dropped events. A file whose watch has ended is gone.
void FileEventQueue::lookAtAll() {
    const std::unordered_set<int> living = livingDescriptors();
    std::erase_if(_files, [&](auto& watched) {
        auto& [descriptor, file] = watched;
        const bool lives = living.contains(descriptor);
        mark(file, lives ? kLookAgain : kLookAgain | IN_DELETE_SELF);
        if (!lives) file->descriptor = -1;
        return !lives;
    });
}

std::unordered_set<int> FileEventQueue::livingDescriptors() {
    std::unordered_set<int> living;
    std::ifstream list("/proc/self/fdinfo/" + std::to_string(_inotify));
    for (std::string line; std::getline(list, line);)
        if (line.starts_with("inotify wd:"))
            living.insert(
                static_cast<int>(std::strtol(line.c_str() + std::strlen("inotify wd:"), nullptr, 16)));
    return living;
}

// MARK: What happened to a file

FileEventQueue::Look FileEventQueue::look(const Entry& entry) {
    Look look;
    look.error = getState(AT_FDCWD, entry.name.c_str(), 0, look.state);
    return look;
}

// Nobody waits for the lock while the file system is asked, which may take long.
void FileEventQueue::lookInto(const std::shared_ptr<File>& file, std::unique_lock<std::mutex>& lock) {
    const auto entries = file->entries;
    lock.unlock();
    std::vector<Look> looks;
    for (const auto& entry : entries) {
        looks.push_back(look(*entry));
        Look& last = looks.back();
        last.leadsToFile = last.error == 0 && (isSameFile(last.state, file->known) ||
                                               (file->isPolled && isRenumbered(last.state, file->known)));
        if (!last.leadsToFile && !file->isPolled) awaitChangeOfName(entry->name);
    }
    if (std::any_of(looks.begin(), looks.end(), [](const Look& look) { return !look.leadsToFile; }))
        receive();
    lock.lock();

    const std::uint32_t happened = std::exchange(file->happened, 0);
    const FileState* now = nullptr;
    for (const Look& look : looks)
        if (look.leadsToFile && !(happened & IN_DELETE_SELF)) now = &look.state;
    const std::uint32_t changes = changesOfFile(*file, happened, now);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        Entry& entry = *entries[i];
        if (!entry.file) continue;
        const std::uint32_t told = (changes | changesOfName(entry, happened, looks[i])) & entry.changes;
        if (told) _events.push_back({entry.watch, told, entry.path});
    }
}

// What holds for the file under all its names. A part of the known state changes only when that part is told,
// since its own event may still be under way.
std::uint32_t FileEventQueue::changesOfFile(File& file, std::uint32_t happened, const FileState* now) {
    std::uint32_t changes = 0;
    if (happened & IN_UNMOUNT) changes |= ZWFileRevoked;
    if (happened & IN_MOVE_SELF) changes |= ZWFileRenamed;
    if (happened & (IN_MODIFY | kEntryEvents)) changes |= ZWFileWritten;
    if (!now) return changes;

    FileState& known = file.known;
    if (happened & (IN_MODIFY | kLookAgain)) {
        if (now->size > known.size && S_ISREG(now->mode)) changes |= ZWFileWritten | ZWFileExtended;
        if (now->size != known.size || now->written != known.written) changes |= ZWFileWritten;
        known.size = now->size;
    }
    if (happened & (IN_ATTRIB | kEntryEvents | kLookAgain)) {
        const bool isRelinked = now->links != known.links;
        const bool isGivenAway =
            now->mode != known.mode || now->user != known.user || now->group != known.group;
        const bool isOtherwiseChanged = happened & IN_ATTRIB || (!changes && now->changed != known.changed);
        if (isRelinked) changes |= ZWFileLinkCountChanged;
        if (isGivenAway || (isOtherwiseChanged && !isRelinked)) changes |= ZWFileAttributesChanged;
        known.links = now->links;
        known.mode = now->mode;
        known.user = now->user;
        known.group = now->group;
    }
    known.number = now->number;
    known.written = now->written;
    known.changed = now->changed;
    return changes;
}

// What became of a name of the file.
std::uint32_t FileEventQueue::changesOfName(Entry& entry, std::uint32_t happened, const Look& look) {
    if (happened & IN_UNMOUNT) return 0;
    const bool isFolder = S_ISDIR(entry.file->known.mode);
    const std::uint32_t removal = isFolder ? ZWFileDeleted : ZWFileDeleted | ZWFileLinkCountChanged;
    if (happened & IN_DELETE_SELF) {
        entry.isAtName = false;
        return std::exchange(entry.isDeleted, true) ? 0 : removal;
    }
    if (look.leadsToFile) {
        entry.isAtName = true;
        entry.isDeleted = false;
        return 0;
    }
    // Of a file without a known name, nobody can say what has changed.
    const std::uint32_t unknown = happened & IN_ATTRIB ? std::uint32_t{ZWFileAttributesChanged} : 0;
    if (!entry.isAtName) return unknown;
    if (!(happened & (IN_MOVE_SELF | IN_ATTRIB | kLookAgain))) return 0;  // its event is still to come
    entry.isAtName = false;
    if (happened & IN_MOVE_SELF) return unknown;
    if (entry.file->isPolled) return isLostConnection(look.error) ? ZWFileRevoked : ZWFileDeleted;
    if (!(happened & IN_ATTRIB)) return ZWFileRenamed;
    entry.isDeleted = true;
    return removal;
}

}  // namespace pelvor
