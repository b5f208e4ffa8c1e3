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
/// Observers, and the senders that they ask for, are not retained: they have to be removed before they end.
/// Any thread. No lock is held while an observer is called, so an observer that one thread removes may be in
/// the middle of a call on another.
///
/// A subclass changes what posting does by methods for `postNotificationName:object:userInfo:` and
/// `postNotification:`, which calls from C++ find too, even after the class of an existing centre was
/// changed.
class PELVOR_EXPORT NSNotificationCenter : public NSObject {
    PELVOR_CLASS(NSNotificationCenter, NSObject);
    PELVOR_CREATORS(init);

  public:
    /// Returns the process's centre.
    static NSNotificationCenter* defaultCenter();
    static Retained<NSNotificationCenter> init(Class* cls = classObject());

    /// Has `selector` sent, with the notification, to the observer for each notification of the name from the
    /// sender `object`; a null name or sender stands for any. An observer that registers twice is called
    /// twice. Raises NSInvalidArgumentException if observer or selector is null.
    void addObserver_selector_name_object(id observer, SEL selector, NSString* name, id object);
    /// Forgets all registrations of the observer.
    void removeObserver(id observer);
    /// Forgets the observer's registrations for this name and this sender. A null name or sender stands for
    /// all of the observer's registrations, whatever their name or sender.
    void removeObserver_name_object(id observer, NSString* name, id object);

    /// These raise NSInvalidArgumentException if the notification or the name is null.
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
