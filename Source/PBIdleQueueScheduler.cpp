// SPDX-License-Identifier: Apache-2.0
#include "PBIdleQueueScheduler.h"

#include "BaseLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSMutableString.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSNotificationQueue.h"
#include "Foundation/NSRunLoop.h"
#include "PBIdleQueue.h"
#include "PBLinkedListEnumerator.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBIdleQueueScheduler, baseLibrary) {
    methods.classLevel<"instance", &PBIdleQueueScheduler::instance>();
    methods.creator<"init", &PBIdleQueueScheduler::init>();
    methods.instance<"addQueue:", &PBIdleQueueScheduler::addQueue>();
    methods.instance<"removeQueue:", &PBIdleQueueScheduler::removeQueue>();
    methods.instance<"scheduleQueues", &PBIdleQueueScheduler::scheduleQueues>();
    methods.instance<"runLoopDidIdle:", &PBIdleQueueScheduler::runLoopDidIdle>();
}

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
