// SPDX-License-Identifier: Apache-2.0
// WRRecentDocuments: the files that were open last, as a menu.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSMenu;
class NSNotification;

/// The files that were opened or saved last, the latest first, kept in the user defaults
/// (Preferences.h). It is the delegate of a menu, whose items send "openRecentDocument:" to whoever takes it;
/// each represents a path. Files that are no longer there are left out. Main thread.
class WRRecentDocuments : public NSObject {
    PELVOR_CLASS(WRRecentDocuments, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<WRRecentDocuments> init(Class* cls = classObject());

    /// The path goes to the front.
    void addPath(NSString* path);
    /// Those that are there. Borrowed.
    NSArray* paths();
    void removeAllPaths();
    /// Forgets the paths that are more than the user wants to have kept.
    void defaultsDidChange(NSNotification* notification);
    /// The message of a menu to its delegate.
    void menuNeedsUpdate(NSMenu* menu);

  protected:
    WRRecentDocuments() = default;
    ~WRRecentDocuments();
};

}  // namespace pelvor
