// SPDX-License-Identifier: Apache-2.0
#include "FileWatcher/ZWKQueue.h"

#include <csignal>
#include <thread>

#include "BaseLibrary.h"
#include "FileWatcher/Private/FileEventQueue.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSThread.h"
#include "Foundation/NSWorkspace.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

constexpr std::uint32_t kUsualChanges =
    ZWFileDeleted | ZWFileWritten | ZWFileAttributesChanged | ZWFileRenamed;

// In the order of the reports.
constexpr struct {
    std::uint32_t change;
    NSString* name;
} kReports[] = {
    {ZWFileRenamed, ZWFileWatcherRenameNotification},
    {ZWFileWritten, ZWFileWatcherWriteNotification},
    {ZWFileDeleted, ZWFileWatcherDeleteNotification},
    {ZWFileAttributesChanged, ZWFileWatcherAttributeChangeNotification},
    {ZWFileExtended, ZWFileWatcherSizeIncreaseNotification},
    {ZWFileLinkCountChanged, ZWFileWatcherLinkCountChangeNotification},
    {ZWFileRevoked, ZWFileWatcherAccessRevocationNotification},
};

// A thread that is started meanwhile takes no signals but those of its own faults: a host handles signals on
// its own threads.
class SignalsBlocked {
  public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        for (int fault : {SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGSEGV, SIGTRAP}) sigdelset(&all, fault);
        pthread_sigmask(SIG_BLOCK, &all, &_old);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &_old, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;

  private:
    sigset_t _old;
};

}  // namespace

PELVOR_DEFINE_CLASS(ZWKQueue, baseLibrary) {
    methods.classLevel<"sharedFileWatcher", &ZWKQueue::sharedFileWatcher>();
    methods.creator<"init", &ZWKQueue::init>();
    methods.instance<"addPath:", &ZWKQueue::addPath>();
    methods.instance<"addPathToQueue:", &ZWKQueue::addPathToQueue>();
    methods.instance<"addPathToQueue:notifyingAbout:", &ZWKQueue::addPathToQueue_notifyingAbout>();
    methods.instance<"removePath:", &ZWKQueue::removePath>();
    methods.instance<"removePathFromQueue:", &ZWKQueue::removePathFromQueue>();
    methods.instance<"removeAllPathsFromQueue", &ZWKQueue::removeAllPathsFromQueue>();
    methods.instance<"setDelegate:", &ZWKQueue::setDelegate>();
    methods.instance<"delegate", &ZWKQueue::delegate>();
    methods.instance<"setAlwaysNotify:", &ZWKQueue::setAlwaysNotify>();
    methods.instance<"alwaysNotify", &ZWKQueue::alwaysNotify>();
    methods.instance<"queueFD", &ZWKQueue::queueFD>();
    methods.instance<"postNotification:forFile:", &ZWKQueue::postNotification_forFile>();
    methods.instance<"watcherThread:", &ZWKQueue::watcherThread>();
    methods.instance<"_tellDelegate:forPath:ofWatch:", &ZWKQueue::_tellDelegate_forPath_ofWatch>();
}

// MARK: Life and death

ZWKQueue* ZWKQueue::sharedFileWatcher() {
    static std::mutex mutex;
    static ZWKQueue* shared = nullptr;
    std::lock_guard lock(mutex);
    if (!shared) shared = ZWKQueue::init().leak();
    return shared;
}

Retained<ZWKQueue> ZWKQueue::init(Class* cls) {
    auto self = make<ZWKQueue>(cls);
    self->_events = FileEventQueue::open();
    if (!self->_events) return nullptr;
    self->_delegateProxy = copyMainThreadProxy(self);
    self->_self = WeakHandle(self);
    self->_keepThreadRunning = true;
    SignalsBlocked blocked;
    NSThread::detach([queue = self.get()] {
        send(queue, "watcherThread:"_sel, nullptr);
        queue->release();  // what the last owner left
    });
    return self;
}

ZWKQueue::~ZWKQueue() {
    if (!_events) return;
    if (int error = _events->removeAll()) NSLog(u"dealloc: Couldn't close file descriptor (%d)"_ns, error);
}

template <>
void Instances::destroy<ZWKQueue>(ZWKQueue* queue) noexcept {
    if (queue->passesToThread()) return;
    queue->~ZWKQueue();
    deallocate<ZWKQueue>(queue);
}

// The text marks the beginning of the thread's end, whatever it says. As soon as the thread is told, it may
// end this object.
bool ZWKQueue::passesToThread() noexcept {
    if (!_keepThreadRunning) return false;
    const auto events = _events;
    logText("*** ZWKQueue thread termination disabled!");
    _keepThreadRunning = false;
    if (!events->hasWatches()) events->wake();
    return true;
}

