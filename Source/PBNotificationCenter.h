// SPDX-License-Identifier: Apache-2.0
// PBNotificationCenter: notifications that are silenced by name or wait for an idle moment.
// PBNotificationWatcher: an observer of one sender.
#pragma once

#include "Foundation/NSNotificationCenter.h"

namespace pelvor {

struct Category;
class NSArray;

/// Class operations that silence the default notification centre by name, for bulk changes:
///
///     using Centre = NSNotificationCenter_PelvorAdditions;
///     Centre::disableNotificationName(PageDidChangeNotification);
///     …  // nobody hears of these changes
///     Centre::enableNotificationName(PageDidChangeNotification);
///
/// Calls are counted: a name that was disabled twice is heard again after it was enabled twice. The first
/// call of `disableNotificationName` makes the default centre a PBNotificationCenter for the rest of the
/// process. Main thread.
struct PELVOR_EXPORT NSNotificationCenter_PelvorAdditions {
    /// Raises NSInvalidArgumentException if the name is null.
    static void disableNotificationName(NSString* name);
    /// Does nothing for a name that is not disabled, or null.
    static void enableNotificationName(NSString* name);
};

extern const Category NSNotificationCenter_PelvorAdditions_category;

/// The class that the default centre takes on when a name is first disabled. It drops notifications of
/// disabled names, in whatever way they are posted. Of two noisy names, "NSFontSetChangedNotification" and
/// "NSAntialiasThresholdChangedNotification", it holds notifications back until the next idle moment, and
/// then posts each name once, without sender and dictionary, even if the name was disabled meanwhile. Main
/// thread.
class PELVOR_EXPORT PBNotificationCenter : public NSNotificationCenter {
    PELVOR_CLASS(PBNotificationCenter, NSNotificationCenter);
    PELVOR_INHERITED_CREATORS(init);

  public:
    /// Gives the default centre this class. Only the first call in the process does something.
    static void doPosing();

  protected:
    PBNotificationCenter() = default;
    ~PBNotificationCenter() = default;
};

/// An observer that watches one sender for a list of names. A subclass overrides `didPostNotification`:
///
///     auto watcher = PBNotificationWatcher::initWithNotificationCenter(centre, RulerWatcher::classObject());
///     watcher->watchObject_notifications(textView, NSArray::of({SelectionDidChangeNotification}));
///
/// Main thread.
class PELVOR_EXPORT PBNotificationWatcher : public NSObject {
    PELVOR_CLASS(PBNotificationWatcher, NSObject);
    PELVOR_CREATORS(initWithNotificationCenter);

  public:
    /// Makes a watcher that watches nothing yet. It retains the centre.
    static Retained<PBNotificationWatcher> initWithNotificationCenter(NSNotificationCenter* center,
                                                                      Class* cls = classObject());

    /// Watches the object for the names, instead of what was watched before. A null object stands for any
    /// sender, a null list for all names. The object is not retained.
    void watchObject_notifications(id object, NSArray* names);
    /// Watches nothing.
    void watchNone();
    /// Watches nothing for good, and releases the centre.
    void invalidate();
    /// Called with each notification that is watched for. Does nothing; subclasses override it.
    virtual void didPostNotification(NSNotification* notification) {}

  protected:
    PBNotificationWatcher() = default;
    ~PBNotificationWatcher() { invalidate(); }

  private:
    Retained<NSNotificationCenter> _center;
};

}  // namespace pelvor
