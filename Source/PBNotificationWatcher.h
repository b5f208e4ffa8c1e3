// SPDX-License-Identifier: Apache-2.0
// PBNotificationWatcher: an observer of one sender.
#pragma once

#include "Foundation/NSNotificationCenter.h"

namespace pelvor {

class NSArray;

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
    /// Makes a watcher that watches nothing yet. The watcher retains the centre.
    static Retained<PBNotificationWatcher> initWithNotificationCenter(NSNotificationCenter* center,
                                                                      Class* cls = classObject());

    /// Watches the object for notifications with these names, and ends what the watcher watched before. A
    /// null object stands for any sender, a null list for all names. The object is not retained.
    void watchObject_notifications(id object, NSArray* names);
    /// Ends the watch.
    void watchNone();
    /// Ends the watch for good, and releases the centre.
    void invalidate();
    /// Called with each notification that the watcher watches for. This class does nothing; subclasses
    /// override the operation.
    virtual void didPostNotification(NSNotification* notification) {}

  protected:
    PBNotificationWatcher() = default;
    ~PBNotificationWatcher() { invalidate(); }

  private:
    Retained<NSNotificationCenter> _center;
};

}  // namespace pelvor
