// SPDX-License-Identifier: Apache-2.0
// PBIdleQueueScheduler: gives idle queues their turns.
#pragma once

#include "Foundation/NSNotification.h"
#include "PBLinkedList.h"

namespace pelvor {

class PBIdleQueue;

/// Gives idle queues their turns, first come, first served. Queues use the scheduler by themselves; a host
/// looks at it when work does not get done:
///
///     NSLog(u"%@"_ns, PBIdleQueueScheduler::instance());  // which queues wait
///
/// The scheduler retains the queues that wait. After an object of a queue has raised an exception, the
/// scheduler gives no turns until its list has become empty and a queue is added. Main thread.
class PELVOR_EXPORT PBIdleQueueScheduler : public NSObject {
    PELVOR_CLASS(PBIdleQueueScheduler, NSObject);
    PELVOR_CREATORS(init);

  public:
    /// The scheduler of the process.
    static PBIdleQueueScheduler* instance();
    static Retained<PBIdleQueueScheduler> init(Class* cls = classObject());

    /// Puts the queue at the end of the line.
    void addQueue(PBIdleQueue* queue);
    /// Takes the queue out of the line wherever it stands.
    void removeQueue(PBIdleQueue* queue);
    /// Requests one turn at the next idle moment. Further calls before that moment change nothing.
    void scheduleQueues();
    /// Called at an idle moment: gives the first queue its turn.
    void runLoopDidIdle(NSNotification* notification);
    /// "PBIdleQueueScheduler<0x…> {asked for a turn, queues=1" or "{asked for no turn, …", a line with a tab
    /// and the description of each waiting queue, and "}".
    NSString* description() override;

  protected:
    PBIdleQueueScheduler() = default;
    ~PBIdleQueueScheduler();

  private:
    Retained<PBLinkedList> _queues;
    Retained<NSNotification> _notification;  // retains its sender, the scheduler, which so never ends
    bool _hasAskedForTurn = false;
};

}  // namespace pelvor
