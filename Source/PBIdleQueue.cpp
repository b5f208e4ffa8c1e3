// SPDX-License-Identifier: Apache-2.0
#include "PBIdleQueue.h"

#include "BaseLibrary.h"
#include "Foundation/NSString.h"
#include "PBIdleQueueScheduler.h"
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

}  // namespace pelvor
