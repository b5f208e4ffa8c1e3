// SPDX-License-Identifier: Apache-2.0
#include "FileWatcher/Private/ZWFolderEvents.h"

#include "BaseLibrary.h"
#include "FileWatcher/ZWFNSubscribeFileWatcher.h"
#include "Foundation/NSRunLoop.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(ZWFolderEvents, baseLibrary) {
    methods.instance<"serveDescriptor:", &ZWFolderEvents::serveDescriptor>();
}

Retained<ZWFolderEvents> ZWFolderEvents::startFor(ZWFNSubscribeFileWatcher* watcher) {
    auto self = make<ZWFolderEvents>();
    self->_queue = FileEventQueue::open();
    if (!self->_queue) return nullptr;
    self->_watcher = watcher;
    NSRunLoop::currentRunLoop()->addDescriptor_events_target_selector_forMode(
        self->_queue->descriptor(), NSDescriptorReadable, self, "serveDescriptor:"_sel, NSRunLoopCommonModes);
    return self;
}

void ZWFolderEvents::end() {
    _watcher = nullptr;
    NSRunLoop::currentRunLoop()->removeDescriptor_forMode(_queue->descriptor(), NSRunLoopCommonModes);
    _queue->close();
}

// A callee may end the watcher, and with it the queue.
void ZWFolderEvents::serveDescriptor(int) {
    auto self = Retained<ZWFolderEvents>::retaining(this);
    for (FileEventQueue::Event event; _watcher && _queue->next(event);) {
        auto watcher = Retained<ZWFNSubscribeFileWatcher>::retaining(_watcher);
        ZWFileSubscriptionProc(ZWFolderWasModified, watcher, event.watch);
    }
}

}  // namespace pelvor
