// SPDX-License-Identifier: Apache-2.0
// NSNotification: the news that something has happened.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSDictionary;

/// A name, the object that the news is about (the sender), and a dictionary with further information, the
/// user information:
///
///     void View::pageDidChange(NSNotification* notification) {  // an observer
///         auto* page = cast<Page>(notification->object());
///         NSDictionary* information = notification->userInfo();
///         id range = information ? information->objectForKey(u"range"_ns) : nullptr;
///         …
///
/// A notification is immutable and retains all three. An observer that needs a notification after the call in
/// which a centre delivered it has to retain the notification. Any thread.
class PELVOR_EXPORT NSNotification : public NSObject {
    PELVOR_CLASS(NSNotification, NSObject);
    PELVOR_CREATORS(notificationWithName_object, notificationWithName_object_userInfo);

  public:
    /// These return a notification, borrowed. Object and user information may be null. Raise
    /// NSInvalidArgumentException if the name is null.
    static NSNotification* notificationWithName_object(NSString* name, id object, Class* cls = classObject());
    static NSNotification* notificationWithName_object_userInfo(NSString* name, id object,
                                                                NSDictionary* userInfo,
                                                                Class* cls = classObject());

    NSString* name() { return _name; }
    id object() { return _object; }
    NSDictionary* userInfo() { return _userInfo; }

    /// Returns the notification itself.
    Retained<Object> copyWithZone(void* zone) override;

    // C++ only
    Retained<NSNotification> copy() {
        return Retained<NSNotification>::adopting(static_cast<NSNotification*>(copyWithZone(nullptr).leak()));
    }

    NSString* description() override;

  protected:
    NSNotification() = default;
    ~NSNotification();

  private:
    friend class PostedNotification;

    void fill(NSString* name, id object, NSDictionary* userInfo);
    void clear() noexcept;

    // Owned; a bare pointer, because most names are literals, which are not counted.
    NSString* _name = nullptr;
    Retained<Object> _object;
    Retained<NSDictionary> _userInfo;
};

/// A notification for the time of its delivery. The thread keeps a notification that no observer retained for
/// its next delivery, so that a post makes no object. For the centre.
class PostedNotification {
  public:
    PostedNotification(NSString* name, id object, NSDictionary* userInfo);
    ~PostedNotification();
    PostedNotification(const PostedNotification&) = delete;
    PostedNotification& operator=(const PostedNotification&) = delete;

    NSNotification* get() const { return _notification; }

  private:
    static NSNotification* makeForThread();

    NSNotification* _notification;
};

}  // namespace pelvor
