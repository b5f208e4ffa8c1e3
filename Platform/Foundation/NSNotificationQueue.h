// SPDX-License-Identifier: Apache-2.0
// NSNotificationQueue: notifications that are posted later, and only once if many say the same thing.
#pragma once

#include <cstdint>
#include <deque>

#include "Foundation/NSNotificationCenter.h"

namespace pelvor {

class NSArray;
class NSRunLoop;

/// When a queued notification is posted.
enum NSPostingStyle : std::uint32_t {
    NSPostWhenIdle = 1,  ///< when nothing else is ready in the run loop's mode; one notification a turn
    NSPostASAP = 2,      ///< at the end of the run loop's turn
    NSPostNow = 3,       ///< before the call returns, whatever the mode
};

/// Which parts of two notifications have to be equal so that they count as the same notification; values may
/// be combined.
enum NSNotificationCoalescing : std::uint32_t {
    NSNotificationNoCoalescing = 0,
    NSNotificationCoalescingOnName = 1,
    NSNotificationCoalescingOnSender = 2,
};

/// Holds notifications until the run loop of the thread posts them through the queue's centre, in the order
/// of their arrival. A view that is to be drawn once after any number of changes queues for each change:
///
///     auto* news = NSNotification::notificationWithName_object(NeedsDrawingNotification, view);
///     NSNotificationQueue::defaultQueue()->enqueueNotification_postingStyle(news, NSPostWhenIdle);
///
/// A notification is posted only while the run loop runs in one of the modes of the notification. An
/// exception of an observer leaves the run loop; the notification is no longer queued then, but the
/// notifications behind it still are. A queue is for the thread that made it.
class PELVOR_EXPORT NSNotificationQueue : public NSObject {
    PELVOR_CLASS(NSNotificationQueue, NSObject);
    PELVOR_CREATORS(init, initWithNotificationCenter);

  public:
    /// Returns the thread's queue for the default centre.
    static NSNotificationQueue* defaultQueue();
    static Retained<NSNotificationQueue> init(Class* cls = classObject());
    /// Returns a queue for the centre, which the queue retains. Notifications that are still queued when the
    /// queue ends are not posted. Raises NSInvalidArgumentException if the centre is null.
    static Retained<NSNotificationQueue> initWithNotificationCenter(NSNotificationCenter* center,
                                                                    Class* cls = classObject());

    /// Queues the notification for the default mode, coalescing by name and sender.
    void enqueueNotification_postingStyle(NSNotification* notification, NSPostingStyle style);
    /// Drops the queued notifications that count as the same as this one by `mask` (values of
    /// NSNotificationCoalescing), and then queues this notification, or posts it if the style is NSPostNow.
    /// `modes` are names; a null or empty list stands for the default mode. Raises NSInvalidArgumentException
    /// if the notification is null.
    void enqueueNotification_postingStyle_coalesceMask_forModes(NSNotification* notification,
                                                                NSPostingStyle style, std::uint32_t mask,
                                                                NSArray* modes);
    /// Drops the queued notifications that count as the same as this one by `mask`. With 0 for `mask`, drops
    /// only this very object.
    void dequeueNotificationsMatching_coalesceMask(NSNotification* notification, std::uint32_t mask);

    /// Returns what waits: each notification with its style and its modes, in the order of posting.
    NSString* description() override;

  protected:
    NSNotificationQueue();
    ~NSNotificationQueue();

  private:
    friend class NSRunLoop;
    struct Item {
        Retained<NSNotification> notification;
        Retained<NSArray> modes;  // null: the default mode
    };
    using Items = std::deque<Item>;

    // What the run loop of the thread asks of all queues of the thread.
    static bool postAllASAP(NSRunLoop* loop, NSString* mode);
    static bool postOneIdle(NSRunLoop* loop, NSString* mode);
    static bool hasReady(NSRunLoop* loop, NSString* mode);

    static NSNotificationQueue*& queuesOfThread();
    static bool isFor(const Item& item, NSRunLoop* loop, NSString* mode);
    bool isDefaultModeAlone(NSArray* modes);
    bool isOnlyItem(const Items& items, NSNotification* notification, NSArray* modes);
    bool postFirst(Items& items, NSRunLoop* loop, NSString* mode);

    Retained<NSNotificationCenter> _center;
    Items _asap;
    Items _idle;
    Retained<NSArray> _knownModes;  // immutable, the last list of the default mode alone
    bool _isThreadsOwn = false;
    Unretained<NSNotificationQueue> _next = nullptr;  // a queue that ends leaves the thread's chain
};

}  // namespace pelvor
