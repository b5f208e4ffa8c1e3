// SPDX-License-Identifier: Apache-2.0
// NSNotificationQueue: notifications that are posted later, and once where many would say the same.
#pragma once

#include <cstdint>
#include <list>

#include "Foundation/NSNotificationCenter.h"

namespace pelvor {

class NSArray;
class NSRunLoop;

/// When a queued notification is posted.
enum NSPostingStyle : std::uint32_t {
    NSPostWhenIdle = 1,  ///< when nothing else is ready in the run loop's mode; one each idle moment
    NSPostASAP = 2,      ///< at the end of the run loop's turn
    NSPostNow = 3,       ///< before the call returns, whatever the mode
};

/// What makes two notifications the same; may be combined.
enum NSNotificationCoalescing : std::uint32_t {
    NSNotificationNoCoalescing = 0,
    NSNotificationCoalescingOnName = 1,
    NSNotificationCoalescingOnSender = 2,
};

/// Holds notifications until the run loop of the thread comes to post them through the queue's centre, each
/// in one of the modes that it was given. Order is that of arrival. What an observer raises leaves the run
/// loop; that notification is gone and those after it stay. For the thread that made it.
class PELVOR_EXPORT NSNotificationQueue : public NSObject {
    PELVOR_CLASS(NSNotificationQueue, NSObject);

  public:
    /// The thread's queue for the default centre.
    static NSNotificationQueue* defaultQueue();
    static Retained<NSNotificationQueue> init(Class* cls = classObject());
    /// Retains the centre. What is still queued when the queue is destroyed is not posted.
    static Retained<NSNotificationQueue> initWithNotificationCenter(NSNotificationCenter* center,
                                                                    Class* cls = classObject());

    /// Coalesces by name and sender, for the default mode.
    void enqueueNotification_postingStyle(NSNotification* notification, NSPostingStyle style);
    /// Drops the queued notifications that are the same by `mask` (of NSNotificationCoalescing), then queues
    /// this one, or posts it. `modes` are names; none or an empty list stands for the default mode. Raises
    /// NSInvalidArgumentException for no notification.
    void enqueueNotification_postingStyle_coalesceMask_forModes(NSNotification* notification,
                                                                NSPostingStyle style, std::uint32_t mask,
                                                                NSArray* modes);
    /// Drops the queued notifications that are the same by `mask`; with 0, every one that is identical.
    void dequeueNotificationsMatching_coalesceMask(NSNotification* notification, std::uint32_t mask);

  protected:
    NSNotificationQueue();
    ~NSNotificationQueue();

  private:
    friend class NSRunLoop;
    struct Item {
        Retained<NSNotification> notification;
        Retained<NSArray> modes;  // none: the default mode
    };
    using Items = std::list<Item>;

    // What the run loop of the thread asks of all queues of the thread.
    static bool postAllASAP(NSRunLoop* loop, NSString* mode);
    static bool postOneIdle(NSRunLoop* loop, NSString* mode);
    static bool hasReady(NSRunLoop* loop, NSString* mode);

    static NSNotificationQueue*& queuesOfThread();
    static bool isFor(const Item& item, NSRunLoop* loop, NSString* mode);
    bool isDefaultModeAlone(NSArray* modes);
    bool isOnlyItem(const Items& items, NSNotification* notification, NSArray* modes);
    void append(Items& items, NSNotification* notification, NSArray* modes);
    bool postFirst(Items& items, NSRunLoop* loop, NSString* mode);

    Retained<NSNotificationCenter> _center;
    Items _asap;
    Items _idle;
    Items _spare;                   // an empty item, for the next notification
    Retained<NSArray> _knownModes;  // immutable, last seen to be the default mode alone
    bool _isThreadsOwn = false;
    NSNotificationQueue* _next = nullptr;
};

}  // namespace pelvor
