// SPDX-License-Identifier: Apache-2.0
// PBFileWatcher: tells on the main thread what happens to files.
#pragma once

#include "FileWatcher/ZWKQueue.h"

namespace pelvor {

/// What may happen to a file; values may be combined.
enum PBFileActions : std::uint32_t {
    PBFileWasRenamed = 1,
    PBFileWasWritten = 2,
    PBFileWasDeleted = 4,
    PBFileAttributesWereChanged = 8,
    PBFileWasExtended = 16,
    PBFileLinkCountWasChanged = 32,
    PBFileWasRevoked = 64,
};

/// Watches files with a queue of its own, and tells its delegate on the main thread:
///
///     Retained<PBFileWatcher> watcher = PBFileWatcher::init();
///     watcher->setDelegate(document);
///     watcher->addFileAtPath_actions(path, PBFileWasWritten | PBFileWasRenamed | PBFileWasDeleted);
///
/// The delegate has the method
///
///     (void)fileWatcher:(PBFileWatcher*) notedAction:(std::uint32_t) forFileAtPath:(NSString*)
///
/// that gets one action of PBFileActions and the path as it was added. An event with several actions gives a
/// call for each, in the order of ZWKQueue's notifications. The
/// delegate may remove paths, and end itself and the watcher, while it is called. What holds for the watches
/// of a ZWKQueue holds for these. Main thread.
class PELVOR_EXPORT PBFileWatcher : public NSObject {
    PELVOR_CLASS(PBFileWatcher, NSObject);
    PELVOR_CREATORS(init);

  public:
    /// Returns a watcher of no files. Its operations do nothing if the kernel refuses a queue, which is
    /// logged.
    static Retained<PBFileWatcher> init(Class* cls = classObject());

    /// Sets the object that is told, which is not retained. Null, or the end of the delegate, ends the calls.
    void setDelegate(id delegate) { _del = WeakHandle(delegate); }
    id delegate() { return _del.object().autorelease(); }

    /// Watches the file for the actions (of PBFileActions); other bits are passed over. A path that cannot be
    /// watched is passed over.
    void addFileAtPath_actions(NSString* path, std::uint32_t actions);
    /// Ends the first watch of an equal path; does nothing if there is none.
    void removeFileAtPath(NSString* path);

    /// Ends all watches, for good. The delegate is not called any more.
    void invalidate();

    /// Called by the queue. A name that is none of the queue's is passed over.
    void watcher_receivedNotification_forPath(id queue, NSString* name, NSString* path);

  protected:
    PBFileWatcher() = default;
    ~PBFileWatcher() { invalidate(); }

  private:
    Retained<ZWKQueue> _queue;
    WeakHandle _del;
};

}  // namespace pelvor
