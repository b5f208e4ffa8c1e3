// SPDX-License-Identifier: Apache-2.0
// ZWKQueue: tells what happens to files, from a thread of its own.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "FileWatcher/ZWMainThreadProxy.h"
#include "Foundation/NSString.h"
#include "Runtime/WeakHandle.h"

namespace pelvor {

class FileEventQueue;
class ZWKQueue;

/// The release that takes the last reference ends here: the thread of the queue takes the reference over, and
/// ends the object when it ends itself.
template <>
PELVOR_EXPORT void Instances::destroy<ZWKQueue>(ZWKQueue* queue) noexcept;

/// What may happen to a file; values may be combined. docs/file-watching.md says which changes of a file give
/// which of these.
enum ZWFileChanges : std::uint32_t {
    ZWFileDeleted = 0x01,
    ZWFileWritten = 0x02,
    ZWFileExtended = 0x04,  ///< the file has become longer
    ZWFileAttributesChanged = 0x08,
    ZWFileLinkCountChanged = 0x10,
    ZWFileRenamed = 0x20,
    ZWFileRevoked = 0x40,  ///< the file cannot be reached any more: its file system is gone
};

// The names of the reports, in the order in which the changes of one event are reported. As notifications
// they are posted on the workspace's centre; the sender is the watcher, and the user information has the
// watched path under the key "path".

inline constexpr NSString* ZWFileWatcherRenameNotification = u"ZWKQueueFileRenamedNotification"_ns;
inline constexpr NSString* ZWFileWatcherWriteNotification = u"ZWKQueueFileWrittenToNotification"_ns;
inline constexpr NSString* ZWFileWatcherDeleteNotification = u"ZWKQueueFileDeletedNotification"_ns;
inline constexpr NSString* ZWFileWatcherAttributeChangeNotification =
    u"ZWKQueueFileAttributesChangedNotification"_ns;
inline constexpr NSString* ZWFileWatcherSizeIncreaseNotification =
    u"ZWKQueueFileSizeIncreasedNotification"_ns;
inline constexpr NSString* ZWFileWatcherLinkCountChangeNotification =
    u"ZWKQueueFileLinkCountChangedNotification"_ns;
inline constexpr NSString* ZWFileWatcherAccessRevocationNotification =
    u"ZWKQueueFileAccessRevocationNotification"_ns;

/// Watches files through a queue of the kernel, and reports each kind of change separately:
///
///     Retained<ZWKQueue> queue = ZWKQueue::init();
///     queue->setDelegate(document);
///     queue->addPath(path);
///
/// A thread of the queue waits for events. Without a delegate, this thread posts the notifications above.
/// With a delegate, the thread has the main thread's run loop (in the common modes) send the delegate this
/// message with the name of a notification and the path, and waits until that is done:
///
///     (void)watcher:(ZWKQueue*) receivedNotification:(NSString*) forPath:(NSString*)
///
/// Changes of a file before its event is reported are one event. What the delegate or an observer raises is
/// logged, and ends the reports of that event.
///
/// A watch stays on the file that had the path when the path was added: renaming or removing the file does
/// not end the watch, and another file that takes the name is not watched. Paths are reported as they were
/// added; a path that was added twice is watched and reported twice. After a path was removed, the delegate
/// is not called for it any more; a notification that another thread is just posting may still arrive.
///
/// When the last owner lets go of the queue, its thread keeps it and is told to end, which the thread does
/// with the next event: that event is still reported, and then the queue ends. A queue without watches, to
/// which no event can come, ends at once. (The reference of the thread comes into being with the last
/// release, so that `retainCount` counts the owners alone.) Any thread.
class PELVOR_EXPORT ZWKQueue final : public NSObject {
    PELVOR_CLASS(ZWKQueue, NSObject);
    PELVOR_CREATORS(init);

  public:
    /// Returns the queue of the process, borrowed, which the first call makes and which is never released.
    /// Returns null as long as the kernel refuses a queue.
    static ZWKQueue* sharedFileWatcher();
    /// Returns null, after a line in the log, if the kernel refuses a queue. The user's processes can have
    /// some hundred queues together.
    static Retained<ZWKQueue> init(Class* cls = classObject());

    // A path that cannot be watched, because there is no such file or a limit is reached, is passed over; the
    // first time that a queue meets a limit, it logs the limit's name. A symbolic link is followed. Null is
    // passed over, too.

    /// Both watch the file for deletion, writing, changes of attributes and renaming.
    void addPath(NSString* path);
    void addPathToQueue(NSString* path);
    /// Watches the file for the changes (of ZWFileChanges).
    void addPathToQueue_notifyingAbout(NSString* path, std::uint32_t changes);

    /// Both end the first watch of an equal path; they do nothing if there is none.
    void removePath(NSString* path);
    void removePathFromQueue(NSString* path);
    void removeAllPathsFromQueue();

    /// Sets the object that is told of changes, which is not retained. Null, or the end of the delegate, ends
    /// its reports.
    void setDelegate(id delegate);
    id delegate();
    /// Sets whether notifications are posted although there is a delegate; at first they are not.
    void setAlwaysNotify(bool always) { _alwaysNotify = always; }
    bool alwaysNotify() { return _alwaysNotify; }

    /// Returns the queue's descriptor, which belongs to the queue.
    int queueFD();
    /// "ZWKQueue { watchedPaths = (…), alwaysNotify = NO }".
    NSString* description() override;

    /// Reports as if the change of that name had happened at the path: tells the delegate, and posts the
    /// notification if there is no delegate or `alwaysNotify` is set. Returns when that is done. Raises what
    /// the delegate or an observer raises.
    void postNotification_forFile(NSString* name, NSString* path);

    /// What the thread of the queue does until it is told to end; for the queue itself.
    void watcherThread(id unused);
    /// Tells the delegate on the main thread, unless the watch was removed; watch 0 stands for none.
    void _tellDelegate_forPath_ofWatch(NSString* name, NSString* path, std::uint64_t watch);

  protected:
    ZWKQueue() = default;
    ~ZWKQueue();

  private:
    struct Hash {
        std::size_t operator()(NSString* path) const { return path->hash(); }
    };
    struct Equal {
        bool operator()(NSString* a, NSString* b) const { return a->isEqualToString(b); }
    };

    bool passesToThread() noexcept;
    Retained<Object> reference();
    void post(NSString* name, NSString* path, std::uint64_t watch);

    std::shared_ptr<FileEventQueue> _events;
    Retained<ZWMainThreadProxy> _delegateProxy;  // for this object, which tells the delegate
    std::atomic<bool> _hasDelegate{false};
    std::atomic<bool> _alwaysNotify{false};
    std::atomic<bool> _keepThreadRunning{false};
    WeakHandle _self;   // for the thread
    std::mutex _mutex;  // for what follows
    WeakHandle _delegate;
    std::map<std::uint64_t, Retained<NSString>> _watchedPaths;  // by watch, in the order of their adding
    std::unordered_map<NSString*, std::vector<std::uint64_t>, Hash, Equal> _watchedFDs;  // watches by path
};

}  // namespace pelvor
