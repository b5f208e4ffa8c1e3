// SPDX-License-Identifier: Apache-2.0
// WRPlugInLoader: loads the plug-ins of a folder, those of each moment when it has come.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSArray;
class NSBundle;
class NSMutableArray;

/// The bundles "*.bundle" of one folder, in the order of their names. A bundle that cannot be loaded is told
/// of in one line of the platform's log, with the bundle, the stage it got to and the reason, and the others
/// are loaded. What is loaded stays. Main thread.
class WRPlugInLoader : public NSObject {
    PELVOR_CLASS(WRPlugInLoader, NSObject);
    PELVOR_CREATORS(initWithFolder);

  public:
    /// Looks the folder through; without a folder there are no plug-ins.
    static Retained<WRPlugInLoader> initWithFolder(NSString* folder, Class* cls = classObject());

    /// Loads the bundles whose information dictionary names the moment, or none for no moment, and that no
    /// earlier call has tried. Code is loaded, its load-time hooks run, and declarations come into the
    /// registry. Answers the loaded bundles. Borrowed.
    NSArray* loadPlugInsForMoment(NSString* moment);

    /// How many of the bundles were tried and could not be loaded.
    NSUInteger failureCount() { return _failureCount; }

    /// The bundle's name for the user: that of its information dictionary, else that of its folder. Borrowed.
    static NSString* nameOfBundle(NSBundle* bundle);

  protected:
    WRPlugInLoader() = default;
    ~WRPlugInLoader();

  private:
    Retained<NSMutableArray> _waiting;
    NSUInteger _failureCount = 0;
};

}  // namespace pelvor
