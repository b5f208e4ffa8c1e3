// SPDX-License-Identifier: Apache-2.0
// NSWorkspace: the surroundings of the program.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSNotificationCenter;

/// The surroundings of the program: files that others change, and other programs. What happens there is
/// posted on the workspace's own notification centre, not on the default one:
///
///     NSNotificationCenter* centre = NSWorkspace::sharedWorkspace()->notificationCenter();
///     centre->addObserver_selector_name_object(view, "fileDidChange:"_sel, name, nullptr);
///
/// Any thread.
class PELVOR_EXPORT NSWorkspace : public NSObject {
    PELVOR_CLASS(NSWorkspace, NSObject);

  public:
    /// Returns the workspace of the process, borrowed; it exists as long as the process.
    static NSWorkspace* sharedWorkspace();

    /// Returns the centre, borrowed; it exists as long as the process. A notification is posted on the thread
    /// that learns of the event, which need not be the main thread.
    NSNotificationCenter* notificationCenter() { return _centre; }
    /// Opens the file or folder with the program that the user has chosen for its kind. Returns whether that
    /// was begun: false if nothing has the path, or if the system has no `xdg-open`, which finds the program.
    /// What becomes of it nobody waits for. Raises NSInvalidArgumentException for null.
    bool openFile(NSString* path);
    /// Says that files at the path have changed. Nobody needs to be told on this system, where the kernel
    /// informs file managers, so that the operation does nothing.
    void noteFileSystemChanged(NSString* path);

  protected:
    NSWorkspace();
    ~NSWorkspace();

  private:
    Retained<NSNotificationCenter> _centre;
};

}  // namespace pelvor
