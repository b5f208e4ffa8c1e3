// SPDX-License-Identifier: Apache-2.0
// ZWFNSubscribeFileWatcher: tells that folders have changed.
#pragma once

#include <cstdint>

#include "Foundation/NSString.h"
#include "Runtime/WeakHandle.h"

namespace pelvor {

class NSMutableDictionary;
class ZWFNSubscribeFileWatcher;
class ZWFolderEvents;

/// Names a subscription of a folder watcher.
using ZWFolderSubscription = std::uint64_t;

/// The message of a subscription.
inline constexpr std::uint32_t ZWFolderWasModified = 1;

/// Gets the messages of the subscriptions: has the watcher report that the folder was modified, and logs
/// any other message. Does nothing if the watcher is null.
PELVOR_EXPORT void ZWFileSubscriptionProc(std::uint32_t message, ZWFNSubscribeFileWatcher* watcher,
                                          ZWFolderSubscription subscription);

/// Watches folders, and reports that something in them was written:
///
///     auto watcher = ZWFNSubscribeFileWatcher::init();
///     watcher->setDelegate(browser);
///     watcher->addPath(folder);
///
/// The delegate has the method
///
///     (void)watcher:(ZWFNSubscribeFileWatcher*) receivedNotification:(NSString*) forPath:(NSString*)
///
/// whose notification is always ZWFileWatcherWriteNotification, and whose path is the folder as it was added.
/// A folder is modified when something in it is made, removed, or given another name; modifications before
/// the report are one report. Each report is a notification (see ZWKQueue.h) on the workspace's centre,
/// followed by the call of the delegate, both from the run loop of the thread that made the watcher, in the
/// common modes; their exceptions leave the operation that runs that loop. For the thread that made the
/// watcher.
class PELVOR_EXPORT ZWFNSubscribeFileWatcher : public NSObject {
    PELVOR_CLASS(ZWFNSubscribeFileWatcher, NSObject);
    PELVOR_CREATORS(init);

  public:
    /// Returns the watcher of the process, borrowed, which the first call makes and which is never released.
    /// Main thread.
    static ZWFNSubscribeFileWatcher* sharedFileWatcher();
    static Retained<ZWFNSubscribeFileWatcher> init(Class* cls = classObject());

    /// Sets the object that is told of changes, which is not retained. Null, or the end of the delegate, ends
    /// its reports.
    void setDelegate(id delegate) { _delegate = WeakHandle(delegate); }
    id delegate() { return _delegate.object().autorelease(); }

    /// Subscribes to the changes of the folder; a symbolic link is followed. For what is no folder and for
    /// what the system refuses, logs the number of the system's error. A path that was subscribed to is
    /// subscribed to anew. Null is passed over.
    void addPath(NSString* path);
    /// Ends the subscription; does nothing if there is none.
    void removePath(NSString* path);

    /// Reports for the path of the subscription; does nothing if the watcher has no such subscription.
    void sendDelegateMessage_forSubscription(std::uint32_t message, ZWFolderSubscription subscription);

  protected:
    ZWFNSubscribeFileWatcher();
    ~ZWFNSubscribeFileWatcher();

  private:
    Retained<ZWFolderEvents> _events;  // null until the first subscription
    WeakHandle _delegate;
    Retained<NSMutableDictionary> _subscriptions;  // numbers by path
};

}  // namespace pelvor
