// SPDX-License-Identifier: Apache-2.0
#include "PBIdleQueue.h"

#include "BaseLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSNotificationQueue.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSString.h"
#include "PBWeakReference.h"
#include "Runtime/Message.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBIdleQueue, baseLibrary) {
    methods.classLevel<"initWithSelector:", &PBIdleQueue::initWithSelector>();
    methods.instance<"addObject:", &PBIdleQueue::addObject>();
    methods.instance<"removeObject:", &PBIdleQueue::removeObject>();
    methods.instance<"containsObject:", &PBIdleQueue::containsObject>();
    methods.instance<"count", &PBIdleQueue::count>();
    methods.instance<"scheduleQueue", &PBIdleQueue::scheduleQueue>();
    methods.instance<"sendIdleToObject:", &PBIdleQueue::sendIdleToObject>();
    methods.instance<"doRun", &PBIdleQueue::doRun>();
    methods.instance<"flush", &PBIdleQueue::flush>();
    methods.instance<"invalidate", &PBIdleQueue::invalidate>();
}

PELVOR_DEFINE_CLASS(PBIdleQueueScheduler, baseLibrary) {
    methods.classLevel<"instance", &PBIdleQueueScheduler::instance>();
    methods.classLevel<"init", &PBIdleQueueScheduler::init>();
    methods.instance<"addQueue:", &PBIdleQueueScheduler::addQueue>();
    methods.instance<"removeQueue:", &PBIdleQueueScheduler::removeQueue>();
    methods.instance<"scheduleQueues", &PBIdleQueueScheduler::scheduleQueues>();
    methods.instance<"runLoopDidIdle:", &PBIdleQueueScheduler::runLoopDidIdle>();
}

// MARK: Queues

Retained<PBIdleQueue> PBIdleQueue::initWithSelector(SEL selector, Class* cls) {
    auto queue = make<PBIdleQueue>(cls);
    queue->_sel = selector;
    queue->_objs = NSMutableSet::init();
    return queue;
}

void PBIdleQueue::addObject(id object) {
    if (!_objs || !object) return;
    addWeakReferenceObject(_objs, object);
    scheduleQueue();
}

void PBIdleQueue::removeObject(id object) {
    if (_objs) removeWeakReferenceObject(_objs, object);
}

bool PBIdleQueue::containsObject(id object) { return _objs && containsWeakReferenceObject(_objs, object); }

NSUInteger PBIdleQueue::count() { return _objs ? _objs->count() : 0; }

void PBIdleQueue::scheduleQueue() {
    if (_isScheduled || !_objs) return;
    PBIdleQueueScheduler::instance()->addQueue(this);
    _isScheduled = true;
}

// The object may end with its message; it is not touched afterwards.
void PBIdleQueue::sendIdleToObject(id object) { send(object, _sel); }

void PBIdleQueue::doRun() {
    auto self = Retained<PBIdleQueue>::retaining(this);
    _isScheduled = false;
    id member = _objs ? _objs->anyObject() : nullptr;
    if (!member) return;
    id object = static_cast<PBWeakReference*>(member)->object();
    _objs->removeObject(member);
    sendIdleToObject(object);
    if (count() > 0) scheduleQueue();
}

void PBIdleQueue::flush() {
    if (_objs) _objs->removeAllObjects();
}

void PBIdleQueue::invalidate() {
    auto self = Retained<PBIdleQueue>::retaining(this);
    PBIdleQueueScheduler::instance()->removeQueue(this);
    _objs = nullptr;
    _isScheduled = false;
}

NSString* PBIdleQueue::description() {
    return NSString::stringWithFormat(u"PBIdleQueue<%p> {%@, objects=%d}"_ns, static_cast<void*>(this),
                                      NSString::ofUTF8(_sel.name()), count());
}

// MARK: The scheduler

PBIdleQueueScheduler* PBIdleQueueScheduler::instance() {
    static PBIdleQueueScheduler* const scheduler = init().leak();
    return scheduler;
}

Retained<PBIdleQueueScheduler> PBIdleQueueScheduler::init(Class* cls) {
    constexpr NSString* kName = u"_PBIdleQueueShouldDoSomeWorkNotification"_ns;
    auto scheduler = make<PBIdleQueueScheduler>(cls);
    scheduler->_queues = PBLinkedList::init();
    NSNotification* notification = NSNotification::notificationWithName_object(kName, scheduler);
    notification->retain();
    scheduler->_notification = notification;
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(scheduler, "runLoopDidIdle:"_sel,
                                                                            kName, scheduler);
    return scheduler;
}

PBIdleQueueScheduler::~PBIdleQueueScheduler() { NSNotificationCenter::defaultCenter()->removeObserver(this); }

void PBIdleQueueScheduler::addQueue(PBIdleQueue* queue) {
    if (_queues->isEmpty()) scheduleQueues();
    _queues->enqueueObject(queue);
}

void PBIdleQueueScheduler::removeQueue(PBIdleQueue* queue) {
    auto walk = PBLinkedListEnumerator::initWithList_node(_queues, _queues->nodeAtIndex_prevNode(0, nullptr));
    while (id object = walk->nextObject())
        if (object == queue) walk->removeLastObject();
}

void PBIdleQueueScheduler::scheduleQueues() {
    static NSArray* const modes = NSArray::initWithObjects({NSDefaultRunLoopMode}).leak();
    NSNotificationQueue::defaultQueue()->enqueueNotification_postingStyle_coalesceMask_forModes(
        _notification, NSPostWhenIdle, NSNotificationCoalescingOnName | NSNotificationCoalescingOnSender,
        modes);
}

void PBIdleQueueScheduler::runLoopDidIdle(NSNotification*) {
    {
        Retained<Object> next = _queues->takeTop();
        if (auto* queue = cast<PBIdleQueue>(next)) queue->doRun();
    }
    if (!_queues->isEmpty()) scheduleQueues();
}

}  // namespace pelvor
