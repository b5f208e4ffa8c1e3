// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSNotificationQueue.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSFormat.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableString.h"
#include "Foundation/NSRunLoop.h"
#include "Runtime/NSException.h"

namespace pelvor {
namespace {

bool isSame(NSNotification* a, NSNotification* b, std::uint32_t mask) {
    if ((mask & (NSNotificationCoalescingOnName | NSNotificationCoalescingOnSender)) == 0) return a == b;
    if ((mask & NSNotificationCoalescingOnSender) && a->object() != b->object()) return false;
    return !(mask & NSNotificationCoalescingOnName) || a->name() == b->name() ||
           a->name()->isEqual(b->name());
}

}  // namespace

PELVOR_DEFINE_CLASS(NSNotificationQueue, foundationLibrary) {
    methods.classLevel<"defaultQueue", &NSNotificationQueue::defaultQueue>();
    methods.creator<"init", &NSNotificationQueue::init>();
    methods.creator<"initWithNotificationCenter:", &NSNotificationQueue::initWithNotificationCenter>();
    methods.instance<"enqueueNotification:postingStyle:",
                     &NSNotificationQueue::enqueueNotification_postingStyle>();
    methods.instance<"enqueueNotification:postingStyle:coalesceMask:forModes:",
                     &NSNotificationQueue::enqueueNotification_postingStyle_coalesceMask_forModes>();
    methods.instance<"dequeueNotificationsMatching:coalesceMask:",
                     &NSNotificationQueue::dequeueNotificationsMatching_coalesceMask>();
}

NSNotificationQueue*& NSNotificationQueue::queuesOfThread() {
    static constinit thread_local NSNotificationQueue* first = nullptr;
    return first;
}

NSNotificationQueue::NSNotificationQueue() {
    NSNotificationQueue** link = &queuesOfThread();
    while (*link) link = &(*link)->_next;
    *link = this;
}

NSNotificationQueue::~NSNotificationQueue() {
    NSNotificationQueue** link = &queuesOfThread();
    while (*link && *link != this) link = &(*link)->_next;
    if (*link) *link = _next;
}

NSNotificationQueue* NSNotificationQueue::defaultQueue() {
    static thread_local const Retained<NSNotificationQueue> queue = [] {
        auto own = init();
        own->_isThreadsOwn = true;
        return own;
    }();
    return queue;
}

Retained<NSNotificationQueue> NSNotificationQueue::init(Class* cls) {
    return initWithNotificationCenter(NSNotificationCenter::defaultCenter(), cls);
}

Retained<NSNotificationQueue> NSNotificationQueue::initWithNotificationCenter(NSNotificationCenter* center,
                                                                              Class* cls) {
    if (!center)
        raiseException(NSInvalidArgumentException, u"initWithNotificationCenter: the centre is null"_ns);
    auto queue = make<NSNotificationQueue>(cls);
    queue->_center.set(center);
    return queue;
}

// MARK: Queueing

void NSNotificationQueue::enqueueNotification_postingStyle(NSNotification* notification,
                                                           NSPostingStyle style) {
    constexpr std::uint32_t kBoth = NSNotificationCoalescingOnName | NSNotificationCoalescingOnSender;
    enqueueNotification_postingStyle_coalesceMask_forModes(notification, style, kBoth, nullptr);
}

void NSNotificationQueue::enqueueNotification_postingStyle_coalesceMask_forModes(NSNotification* notification,
                                                                                 NSPostingStyle style,
                                                                                 std::uint32_t mask,
                                                                                 NSArray* modes) {
    if (!notification)
        raiseException(NSInvalidArgumentException, u"enqueueNotification: the notification is null"_ns);
    if (isDefaultModeAlone(modes)) modes = nullptr;
    Items& items = style == NSPostASAP ? _asap : _idle;
    if (mask != NSNotificationNoCoalescing) {
        if (style != NSPostNow && isOnlyItem(items, notification, modes)) return;
        dequeueNotificationsMatching_coalesceMask(notification, mask);
    }
    if (style == NSPostNow) return _center->postNotification(notification);
    items.push_back({Retained<NSNotification>::retaining(notification), Retained<NSArray>::retaining(modes)});
}

// Lists of modes are mostly made once and given again and again.
bool NSNotificationQueue::isDefaultModeAlone(NSArray* modes) {
    if (!modes || modes == _knownModes || modes->count() == 0) return true;
    if (modes->count() != 1 || !NSDefaultRunLoopMode->isEqual(modes->objectAtIndex(0))) return false;
    if (!cast<NSMutableArray>(modes)) _knownModes.set(modes);
    return true;
}

// Dropping this notification and queuing it again would change nothing.
bool NSNotificationQueue::isOnlyItem(const Items& items, NSNotification* notification, NSArray* modes) {
    return _asap.size() + _idle.size() == 1 && items.size() == 1 &&
           items.front().notification == notification && items.front().modes == modes;
}

void NSNotificationQueue::dequeueNotificationsMatching_coalesceMask(NSNotification* notification,
                                                                    std::uint32_t mask) {
    if (!notification || (_asap.empty() && _idle.empty())) return;
    Items gone;  // let go at the end, since a release may come back here
    for (Items* items : {&_asap, &_idle}) {
        auto isMeant = [&](Item& item) { return isSame(item.notification, notification, mask); };
        for (auto at = items->begin(); (at = std::find_if(at, items->end(), isMeant)) != items->end();) {
            gone.push_back(std::move(*at));
            at = items->erase(at);
        }
    }
}

// MARK: Posting

bool NSNotificationQueue::isFor(const Item& item, NSRunLoop* loop, NSString* mode) {
    return loop->isMode_amongModes(mode, item.modes.get());
}

bool NSNotificationQueue::postFirst(Items& items, NSRunLoop* loop, NSString* mode) {
    auto item =
        std::find_if(items.begin(), items.end(), [&](const Item& each) { return isFor(each, loop, mode); });
    if (item == items.end()) return false;
    auto self = Retained<NSNotificationQueue>::retaining(_isThreadsOwn ? nullptr : this);
    Item posted = std::move(*item);
    items.erase(item);
    _center->postNotification(posted.notification);
    return true;
}

// Posts only as many notifications as there are now: one that an observer queues meanwhile waits for the next
// turn.
bool NSNotificationQueue::postAllASAP(NSRunLoop* loop, NSString* mode) {
    std::vector<std::pair<Retained<NSNotificationQueue>, std::size_t>> queues;
    for (NSNotificationQueue* queue = queuesOfThread(); queue; queue = queue->_next)
        if (!queue->_asap.empty())
            queues.emplace_back(Retained<NSNotificationQueue>::retaining(queue), queue->_asap.size());
    bool hasPosted = false;
    for (auto& [queue, count] : queues)
        for (; count > 0 && queue->postFirst(queue->_asap, loop, mode); --count) hasPosted = true;
    return hasPosted;
}

bool NSNotificationQueue::postOneIdle(NSRunLoop* loop, NSString* mode) {
    for (NSNotificationQueue* queue = queuesOfThread(); queue; queue = queue->_next)
        if (queue->postFirst(queue->_idle, loop, mode)) return true;
    return false;
}

bool NSNotificationQueue::hasReady(NSRunLoop* loop, NSString* mode) {
    auto isReady = [&](const Item& item) { return isFor(item, loop, mode); };
    for (NSNotificationQueue* queue = queuesOfThread(); queue; queue = queue->_next)
        if (std::any_of(queue->_asap.begin(), queue->_asap.end(), isReady) ||
            std::any_of(queue->_idle.begin(), queue->_idle.end(), isReady))
            return true;
    return false;
}

// MARK: Description

NSString* NSNotificationQueue::description() {
    auto text = NSMutableString::init();
    text->appendFormat(u"<%s %p:"_ns, isa()->name(), static_cast<void*>(this));
    const std::pair<const char*, const Items&> styles[] = {{"as soon as possible", _asap},
                                                           {"when idle", _idle}};
    for (const auto& [style, items] : styles)
        for (const Item& item : items) {
            NSArray* modes = item.modes.get();
            text->appendFormat(u"\n  %s in %@: %@"_ns, style,
                               modes ? modes->componentsJoinedByString(u", "_ns) : NSDefaultRunLoopMode,
                               item.notification);
        }
    text->appendString(u">"_ns);
    return std::move(text).autorelease();
}

}  // namespace pelvor
