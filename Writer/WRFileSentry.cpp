// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRFileSentry.h"

#include "FileWatcher/ZWFNSubscribeFileWatcher.h"
#include "FileWatcher/ZWKQueue.h"
#include "PBDelayedActionTimer.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"
#include "Writer/WriterLibrary.h"

namespace pelvor {
namespace {

constexpr double kMoment = 0.2;
constexpr std::uint32_t kChanges = ZWFileWritten | ZWFileRenamed | ZWFileDeleted;

// All zeros where there is no file.
struct stat stateOf(NSString* path) {
    AutoreleasePool pool;
    struct stat state {};
    if (stat(path->fileSystemRepresentation(), &state) != 0) state = {};
    return state;
}

bool isSame(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
           a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

}  // namespace

PELVOR_DEFINE_CLASS(WRFileSentry, writerLibrary) {
    methods.creator<"initWithPath:target:selector:", &WRFileSentry::initWithPath_target_selector>();
    methods.instance<"noteFile", &WRFileSentry::noteFile>();
    methods.instance<"isFileThere", &WRFileSentry::isFileThere>();
    methods.instance<"invalidate", &WRFileSentry::invalidate>();
    methods.instance<"watcher:receivedNotification:forPath:",
                     &WRFileSentry::watcher_receivedNotification_forPath>();
    methods.instance<"changesAreOver:", &WRFileSentry::changesAreOver>();
}

WRFileSentry::~WRFileSentry() { invalidate(); }

Retained<WRFileSentry> WRFileSentry::initWithPath_target_selector(NSString* path, id target, SEL selector,
                                                                  Class* cls) {
    auto self = make<WRFileSentry>(cls);
    self->_path = path->copy();
    self->_target = target;
    self->_selector = selector;
    self->_timer = PBDelayedActionTimer::initWithTimeInterval_fromFirst_target_selector(
        kMoment, false, self, "changesAreOver:"_sel);
    self->noteFile();
    if (auto* queue = ZWKQueue::sharedFileWatcher()) queue->setDelegate(self);
    self->_folder = ZWFNSubscribeFileWatcher::init();
    self->_folder->setDelegate(self);
    NSString* folder = path->stringByDeletingLastPathComponent();
    self->_folder->addPath(folder->length() ? folder : u"."_ns);
    self->watchAgain();
    return self;
}

void WRFileSentry::noteFile() { _known = stateOf(_path); }

void WRFileSentry::invalidate() {
    auto timer = std::move(_timer);
    if (!timer) return;
    timer->invalidate();
    _folder = nullptr;
    auto* queue = ZWKQueue::sharedFileWatcher();
    if (!queue) return;
    queue->removePath(_path);
    queue->setDelegate(nullptr);
}

// The name may belong to another file now.
void WRFileSentry::watchAgain() {
    auto* queue = ZWKQueue::sharedFileWatcher();
    if (!queue) return;
    queue->removePath(_path);
    queue->addPathToQueue_notifyingAbout(_path, kChanges);
}

// The file was changed, or something in the folder has another name, perhaps the file.
void WRFileSentry::watcher_receivedNotification_forPath(id, NSString*, NSString*) {
    if (!_timer) return;
    watchAgain();
    _timer->schedule();
}

void WRFileSentry::changesAreOver(PBDelayedActionTimer*) {
    const struct stat state = stateOf(_path);
    if (!isSame(state, _known)) send(_target, _selector);
}

}  // namespace pelvor
