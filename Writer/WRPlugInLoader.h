// SPDX-License-Identifier: Apache-2.0
// WRPlugInLoader: loads the plug-ins of a folder, each at the moment that it names.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSArray;
class NSBundle;
class NSMutableArray;
class NSMutableSet;

/// The bundles "*.bundle" of one folder, in the order of their names. For a bundle that cannot be loaded,
/// the platform's log gets one line with the bundle, the stage of loading and the reason, and the other
/// bundles are loaded. No bundle is ever unloaded. Main thread.
class PELVOR_EXPORT WRPlugInLoader : public NSObject {
    PELVOR_CLASS(WRPlugInLoader, NSObject);
    PELVOR_CREATORS(initWithFolder);

  public:
    /// Looks the folder through; without a folder there are no plug-ins.
    static Retained<WRPlugInLoader> initWithFolder(NSString* folder, Class* cls = classObject());

    /// Loads the bundles whose information dictionary names the moment, or, if that is null, names no moment;
    /// each bundle is tried once. Its code is loaded, its load-time hooks run, and its declarations come into
    /// the registry. Returns the bundles that were loaded. Borrowed.
    NSArray* loadPlugInsForMoment(NSString* moment);

    /// Has the registry read the declarations of the bundles whose information dictionary names the moment;
    /// their code is loaded when the class of a profile is first asked for.
    void declarePlugInsForMoment(NSString* moment);

    /// Looks the folder through again for bundles that were not there before.
    void lookAgain();

    /// How many of the bundles were tried and could not be loaded.
    NSUInteger failureCount() { return _failureCount; }

    /// The bundle's name for the user: the name in its information dictionary, else the name of its folder.
    /// Borrowed.
    static NSString* nameOfBundle(NSBundle* bundle);

  protected:
    WRPlugInLoader() = default;
    ~WRPlugInLoader();

  private:
    Retained<NSString> _folder;
    Retained<NSMutableSet> _known;  // paths of bundles
    Retained<NSMutableArray> _waiting;
    NSUInteger _failureCount = 0;
};

}  // namespace pelvor
