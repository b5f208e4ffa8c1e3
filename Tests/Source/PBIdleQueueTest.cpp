// SPDX-License-Identifier: Apache-2.0
#include "PBIdleQueue.h"

#include "Foundation/NSRunLoop.h"
#include "NSObject-PelvorAdditions.h"
#include "Prelude.h"
#include "RandomSteps.h"

namespace pelvor::testing {
namespace {

extern Library idleQueueTestLibrary;

class PBTestWorker : public NSObject {
    PELVOR_CLASS(PBTestWorker, NSObject);

  public:
    void work() {
        auto kept = action;  // it may destroy this
        kept(this);
    }
    std::function<void(PBTestWorker*)> action;

  protected:
    PBTestWorker() = default;
    ~PBTestWorker() = default;
};

// Counts instead of sending.
class PBTestCountingQueue : public PBIdleQueue {
    PELVOR_CLASS(PBTestCountingQueue, PBIdleQueue);

  public:
    void sendIdleToObject(id) override { ++served; }
    int served = 0;

  protected:
    PBTestCountingQueue() = default;
    ~PBTestCountingQueue() = default;
};

PELVOR_DEFINE_CLASS(PBTestCountingQueue, idleQueueTestLibrary) {}
PELVOR_DEFINE_CLASS(PBTestWorker, idleQueueTestLibrary) { methods.instance<"work", &PBTestWorker::work>(); }
constexpr Class* kClasses[] = {&PBTestWorker::classRecord, &PBTestCountingQueue::classRecord};
constinit Library idleQueueTestLibrary{"IdleQueueTest", {}, kClasses, {}};

bool turn(NSString* mode = NSDefaultRunLoopMode) {
    return NSRunLoop::currentRunLoop()->runMode_beforeDate(mode, NSDate::distantPast());
}

void idle() {
    while (turn()) continue;
}

class PBIdleQueueTest : public ::testing::Test {
  protected:
    ~PBIdleQueueTest() override {
        first->invalidate();
        second->invalidate();
        idle();
    }
    Retained<PBTestWorker> worker(const char* name) {
        auto made = make<PBTestWorker>();
        made->action = [this, name](id) { served += name; };
        return made;
    }

