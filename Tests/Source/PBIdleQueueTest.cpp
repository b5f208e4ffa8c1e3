// SPDX-License-Identifier: Apache-2.0
#include "PBIdleQueue.h"

#include "ActingObject.h"
#include "BaseLibrary.h"
#include "Foundation/NSRunLoop.h"
#include "NSObject-PelvorAdditions.h"
#include "PBIdleQueueScheduler.h"

namespace {

// Counts instead of sending.
class PBTestCountingQueue : public PBIdleQueue, PBIdleQueue::HiddenCreators {
    PELVOR_CLASS(PBTestCountingQueue, PBIdleQueue);

  public:
    void sendIdleToObject(id) override { ++served; }
    int served = 0;
    std::function<void()> end;

  protected:
    ~PBTestCountingQueue() {
        invalidate();
        if (end) end();
    }
};
PELVOR_DEFINE_CLASS(PBTestCountingQueue, baseLibrary) {}

bool turn(NSString* mode = NSDefaultRunLoopMode) {
    return NSRunLoop::currentRunLoop()->runMode_beforeDate(mode, NSDate::distantPast());
}

void idle() {
    while (turn()) continue;
}

struct PBIdleQueueTest : ::testing::Test {
    ~PBIdleQueueTest() override {
        for (auto& queue : {first, second}) send(queue, "invalidate"_sel);
        idle();
    }
    Retained<ActingObject> worker(const char* name) {
        return ActingObject::acting([this, name](id) { served += name; });
    }
    void letAThrowWhileItWaits(ActingObject* object, PBIdleQueue* queue) {
        a->action = [](id) { throw NSException("PBTestException", "as asked"); };
        first->addObject(a);
        queue->addObject(object);
        EXPECT_THROW(turn(), NSException);
    }

