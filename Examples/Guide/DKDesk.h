// SPDX-License-Identifier: Apache-2.0
// DKDesk: the application object.
#pragma once

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSString.h"
#include "PBIdleQueue.h"

namespace desk {

using namespace pelvor;

/// Loads the plug-ins, reads a file, and gives each service its turn when the program has nothing else to do.
/// Main thread.
class DKDesk : public NSObject {
    PELVOR_CLASS(DKDesk, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<DKDesk> init(Class* cls = classObject());

    /// Loads the bundles in the folder PlugIns of the program. A bundle that cannot be loaded leaves a line
    /// in the log.
    void loadPlugIns();
    /// The services and units that there are, in the user's language; borrowed.
    NSString* menu();
    /// Has the file read on another thread. The services look at its text as soon as it is there.
    void openFile(NSString* path);
    /// Lets every service look at the text.
    void examineText(NSString* text);
    /// Runs until nothing is left to do.
    void run();
    /// What the services found, a line each; borrowed.
    NSString* report();
    bool hasFailed();

  protected:
    DKDesk() = default;
    ~DKDesk() = default;

  private:
    void finishReading(NSString* text, NSString* path);
    bool hasWork();

    Retained<NSMutableArray> _tasks;
    Retained<PBIdleQueue> _waiting;  // of tasks; it does not retain them
    Retained<NSString> _failure;
    bool _isReading = false;
};

}  // namespace desk
