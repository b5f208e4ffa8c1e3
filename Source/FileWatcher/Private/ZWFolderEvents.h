// SPDX-License-Identifier: Apache-2.0
// ZWFolderEvents: what a run loop holds for a folder watcher; for the watcher's own source.
#pragma once

#include <memory>

#include "FileWatcher/Private/FileEventQueue.h"

namespace pelvor {

class ZWFNSubscribeFileWatcher;

/// Takes the events of a folder watcher's queue when the run loop of its thread finds the queue readable. The
/// loop retains this object and not the watcher, which can therefore end.
class ZWFolderEvents : public NSObject {
    PELVOR_CLASS(ZWFolderEvents, NSObject);

  public:
    // C++ only
    /// Returns null if the kernel refuses a queue. The watcher ends this object when it ends itself.
    static Retained<ZWFolderEvents> startFor(ZWFNSubscribeFileWatcher* watcher);
    void end();
    FileEventQueue& queue() { return *_queue; }

    /// Called by the run loop.
    void serveDescriptor(int descriptor);

  protected:
    ZWFolderEvents() = default;
    ~ZWFolderEvents() = default;

  private:
    std::shared_ptr<FileEventQueue> _queue;
    Unretained<ZWFNSubscribeFileWatcher> _watcher = nullptr;
};

}  // namespace pelvor
