// SPDX-License-Identifier: Apache-2.0
// PBIdleQueue and PBIdleQueueScheduler: messages sent when the main loop has nothing else to do.
#pragma once

#include "Foundation/NSMutableSet.h"
#include "Foundation/NSNotification.h"
#include "PBLinkedList.h"

namespace pelvor {

/// Objects that are each to be sent one message when the main loop is idle in the default mode. Each is in
/// the queue once, however often it is added. The queue does not keep them: an object leaves it before it
/// is destroyed. One object of one queue is served at each idle moment, and queues take turns.
///
/// An object has left the queue when it is sent its message, and may add itself again for a later moment,
/// add and remove others, and destroy itself. What it raises reaches the run loop; the queue's other
/// objects then wait for the next `addObject`. Main thread.
class PELVOR_EXPORT PBIdleQueue : public NSObject {
    PELVOR_CLASS(PBIdleQueue, NSObject);

  public:
    /// The message takes no argument; its result is not used.
    static Retained<PBIdleQueue> initWithSelector(SEL selector, Class* cls = classObject());

    void addObject(id object);
    void removeObject(id object);
    bool containsObject(id object);
    NSUInteger count();
    /// Lines up for a turn, once, unless the queue was invalidated.
    void scheduleQueue();
    /// Sends the message. For subclasses to send something else.
    virtual void sendIdleToObject(id object);
    /// A turn: sends the message to one of the objects, if there is any, and lines up again for the rest.
    virtual void doRun();
    /// Empties the queue. Nothing is sent.
    void flush();
    /// Gives up its turn and its objects for good. The release that ends a queue does so too.
    void invalidate();
    /// "PBIdleQueue<0x…> {selector, objects=n}".
    NSString* description() override;

  protected:
    PBIdleQueue() = default;
    ~PBIdleQueue() = default;

  private:
    Retained<NSMutableSet> _objs;  // of weak references; none once invalidated
    SEL _sel;
    bool _isScheduled = false;
};

/// Gives the queues their turns, first come, first served; it keeps those that wait. After a queue's object
/// has raised, it stands still until its list is empty and a queue is added. Main thread.
class PELVOR_EXPORT PBIdleQueueScheduler : public NSObject {
    PELVOR_CLASS(PBIdleQueueScheduler, NSObject);

  public:
    /// The process's scheduler.
    static PBIdleQueueScheduler* instance();
    static Retained<PBIdleQueueScheduler> init(Class* cls = classObject());

    void addQueue(PBIdleQueue* queue);
    void removeQueue(PBIdleQueue* queue);
    /// Asks for the next idle moment, once however often it is called before that.
    void scheduleQueues();
    /// An idle moment: gives the first queue its turn.
    void runLoopDidIdle(NSNotification* notification);

  protected:
    PBIdleQueueScheduler() = default;
    ~PBIdleQueueScheduler();

  private:
    Retained<PBLinkedList> _queues;
    NSNotification* _notification = nullptr;  // owned; it keeps its sender, the scheduler
};

}  // namespace pelvor
