// SPDX-License-Identifier: Apache-2.0
// NSNotification: the news that something has happened.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSDictionary;

/// A name, the object that it is about (its sender), and what else there is to say. Immutable and owner of
/// all three. What a centre delivers is an observer's beyond the call only if the observer retains it.
/// Any thread.
class PELVOR_EXPORT NSNotification : public NSObject {
    PELVOR_CLASS(NSNotification, NSObject);

  public:
    /// Object and user information may be none. Raises NSInvalidArgumentException for no name.
    static NSNotification* notificationWithName_object(NSString* name, id object, Class* cls = classObject());
    static NSNotification* notificationWithName_object_userInfo(NSString* name, id object,
                                                                NSDictionary* userInfo,
                                                                Class* cls = classObject());

    NSString* name() { return _name; }
    id object() { return _object; }
    NSDictionary* userInfo() { return _userInfo; }

    Retained<Object> copyWithZone(void* zone) override;
    NSString* description() override;

  protected:
    NSNotification() = default;
    ~NSNotification();

  private:
    friend class PostedNotification;

    void fill(NSString* name, id object, NSDictionary* userInfo);
    void clear() noexcept;

    // Owned; a bare pointer because literals, which most names are, are not counted.
    NSString* _name = nullptr;
    Retained<Object> _object;
    Retained<NSDictionary> _userInfo;
};

/// A notification for the time of its delivery. The thread keeps one that nobody retained for its next
/// delivery, so that a post makes no object. For the centre.
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
