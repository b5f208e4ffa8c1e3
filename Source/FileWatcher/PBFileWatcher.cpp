// SPDX-License-Identifier: Apache-2.0
#include "FileWatcher/PBFileWatcher.h"

#include "BaseLibrary.h"
#include "Runtime/Message.h"

namespace pelvor {
namespace {

constexpr struct {
    std::uint32_t action;
    NSString* name;
    std::uint32_t change;
} kActions[] = {
    {PBFileWasRenamed, ZWFileWatcherRenameNotification, ZWFileRenamed},
    {PBFileWasWritten, ZWFileWatcherWriteNotification, ZWFileWritten},
    {PBFileWasDeleted, ZWFileWatcherDeleteNotification, ZWFileDeleted},
    {PBFileAttributesWereChanged, ZWFileWatcherAttributeChangeNotification, ZWFileAttributesChanged},
    {PBFileWasExtended, ZWFileWatcherSizeIncreaseNotification, ZWFileExtended},
    {PBFileLinkCountWasChanged, ZWFileWatcherLinkCountChangeNotification, ZWFileLinkCountChanged},
    {PBFileWasRevoked, ZWFileWatcherAccessRevocationNotification, ZWFileRevoked},
};

}  // namespace

PELVOR_DEFINE_CLASS(PBFileWatcher, baseLibrary) {
    methods.creator<"init", &PBFileWatcher::init>();
    methods.instance<"setDelegate:", &PBFileWatcher::setDelegate>();
    methods.instance<"delegate", &PBFileWatcher::delegate>();
    methods.instance<"addFileAtPath:actions:", &PBFileWatcher::addFileAtPath_actions>();
    methods.instance<"removeFileAtPath:", &PBFileWatcher::removeFileAtPath>();
    methods.instance<"invalidate", &PBFileWatcher::invalidate>();
    methods.instance<"watcher:receivedNotification:forPath:",
                     &PBFileWatcher::watcher_receivedNotification_forPath>();
}

Retained<PBFileWatcher> PBFileWatcher::init(Class* cls) {
    auto self = make<PBFileWatcher>(cls);
    self->_queue = ZWKQueue::init();
    if (self->_queue) self->_queue->setDelegate(self);
    return self;
}

void PBFileWatcher::addFileAtPath_actions(NSString* path, std::uint32_t actions) {
    if (!_queue) return;
    std::uint32_t changes = 0;
    for (const auto& [action, name, change] : kActions)
        if (actions & action) changes |= change;
    _queue->addPathToQueue_notifyingAbout(path, changes);
}

void PBFileWatcher::removeFileAtPath(NSString* path) {
    if (_queue) _queue->removePathFromQueue(path);
}

void PBFileWatcher::invalidate() {
    _del = WeakHandle();
    if (!_queue) return;
    _queue->setDelegate(nullptr);
    _queue->removeAllPathsFromQueue();
    _queue = nullptr;
}

void PBFileWatcher::watcher_receivedNotification_forPath(id, NSString* name, NSString* path) {
    auto delegate = _del.object();
    if (!delegate || !name) return;
    for (const auto& [action, known, change] : kActions)
        if (known->isEqualToString(name))
            send(delegate, "fileWatcher:notedAction:forFileAtPath:"_sel, this, action, path);
}

}  // namespace pelvor
