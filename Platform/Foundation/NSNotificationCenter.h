// SPDX-License-Identifier: Apache-2.0
// NSNotificationCenter: hands notifications to the observers that registered for them.
#pragma once

#include <memory>

#include "Foundation/NSNotification.h"

namespace pelvor {

class ObserverTable;

/// Delivers notifications to the observers that registered for their name and sender:
///
///     auto* centre = NSNotificationCenter::defaultCenter();
///     // void View::pageDidChange(NSNotification* notification), bound as "pageDidChange:"
///     centre->addObserver_selector_name_object(view, "pageDidChange:"_sel, PageDidChangeNotification, page);
///     centre->postNotificationName_object(PageDidChangeNotification, page);
///     centre->removeObserver(view);  // at the latest when the view ends
///
/// A post calls the observers one after the other, in the order of their registration, on the posting thread,
/// and then returns. An observer that is added during a post is not called by it, nor is one that is removed
/// before its turn. While an observer is called, it may add and remove observers, post, and end. An exception
/// of an observer reaches the poster; the observers after it are not called.
///
/// Observers, and the senders that they registered for, are not retained: a registration has to be removed
/// before its observer or its sender ends. Any thread. No lock is held while an observer is called, so an
/// observer that one thread removes may be in the middle of a call on another.
///
/// A subclass changes what posting does by methods for `postNotificationName:object:userInfo:` and
/// `postNotification:`. The C++ operations call these methods as well, also on a centre whose class was
/// changed after its creation.
class PELVOR_EXPORT NSNotificationCenter : public NSObject {
    PELVOR_CLASS(NSNotificationCenter, NSObject);
    PELVOR_CREATORS(init);

  public:
    /// Returns the process's centre, borrowed; it exists as long as the process.
    static NSNotificationCenter* defaultCenter();
    static Retained<NSNotificationCenter> init(Class* cls = classObject());

    /// Registers the observer for the notifications with this name whose sender is `object`. For each of
    /// them, the observer gets the message `selector` with the notification as the argument. A null name
    /// stands for every name, a null `object` for every sender. An observer that registers twice is called
    /// twice. Raises NSInvalidArgumentException if observer or selector is null.
    void addObserver_selector_name_object(id observer, SEL selector, NSString* name, id object);
    /// Removes all registrations of the observer; does nothing if there are none.
    void removeObserver(id observer);
    /// Removes the observer's registrations for this name and the sender `object`. With a null name, the
    /// name of a registration does not matter; with a null `object`, its sender does not.
    void removeObserver_name_object(id observer, NSString* name, id object);

    /// These post a notification; `object` is its sender, and both `object` and `userInfo` may be null. They
    /// raise NSInvalidArgumentException if the notification or the name is null.
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

    struct TableEnding {
        void operator()(ObserverTable* table);
    };
    std::unique_ptr<ObserverTable, TableEnding> _observers;  // outlives the deliveries that read it
};

}  // namespace pelvor
