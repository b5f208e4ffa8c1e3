// SPDX-License-Identifier: Apache-2.0
// FileEventQueue: what the kernel tells of files, one event a file at a time; for this library's own sources.
#pragma once

#include <sys/inotify.h>

#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "Foundation/NSString.h"

namespace pelvor {

/// What tells one file from another, and one state of a file from another.
struct FileState {
    std::uint64_t device, number;
    std::int64_t born, written, changed;  ///< nanoseconds
    std::uint64_t size;
    std::uint32_t links, mode, user, group;

    bool operator==(const FileState&) const = default;
};

/// A kernel queue of events: watches are put on files, and what happens to the files waits in the queue until
/// somebody takes it. What happens to a file before its event is taken becomes one event. A watch stays on
/// its file whatever becomes of the names. Files of systems that the kernel knows nothing of (network, FUSE)
/// are looked at once a second. Any thread.
///
/// docs/file-watching.md says which changes give which events.
class FileEventQueue {
  public:
    /// Names a watch; never used again, never 0.
    using Watch = std::uint64_t;
    enum class Kind : unsigned char { any, folder };
    struct Event {
        Watch watch = 0;
        std::uint32_t changes = 0;  ///< of ZWFileChanges; never 0 in an event of a watch
        Retained<NSString> path;    ///< as the watch was given it
    };

    /// Returns null, after a line in the log, if the kernel refuses a queue.
    static std::shared_ptr<FileEventQueue> open();
    ~FileEventQueue() { close(); }
    FileEventQueue(const FileEventQueue&) = delete;

    /// Readable when there may be an event.
    int descriptor() const { return _ready; }

    /// Watches the file that has the path now for these changes. Returns 0, with the reason in `errno`, if
    /// that cannot be; a limit that is reached is logged once for each queue.
    Watch add(NSString* path, std::uint32_t changes, Kind kind = Kind::any);
    /// Ends the watch, whose events are no longer returned. Returns the number of the system's error, or 0.
    int remove(Watch watch);
    int removeAll();
    bool isWatched(Watch watch);
    bool hasWatches();

    /// Takes the next event if there is one.
    bool next(Event& event);
    /// Waits for an event. Returns an event without a watch if something woke the thread without need for a
    /// report, such as the end of a watch, or `wake`.
    Event wait();
    void wake();
    /// Ends all watches and the queue. Returns the number of the system's error, or 0.
    int close();

  private:
    struct File;
    /// A path under which a file is watched.
    struct Entry {
        Watch watch;
        Retained<NSString> path;
        std::string name;  ///< the path for the system
        std::uint32_t changes;
        std::shared_ptr<File> file;
        bool isAtName = true;    ///< the path led to the file when it was looked at last
        bool isDeleted = false;  ///< that the name was removed has been told
    };
    struct File {
        FileState known;
        int descriptor;  ///< the kernel's watch, or -1: polled, or ended by the kernel
        bool isPolled;
        std::uint32_t happened = 0;  ///< what the kernel told and nobody has looked into
        std::vector<std::shared_ptr<Entry>> entries;
    };
    /// What is behind a name.
    struct Look {
        FileState state;
        int error = 0;
        bool leadsToFile = false;
    };

    FileEventQueue() = default;
    static Look look(const Entry& entry);

    void receive();
    void note(const inotify_event& event);
    void mark(const std::shared_ptr<File>& file, std::uint32_t happened);
    void lookAtAll();
    std::unordered_set<int> livingDescriptors();
    void setTimer(bool atOnce);
    void lookInto(const std::shared_ptr<File>& file, std::unique_lock<std::mutex>& lock);
    static std::uint32_t changesOfFile(File& file, std::uint32_t happened, const FileState* now);
    static std::uint32_t changesOfName(Entry& entry, std::uint32_t happened, const Look& look);
    int endWatch(const std::shared_ptr<File>& file);
    void noteLimit(int error, NSString* path);

    std::mutex _mutex;
    int _ready = -1;  // an epoll of the other two
    int _inotify = -1;
    int _timer = -1;  // for polling and for `wake`
    std::atomic<bool> _timerIsSet{false};
    bool _isWoken = false;  // since the last wait; of the thread that waits
    std::atomic<bool> _hasToldLimit{false};
    bool _pollsAll = false;
    Watch _last = 0;
    std::unordered_map<Watch, std::shared_ptr<Entry>> _entries;
    std::unordered_map<int, std::shared_ptr<File>> _files;  // by the kernel's watch
    std::unordered_set<std::shared_ptr<File>> _polled;
    std::deque<std::shared_ptr<File>> _happened;  // files to look into
    std::deque<Event> _events;
};

}  // namespace pelvor
