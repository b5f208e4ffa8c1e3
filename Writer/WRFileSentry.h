// SPDX-License-Identifier: Apache-2.0
// WRFileSentry: tells when another program has saved or removed a file.
#pragma once

#include "Foundation/NSString.h"
#include "Writer/FileIdentity.h"

namespace pelvor {

class PBDelayedActionTimer;
class ZWFNSubscribeFileWatcher;

/// Watches a file and its folder, so that it sees every style of saving: writing into the file, another file
/// that takes the name, deleting and creating, exchanging two names.
///
///     auto sentry = WRFileSentry::initWithPath_target_selector(path, editor, "fileDidChange"_sel);
///     …  // read the file
///     sentry->noteFile();  // after each saving by this program
///
/// The target, which is not retained, gets the message a moment after the last change of a burst, if the file
/// is gone or is another than when it was noted, by its number, size or time. All sentries share the queue of
/// the process. Main thread.
class PELVOR_EXPORT WRFileSentry : public NSObject {
    PELVOR_CLASS(WRFileSentry, NSObject);
    PELVOR_CREATORS(initWithPath_target_selector);

  public:
    /// Notes the file as it is.
    static Retained<WRFileSentry> initWithPath_target_selector(NSString* path, id target, SEL selector,
                                                               Class* cls = classObject());

    /// Takes the file as it is now for known.
    void noteFile();
    /// What was known before the sentry was made. If the file is another, the target hears of it soon.
    void noteIdentity(const FileIdentity& identity);
    /// Whether there was a file when it was noted.
    bool isFileThere() { return _known.isThere(); }
    /// Ends the watching for good.
    void invalidate();

    /// The messages of the watchers and of the timer. One sentry takes those of the shared queue for all.
    void watcher_receivedNotification_forPath(id watcher, NSString* name, NSString* path);
    void changesAreOver(PBDelayedActionTimer* timer);

  protected:
    WRFileSentry() = default;
    ~WRFileSentry();

  private:
    void takeChange();
    void watchAgain();

    Retained<NSString> _path;
    id _target = nullptr;
    SEL _selector;
    Retained<ZWFNSubscribeFileWatcher> _folder;
    Retained<PBDelayedActionTimer> _timer;
    FileIdentity _known;
};

}  // namespace pelvor