    std::string served;
    Retained<PBIdleQueue> first = PBIdleQueue::initWithSelector("act"_sel);
    Retained<PBIdleQueue> second = PBIdleQueue::initWithSelector("act"_sel);
    Retained<ActingObject> a = worker("a"), b = worker("b"), c = worker("c");
};

TEST_F(PBIdleQueueTest, QueuesTakeTurnsOneObjectAnIdleMoment) {
    for (auto& object : {a, a, a, b}) first->addObject(object);
    second->addObject(c);
    EXPECT_EQ(first->count(), 2u);
    EXPECT_EQ(a->retainCount(), 1u);
    for (int i = 0; i < 3; ++i) turn(u"PBTestModalMode"_ns);
    EXPECT_EQ(served, "") << "in another mode";
    for (const char* expected : {"a", "ac", "acb", "acb"}) {
        turn();
        EXPECT_EQ(served, expected);
    }
    EXPECT_EQ(first->count(), 0u);
}

TEST_F(PBIdleQueueTest, ASubclassSendsWhatItLikes) {
    auto queue = PBIdleQueue::initWithSelector("act"_sel, PBTestCountingQueue::classObject());
    for (auto& object : {a, b, a}) queue->addObject(object);
    idle();
    EXPECT_EQ(cast<PBTestCountingQueue>(queue.get())->served, 2);
    EXPECT_EQ(served, "");
}

TEST_F(PBIdleQueueTest, ObjectsChangeQueuesInTheMiddleOfTheirTurn) {
    // The action is of a, the first of a queue; b waits in it, c in the second.
    auto expectServed = [this](const char* order, const char* situation, std::function<void(id)> action) {
        first = PBIdleQueue::initWithSelector("act"_sel);
        second = PBIdleQueue::initWithSelector("act"_sel);
        served = "";
        a = worker("a"), b = worker("b"), c = worker("c");
        a->action = [&](id self) {
            served += "a";
            if (served == "a") action(self);
        };
        for (auto& object : {a, b}) first->addObject(object);
        second->addObject(c);
        idle();
        EXPECT_EQ(served, order) << situation;
    };
    expectServed("acba", "adds itself again", [&](id self) { first->addObject(self); });
    expectServed("acba", "moves to the other queue", [&](id self) { second->addObject(self); });
    expectServed("acb", "adds and removes itself",
                 [&](id self) { first->addObject(self), first->removeObject(self); });
    expectServed("acb", "destroys itself", [&](id) { a = nullptr; });
    expectServed("ac", "destroys one to come", [&](id) { first->removeObject(b), b = nullptr; });
    expectServed("ab", "destroys one in the other", [&](id) { second->removeObject(c), c = nullptr; });
    expectServed("ac", "flushes its queue", [&](id) { first->flush(); });
    expectServed("ac", "invalidates its queue", [&](id) { first->invalidate(); });
    expectServed("ab", "invalidates the other queue", [&](id) { second->invalidate(); });
    expectServed("acb", "lets go of both queues", [&](id) { first = second = nullptr; });
}

// Deliberately: a flush discards what is queued and sends nothing.
TEST_F(PBIdleQueueTest, FlushedRemovedAndInvalidatedObjectsAreNotServed) {
    for (auto& object : {a, b, c}) first->addObject(object);
    first->flush();
    EXPECT_EQ(first->count(), 0u);
    second->addObject(a);
    second->removeObject(a);
    EXPECT_FALSE(second->containsObject(a));
    idle();
    first->addObject(b);
    first->invalidate();
    first->addObject(b);
    idle();
    EXPECT_EQ(served, "");
    EXPECT_EQ(first->description()->toUTF8(), "PBIdleQueue<" + addressOf(first) + "> {act, objects=0}");
}

TEST_F(PBIdleQueueTest, AfterAnExceptionObjectsWaitForTheNextAddition) {
    letAThrowWhileItWaits(b, first);
    EXPECT_FALSE(first->containsObject(a));
    idle();
    EXPECT_EQ(served, "");
    first->addObject(c);
    idle();
    EXPECT_EQ(served, "bc");
}

// Deliberately: the scheduler is told of additions to an empty line only.
TEST_F(PBIdleQueueTest, AfterAnExceptionQueuesInLineWaitUntilItIsEmptyAndAQueueComes) {
    letAThrowWhileItWaits(c, second);
    first->addObject(b);
    idle();
    EXPECT_EQ(served, "");
    second->invalidate();
    first->flush();
    first->invalidate();
    first = PBIdleQueue::initWithSelector("act"_sel);
    first->addObject(b);
    idle();
    EXPECT_EQ(served, "b");
}

TEST_F(PBIdleQueueTest, TheSchedulerTellsWhoWaitsAndWhetherItAskedForATurn) {
    PBIdleQueueScheduler* scheduler = PBIdleQueueScheduler::instance();
    std::string start = "PBIdleQueueScheduler<" + addressOf(scheduler) + "> {asked for ";
    EXPECT_EQ(shown(scheduler), start + "no turn, queues=0\n}");
    first->addObject(a);
    second->addObject(b);
    EXPECT_EQ(shown(scheduler),
              start + "a turn, queues=2\n\t" + shown(first.get()) + "\n\t" + shown(second.get()) + "\n}");
    a->action = [](id) { throw NSException("PBTestException", "as asked"); };
    EXPECT_THROW(turn(), NSException);
    EXPECT_EQ(shown(scheduler), start + "no turn, queues=1\n\t" + shown(second.get()) + "\n}");
}

// A queue's destructor may invalidate it, and what ends with a removed queue may invalidate others.
TEST_F(PBIdleQueueTest, QueuesThatEndMayInvalidateThemselvesAndOthers) {
    PBIdleQueueScheduler* scheduler = PBIdleQueueScheduler::instance();
    auto queue = cast<PBTestCountingQueue>(
        PBIdleQueue::initWithSelector("act"_sel, PBTestCountingQueue::classObject()));
    queue->end = [this] { second->invalidate(); };
    PBIdleQueue* borrowed = queue;
    scheduler->addQueue(queue);
    second->addObject(b);
    first->addObject(c);
    queue = nullptr;
    scheduler->removeQueue(borrowed);
    EXPECT_EQ(second->count(), 0u);
    idle();
    EXPECT_EQ(served, "c");
}

TEST_F(PBIdleQueueTest, EachDeferredReleaseIsOneRelease) {
    for (int i = 0; i < 2; ++i) {
        a->retain();
        send(a, "releaseWhenIdle"_sel);
    }
    EXPECT_EQ(a->retainCount(), 2u);
    idle();
    EXPECT_EQ(a->retainCount(), 1u);
    releaseWhenIdle(b.leak());
    idle();
}

}  // namespace