    std::string served;
    Retained<PBIdleQueue> first = PBIdleQueue::initWithSelector("work"_sel);
    Retained<PBIdleQueue> second = PBIdleQueue::initWithSelector("work"_sel);
    Retained<PBTestWorker> a = worker("a"), b = worker("b"), c = worker("c");
};

TEST_F(PBIdleQueueTest, QueuesTakeTurnsOneObjectAnIdleMoment) {
    for (int i = 0; i < 3; ++i) first->addObject(a);
    first->addObject(b);
    second->addObject(c);
    EXPECT_EQ(first->count(), 2u);
    EXPECT_EQ(a->retainCount(), 1u);
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

TEST_F(PBIdleQueueTest, ServesNothingInAnotherMode) {
    first->addObject(a);
    for (int i = 0; i < 3; ++i) turn(u"PBTestModalMode"_ns);
    EXPECT_EQ(served, "");
    turn();
    EXPECT_EQ(served, "a");
}

TEST_F(PBIdleQueueTest, ObjectsChangeQueuesInTheMiddleOfTheirTurn) {
    const struct {
        const char* name;
        std::function<void(id)> action;  // of a, the first of a queue; b waits in it, c in the second
        const char* expected;
    } cases[] = {
        {"adds itself again", [&](id self) { first->addObject(self); }, "acba"},
        {"moves to the other queue", [&](id self) { second->addObject(self); }, "acba"},
        {"adds and removes itself", [&](id self) { first->addObject(self), first->removeObject(self); },
         "acb"},
        {"destroys itself", [&](id) { a = nullptr; }, "acb"},
        {"destroys one to come", [&](id) { first->removeObject(b), b = nullptr; }, "ac"},
        {"destroys one in the other queue", [&](id) { second->removeObject(c), c = nullptr; }, "ab"},
        {"flushes its queue", [&](id) { first->flush(); }, "ac"},
        {"invalidates its queue", [&](id) { first->invalidate(); }, "ac"},
        {"invalidates the other queue", [&](id) { second->invalidate(); }, "ab"},
        {"lets go of both queues", [&](id) { first = second = nullptr; }, "acb"},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        first = PBIdleQueue::initWithSelector("work"_sel);
        second = PBIdleQueue::initWithSelector("work"_sel);
        served = "";
        for (auto* object : {&a, &b, &c}) *object = worker(object == &b ? "b" : "c");
        a->action = [&](id self) {
            served += "a";
            if (served == "a") row.action(self);
        };
        first->addObject(a);
        first->addObject(b);
        second->addObject(c);
        idle();
        EXPECT_EQ(served, row.expected);
    }
    first = PBIdleQueue::initWithSelector("work"_sel);
    second = PBIdleQueue::initWithSelector("work"_sel);
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
    EXPECT_EQ(first->count(), 0u);
    EXPECT_EQ(first->description()->toUTF8(), "PBIdleQueue<" + addressOf(first) + "> {work, objects=0}");
}

TEST_F(PBIdleQueueTest, AfterAnExceptionObjectsWaitForTheNextAddition) {
    a->action = [](id) { throw NSException("PBTestException", "as asked"); };
    first->addObject(a);
    first->addObject(b);
    EXPECT_THROW(turn(), NSException);
    EXPECT_FALSE(first->containsObject(a));
    idle();
    EXPECT_EQ(served, "");
    first->addObject(c);
    idle();
    EXPECT_EQ(served, "bc");
}

// Deliberately: the scheduler is told of additions to an empty line only.
TEST_F(PBIdleQueueTest, AfterAnExceptionQueuesInLineWaitUntilItIsEmptyAndAQueueComes) {
    a->action = [](id) { throw NSException("PBTestException", "as asked"); };
    first->addObject(a);
    second->addObject(c);
    EXPECT_THROW(turn(), NSException);
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
    a->retain();
    a->retain();
    for (int i = 0; i < 2; ++i) send(a, "releaseWhenIdle"_sel);
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
        bool isScheduled = false;
    };
    std::vector<Line> lines(3);
    std::vector<Line*> turns;
    std::vector<Retained<PBTestWorker>> all(9);
    PBTestWorker* expected = nullptr;
    std::function<void(PBTestWorker*)> serve;
    auto schedule = [&](Line& line) {
        if (!std::exchange(line.isScheduled, true)) turns.push_back(&line);
    };
    auto change = [&] {
        Line& line = lines[random() % lines.size()];
        auto& object = all[random() % all.size()];
        if (!object) {
            object = make<PBTestWorker>();
            object->action = serve;
        }
        bool isLeaving = random() % 3 == 0;
        if (isLeaving && random() % 2) {
            for (Line& each : lines) {
                each.queue->removeObject(object);
                std::erase(each.objects, object.get());
            }
            if (object != expected) object = nullptr;
        } else if (isLeaving) {
            line.queue->removeObject(object);
            std::erase(line.objects, object.get());
        } else {
            line.queue->addObject(object);
            if (std::find(line.objects.begin(), line.objects.end(), object.get()) == line.objects.end())
                line.objects.push_back(object);
            schedule(line);
        }
    };
    serve = [&](PBTestWorker* self) {
        ASSERT_EQ(self, expected);
        served = "yes";
        change();
        expected = nullptr;
    };
    for (int step = 0, steps = randomSteps(60'000); step < steps; ++step) {
        AutoreleasePool inner;
        if (random() % 2) change();
        if (step % 2 || turns.empty()) continue;
        Line& line = *turns.front();
        turns.erase(turns.begin());
        line.isScheduled = false;
        expected = line.objects.empty() ? nullptr : line.objects.front();
        served = expected ? "" : "yes";
        if (expected) line.objects.erase(line.objects.begin());
        bool hadObject = expected;
        turn();
        ASSERT_EQ(served, "yes");
        if (hadObject && !line.objects.empty()) schedule(line);
        for (Line& each : lines) ASSERT_EQ(each.queue->count(), each.objects.size());
    }
    for (Line& line : lines) line.queue->invalidate();
}

}  // namespace
}  // namespace pelvor::testing
