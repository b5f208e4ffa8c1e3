// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRFileSentry.h"

#include <vector>

#include "FileWatcher/ZWFNSubscribeFileWatcher.h"
#include "FileWatcher/ZWKQueue.h"
#include "PBDelayedActionTimer.h"
#include "Runtime/Message.h"
#include "Writer/WriterLibrary.h"

namespace pelvor {
namespace {

constexpr double kMoment = 0.2;
constexpr std::uint32_t kChanges = ZWFileWritten | ZWFileRenamed | ZWFileDeleted;

// Those that watch. The first one is the delegate of the shared queue.
std::vector<WRFileSentry*> sentries;

void setDelegateOfQueue() {
    if (auto* queue = ZWKQueue::sharedFileWatcher())
        queue->setDelegate(sentries.empty() ? nullptr : sentries.front());
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
    sentries.push_back(self);
    setDelegateOfQueue();
    self->_folder = ZWFNSubscribeFileWatcher::init();
    self->_folder->setDelegate(self);
    NSString* folder = path->stringByDeletingLastPathComponent();
    self->_folder->addPath(folder->length() ? folder : u"."_ns);
    self->watchAgain();
    return self;
}

void WRFileSentry::noteFile() { _known = FileIdentity::ofFile(_path); }

void WRFileSentry::noteIdentity(const FileIdentity& identity) {
    _known = identity;
    if (_timer && FileIdentity::ofFile(_path) != _known) _timer->schedule();
}

void WRFileSentry::invalidate() {
    auto timer = std::move(_timer);
    if (!timer) return;
    timer->invalidate();
    _folder = nullptr;
    if (auto* queue = ZWKQueue::sharedFileWatcher()) queue->removePath(_path);
    std::erase(sentries, this);
    setDelegateOfQueue();
}

// The name may belong to another file now.
void WRFileSentry::watchAgain() {
    auto* queue = ZWKQueue::sharedFileWatcher();
    if (!queue) return;
    queue->removePath(_path);
    queue->addPathToQueue_notifyingAbout(_path, kChanges);
}

// The file was changed, or something in the folder has another name, perhaps the file.
void WRFileSentry::watcher_receivedNotification_forPath(id watcher, NSString*, NSString* path) {
    if (watcher == _folder) return takeChange();
    for (WRFileSentry* sentry : sentries)
        if (sentry->_path->isEqualToString(path)) sentry->takeChange();
}

void WRFileSentry::takeChange() {
    if (!_timer) return;
    watchAgain();
    _timer->schedule();
}

void WRFileSentry::changesAreOver(PBDelayedActionTimer*) {
    if (FileIdentity::ofFile(_path) != _known) send(_target, _selector);
}

}  // namespace pelvor
