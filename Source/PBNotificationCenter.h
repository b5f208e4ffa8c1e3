// SPDX-License-Identifier: Apache-2.0
// Notifications that are silenced by name, or wait for an idle moment; an observer of one sender.
#pragma once

#include "Foundation/NSNotificationCenter.h"

namespace pelvor {

struct Category;
class NSArray;

/// Silencing, counted: a name that was disabled twice is heard again after it was enabled twice. The first
/// call makes the default centre a PBNotificationCenter for the rest of the process. Main thread.
struct PELVOR_EXPORT NSNotificationCenter_PelvorAdditions {
    /// Raises NSInvalidArgumentException for no name.
    static void disableNotificationName(NSString* name);
    /// Does nothing for a name that is not disabled.
    static void enableNotificationName(NSString* name);
};

extern const Category NSNotificationCenter_PelvorAdditions_category;

/// What the default centre becomes when a name is first disabled. However it is posted, a notification of a
/// disabled name is dropped; those of "NSFontSetChangedNotification" and
/// "NSAntialiasThresholdChangedNotification" wait for the next idle moment, where each name is posted once,
/// without sender and dictionary, also if it was disabled meanwhile. Main thread.
class PELVOR_EXPORT PBNotificationCenter : public NSNotificationCenter {
    PELVOR_CLASS(PBNotificationCenter, NSNotificationCenter);

  public:
    /// Makes the default centre one of these; once in the process.
    static void doPosing();

  protected:
    PBNotificationCenter() = default;
    ~PBNotificationCenter() = default;
};

/// Watches one sender, and funnels what it posts into one operation. Main thread.
class PELVOR_EXPORT PBNotificationWatcher : public NSObject {
    PELVOR_CLASS(PBNotificationWatcher, NSObject);

  public:
    /// Retains the centre.
    static Retained<PBNotificationWatcher> initWithNotificationCenter(NSNotificationCenter* center,
                                                                      Class* cls = classObject());

    /// Watches the object, or any for none, for the names, or any for no list, in place of what was watched
    /// before. The object is not retained.
    void watchObject_notifications(id object, NSArray* names);
    void watchNone();
    /// Watches nothing from now on. The release that ends a watcher does so too.
    void invalidate();
    /// For subclasses; does nothing.
    virtual void didPostNotification(NSNotification* notification) {}

  protected:
    PBNotificationWatcher() = default;
    ~PBNotificationWatcher() { invalidate(); }

  private:
    Retained<NSNotificationCenter> _center;
};

}  // namespace pelvor
