// SPDX-License-Identifier: Apache-2.0
// PBIdleQueue: messages that are sent when the main loop has nothing else to do.
#pragma once

#include "Foundation/NSMutableSet.h"

namespace pelvor {

/// A queue of objects that are each to be sent one message when the main loop is idle in the default mode:
///
///     static PBIdleQueue* const layouts = PBIdleQueue::initWithSelector("layOut"_sel).leak();
///     layouts->addObject(page);     // as often as the page changes; it is sent one layOut
///     layouts->removeObject(page);  // before the page is destroyed
///
/// An object is in the queue once, however often it is added. The queue refers to it by PBWeakReference and
/// does not retain it: an object leaves the queue before it is destroyed. One object of one queue is served
/// at each idle moment, and queues take turns.
///
/// An object leaves the queue just before it is sent its message. In its method the object may add itself
/// again for a later idle moment, add and remove other objects, and destroy itself. An exception of the
/// method reaches the run loop; the other objects of the queue then wait until `addObject` is called again.
/// Main thread.
class PELVOR_EXPORT PBIdleQueue : public NSObject {
    PELVOR_CLASS(PBIdleQueue, NSObject);
    PELVOR_CREATORS(initWithSelector);

  public:
    /// Makes a queue that sends the message `selector`, which takes no argument. Its result is not used.
    static Retained<PBIdleQueue> initWithSelector(SEL selector, Class* cls = classObject());

    void addObject(id object);
    void removeObject(id object);
    bool containsObject(id object);
    NSUInteger count();
    /// Lines the queue up with the scheduler for a turn, unless it is in line or was invalidated.
    void scheduleQueue();
    /// Sends the message to the object. Subclasses override it to send something else.
    virtual void sendIdleToObject(id object);
    /// Takes a turn: sends the message to one of the objects, if there is any, and lines up again for the
    /// rest.
    virtual void doRun();
    /// Empties the queue. Nothing is sent.
    void flush();
    /// Gives up the queue's turn and its objects for good: objects that are added from now on are ignored.
    void invalidate();
    /// "PBIdleQueue<0x…> {layOut, objects=2}".
    NSString* description() override;

  protected:
    PBIdleQueue() = default;
    ~PBIdleQueue() = default;

  private:
    Retained<NSMutableSet> _objs;  // of PBWeakReferences; null once invalidated
    SEL _sel;
    bool _isScheduled = false;
};

}  // namespace pelvor