// The thread needs a reference while it reports. It has none of its own until the last owner leaves one,
// which has happened when the thread is told to end.
Retained<Object> ZWKQueue::reference() {
    auto reference = _self.object();
    while (!reference && _keepThreadRunning) std::this_thread::yield();
    return reference;
}

// MARK: Paths

void ZWKQueue::addPath(NSString* path) { addPathToQueue_notifyingAbout(path, kUsualChanges); }
void ZWKQueue::addPathToQueue(NSString* path) { addPath(path); }

void ZWKQueue::addPathToQueue_notifyingAbout(NSString* path, std::uint32_t changes) {
    if (!path) return;
    AutoreleasePool pool;
    auto own = path->copy();
    std::lock_guard lock(_mutex);
    const auto watch = _events->add(own, changes);
    if (!watch) return;
    _watchedFDs[own].push_back(watch);
    _watchedPaths.emplace(watch, std::move(own));
}

void ZWKQueue::removePath(NSString* path) { removePathFromQueue(path); }

// The key of a path is the path of its first watch.
void ZWKQueue::removePathFromQueue(NSString* path) {
    if (!path) return;
    std::lock_guard lock(_mutex);
    auto found = _watchedFDs.extract(path);
    if (found.empty()) return;
    auto& watches = found.mapped();
    const auto watch = watches.front();
    watches.erase(watches.begin());
    if (!watches.empty()) {
        found.key() = _watchedPaths[watches.front()];
        _watchedFDs.insert(std::move(found));
    }
    _watchedPaths.erase(watch);
    if (int error = _events->remove(watch))
        NSLog(u"removePathFromQueue: Couldn't close file descriptor (%d)"_ns, error);
}

void ZWKQueue::removeAllPathsFromQueue() {
    std::lock_guard lock(_mutex);
    _watchedFDs.clear();
    _watchedPaths.clear();
    _events->removeAll();
}

// MARK: The delegate

void ZWKQueue::setDelegate(id delegate) {
    std::lock_guard lock(_mutex);
    _delegate = WeakHandle(delegate);
    _hasDelegate = delegate != nullptr;
}

id ZWKQueue::delegate() {
    std::unique_lock lock(_mutex);
    auto delegate = _delegate.object();
    lock.unlock();
    return std::move(delegate).autorelease();
}

int ZWKQueue::queueFD() { return _events->descriptor(); }

NSString* ZWKQueue::description() {
    auto* paths = NSMutableArray::array();
    {
        std::lock_guard lock(_mutex);
        for (const auto& [watch, path] : _watchedPaths) paths->addObject(path);
    }
    return NSString::stringWithFormat(u"%@ { watchedPaths = %@, alwaysNotify = %@ }"_ns, class_(), paths,
                                      _alwaysNotify ? u"YES"_ns : u"NO"_ns);
}

// MARK: Reports

void ZWKQueue::watcherThread(id) {
    NSThread::currentThread()->setName(u"file watcher"_ns);
    while (_keepThreadRunning) {
        AutoreleasePool pool;
        try {
            const FileEventQueue::Event event = _events->wait();
            const auto self = reference();
            if (event.changes) NSWorkspace::sharedWorkspace()->noteFileSystemChanged(event.path);
            for (const auto& [change, name] : kReports)
                if (event.changes & change) post(name, event.path, event.watch);
        } catch (...) {
            NSLog(u"Error in ZWKQueue watcherThread: %@"_ns, currentExceptionReason());
        }
    }
    if (int error = _events->close()) NSLog(u"release: Couldn't close main kqueue (%d)"_ns, error);
}

void ZWKQueue::postNotification_forFile(NSString* name, NSString* path) {
    requireArgument(name, "postNotification:forFile:", "the name");
    requireArgument(path, "postNotification:forFile:", "the path");
    post(name, path, 0);
}

void ZWKQueue::post(NSString* name, NSString* path, std::uint64_t watch) {
    if (_hasDelegate) {
        send(_delegateProxy, "_tellDelegate:forPath:ofWatch:"_sel, name, path, watch);
        if (!_alwaysNotify) return;
    }
    if (watch && !_events->isWatched(watch)) return;
    NSWorkspace::sharedWorkspace()->notificationCenter()->postNotificationName_object_userInfo(
        name, this, NSDictionary::dictionaryWithObject_forKey(path, u"path"_ns));
}

void ZWKQueue::_tellDelegate_forPath_ofWatch(NSString* name, NSString* path, std::uint64_t watch) {
    if (watch && !_events->isWatched(watch)) return;
    std::unique_lock lock(_mutex);
    const auto delegate = _delegate.object();
    lock.unlock();
    if (delegate) send(delegate, "watcher:receivedNotification:forPath:"_sel, this, name, path);
}

}  // namespace pelvor
