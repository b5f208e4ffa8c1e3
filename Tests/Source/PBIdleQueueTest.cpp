// SPDX-License-Identifier: Apache-2.0
#include "PBIdleQueue.h"

#include "BaseLibrary.h"
#include "Foundation/NSRunLoop.h"
#include "NSObject-PelvorAdditions.h"
#include "Prelude.h"
#include "RandomSteps.h"

namespace {

class PBTestWorker : public NSObject {
    PELVOR_CLASS(PBTestWorker, NSObject);

  public:
    void work() { std::function<void(PBTestWorker*)>{action}(this); }  // it may destroy this
    std::function<void(PBTestWorker*)> action;
};

constinit Library idleQueueTestLibrary{"IdleQueueTest", {}, kClassesOf<PBTestWorker>, {}};
PELVOR_DEFINE_CLASS(PBTestWorker, idleQueueTestLibrary) { methods.instance<"work", &PBTestWorker::work>(); }

// Counts instead of sending.
class PBTestCountingQueue : public PBIdleQueue {
    PELVOR_CLASS(PBTestCountingQueue, PBIdleQueue);

  public:
    void sendIdleToObject(id) override { ++served; }
    int served = 0;
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
    Retained<PBTestWorker> worker(const char* name) {
        auto made = make<PBTestWorker>();
        made->action = [this, name](id) { served += name; };
        return made;
    }
    void letAThrowWhileItWaits(PBTestWorker* object, PBIdleQueue* queue) {
        a->action = [](id) { throw NSException("PBTestException", "as asked"); };
        first->addObject(a);
        queue->addObject(object);
        EXPECT_THROW(turn(), NSException);
    }

    std::string served;
    Retained<PBIdleQueue> first = PBIdleQueue::initWithSelector("work"_sel);
    Retained<PBIdleQueue> second = PBIdleQueue::initWithSelector("work"_sel);
    Retained<PBTestWorker> a = worker("a"), b = worker("b"), c = worker("c");
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
    auto queue = PBIdleQueue::initWithSelector("work"_sel, PBTestCountingQueue::classObject());
    for (auto& object : {a, b, a}) queue->addObject(object);
    idle();
    EXPECT_EQ(cast<PBTestCountingQueue>(queue.get())->served, 2);
    EXPECT_EQ(served, "");
}

TEST_F(PBIdleQueueTest, ObjectsChangeQueuesInTheMiddleOfTheirTurn) {
    // The action is of a, the first of a queue; b waits in it, c in the second.
    auto expectServed = [this](const char* order, const char* situation, std::function<void(id)> action) {
        first = PBIdleQueue::initWithSelector("work"_sel);
        second = PBIdleQueue::initWithSelector("work"_sel);
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
    EXPECT_EQ(first->description()->toUTF8(), "PBIdleQueue<" + addressOf(first) + "> {work, objects=0}");
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
    first = PBIdleQueue::initWithSelector("work"_sel);
    first->addObject(b);
    idle();
    EXPECT_EQ(served, "b");
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

// By the model, queues are lines that hand their turn on after each object.
TEST_F(PBIdleQueueTest, RandomStepsServeWhomPlainLinesServe) {
    std::mt19937 random(3);
    struct Line {
        Retained<PBIdleQueue> queue = PBIdleQueue::initWithSelector("work"_sel);
        std::vector<PBTestWorker*> objects;
    };
    std::vector<Line> lines(3);
    std::vector<Line*> turns;
    std::vector<Retained<PBTestWorker>> all(9);
    PBTestWorker* expected = nullptr;
    auto addOnce = [](auto& list, auto* member) {
        if (std::find(list.begin(), list.end(), member) == list.end()) list.push_back(member);
    };
    auto remove = [](Line& line, PBTestWorker* object) {
        line.queue->removeObject(object);
        std::erase(line.objects, object);
    };
    std::function<void()> change = [&] {
        Line& line = lines[random() % lines.size()];
        auto& object = all[random() % all.size()];
        if (!object) object = make<PBTestWorker>();
        object->action = [&](PBTestWorker* self) {
            ASSERT_EQ(self, expected);
            change();
            expected = nullptr;
        };
        switch (random() % 6) {
            case 0:
                for (Line& each : lines) remove(each, object);
                if (object != expected) object = nullptr;
                break;
            case 1:
                remove(line, object);
                break;
            default:
                line.queue->addObject(object);
                addOnce(line.objects, object.get());
                addOnce(turns, &line);
        }
    };
    for (int step = 0, steps = randomSteps(60'000); step < steps; ++step) {
        AutoreleasePool inner;
        if (random() % 2) change();
        if (step % 2 || turns.empty()) continue;
        Line& line = *turns.front();
        turns.erase(turns.begin());
        expected = line.objects.empty() ? nullptr : line.objects.front();
        std::erase(line.objects, expected);
        bool hadObject = expected;
        turn();
        ASSERT_EQ(expected, nullptr) << "not served";
        if (hadObject && !line.objects.empty()) addOnce(turns, &line);
        for (Line& each : lines) ASSERT_EQ(each.queue->count(), each.objects.size());
    }
    for (Line& line : lines) line.queue->invalidate();
}

}  // namespace
