// SPDX-License-Identifier: Apache-2.0
#include "PBIdleQueue.h"

#include "BaseLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSMutableString.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSNotificationQueue.h"
#include "Foundation/NSRunLoop.h"
#include "PBWeakReference.h"
#include "Runtime/Message.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBIdleQueue, baseLibrary) {
    methods.creator<"initWithSelector:", &PBIdleQueue::initWithSelector>();
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
    methods.creator<"init", &PBIdleQueueScheduler::init>();
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

// The message may end the object, which is not touched afterwards.
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

// The scheduler may have the last reference to the queue, so its turn is given up last. The destructor of a
// subclass may call this, so the queue does not retain itself.
void PBIdleQueue::invalidate() {
    _objs = nullptr;
    _isScheduled = false;
    PBIdleQueueScheduler::instance()->removeQueue(this);
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
    scheduler->_notification.set(NSNotification::notificationWithName_object(kName, scheduler));
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
    _hasAskedForTurn = true;
    NSNotificationQueue::defaultQueue()->enqueueNotification_postingStyle_coalesceMask_forModes(
        _notification, NSPostWhenIdle, NSNotificationCoalescingOnName | NSNotificationCoalescingOnSender,
        modes);
}

void PBIdleQueueScheduler::runLoopDidIdle(NSNotification* notification) {
    if (notification == _notification) _hasAskedForTurn = false;
    {
        Retained<Object> next = _queues->takeTop();
        if (auto* queue = cast<PBIdleQueue>(next)) queue->doRun();
    }
    if (!_queues->isEmpty()) scheduleQueues();
}

NSString* PBIdleQueueScheduler::description() {
    NSMutableString* text = NSMutableString::string();
    text->appendFormat(u"PBIdleQueueScheduler<%p> {%@, queues=%d\n"_ns, static_cast<void*>(this),
                       _hasAskedForTurn ? u"asked for a turn"_ns : u"asked for no turn"_ns, _queues->count());
    PBLinkedListEnumerator* walk = _queues->objectEnumerator();
    while (id queue = walk->nextObject()) text->appendFormat(u"\t%@\n"_ns, queue);
    text->appendString(u"}"_ns);
    return text;
}

}  // namespace pelvor
