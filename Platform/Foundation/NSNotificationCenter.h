// SPDX-License-Identifier: Apache-2.0
// NSNotificationCenter: hands notifications to those who asked for them.
#pragma once

#include <memory>

#include "Foundation/NSNotification.h"

namespace pelvor {

class ObserverTable;

/// Delivers each notification, on the posting thread and before the post returns, to the observers that
/// registered for its name and sender, in the order of their registration. An observer that is added
/// during a delivery is not called in it; one that is removed before its turn is not called. Observers may
/// add, remove, post and destroy themselves while they are called. What one raises reaches the poster, and
/// those after it are not called.
///
/// Observers and the senders that they ask for are not retained: both must be removed before they are
/// destroyed. Any thread; no lock is held during the calls, so an observer that another thread removes
/// may be in the middle of one.
///
/// A subclass changes what posting does by methods for `postNotificationName:object:userInfo:` and
/// `postNotification:`; calls from C++ find them, also where an existing centre's class was changed.
class PELVOR_EXPORT NSNotificationCenter : public NSObject {
    PELVOR_CLASS(NSNotificationCenter, NSObject);

  public:
    /// The process's centre.
    static NSNotificationCenter* defaultCenter();
    static Retained<NSNotificationCenter> init(Class* cls = classObject());

    /// Sends `selector` with the notification to the observer for each notification of that name from that
    /// sender; none stands for any. Registering twice means being called twice. Raises
    /// NSInvalidArgumentException for no observer or selector.
    void addObserver_selector_name_object(id observer, SEL selector, NSString* name, id object);
    /// Forgets all that was registered for the observer.
    void removeObserver(id observer);
    /// Forgets what was registered for exactly this name and sender; none stands for any.
    void removeObserver_name_object(id observer, NSString* name, id object);

    /// Raise NSInvalidArgumentException for no notification or name.
    void postNotification(NSNotification* notification);
    void postNotificationName_object(NSString* name, id object);
    void postNotificationName_object_userInfo(NSString* name, id object, NSDictionary* userInfo);

  protected:
    NSNotificationCenter();
    ~NSNotificationCenter();

  private:
    void deliver(NSNotification* notification);
    void deliverName_object(NSString* name, id object);
    void deliverName_object_userInfo(NSString* name, id object, NSDictionary* userInfo);

    std::unique_ptr<ObserverTable> _observers;
};

}  // namespace pelvor
