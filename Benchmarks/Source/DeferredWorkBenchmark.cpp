// SPDX-License-Identifier: Apache-2.0
// Weak references, observer sets, lists, idle items and posts through the changed default centre, beside the
// standard library's weak pointers and lists, and the idle sources, posted events and signals of GLib and Qt.
#include <benchmark/benchmark.h>
#include <glib.h>

#include <iterator>
#include <list>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "BaseLibrary.h"
#include "Foundation/NSNotification.h"
#include "Foundation/NSRunLoop.h"
#include "PBIdleQueue.h"
#include "PBLinkedList.h"
#include "PBLinkedListEnumerator.h"
#include "PBNotificationCenter.h"
#include "PBObserverSet.h"
#include "PBWeakReference.h"
#include "QtPeers.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Registry.h"

namespace pelvor {

extern Library benchmarkLibrary;

class Worker : public NSObject {
    PELVOR_CLASS(Worker, NSObject);

  public:
    void work() { ++worked; }
    void hear(NSNotification* notification) { worked += notification != nullptr; }
    std::uint64_t worked = 0;

  protected:
    Worker() = default;
    ~Worker() = default;
};

namespace {

constexpr Library* kDependencies[] = {&baseLibrary};
constexpr Class* kClasses[] = {&Worker::classRecord};

// The standard library counts without atomics until there has been a second thread.
void beMultiThreaded() {
    static const bool once = (std::thread([] {}).join(), true);
    (void)once;
}

std::vector<Retained<Worker>> workers(std::int64_t count) {
    std::vector<Retained<Worker>> made(static_cast<std::size_t>(count));
    for (auto& worker : made) worker = make<Worker>();
    return made;
}

void weakReference(benchmark::State& state) {
    beMultiThreaded();
    auto worker = make<Worker>();
    for (auto _ : state) benchmark::DoNotOptimize(PBWeakReference::initWithObject(worker).get());
}

void peerWeakPointer(benchmark::State& state) {
    beMultiThreaded();
    auto shared = std::make_shared<int>(1);
    for (auto _ : state) benchmark::DoNotOptimize(std::weak_ptr<int>(shared));
}

void observerSetLookUp(benchmark::State& state) {
    auto set = PBObserverSet::init();
    auto members = workers(state.range(0));
    for (auto& member : members) set->addObserver(member);
    for (std::size_t i = 0; auto _ : state) {
        benchmark::DoNotOptimize(set->containsObserver(members[i]));
        if (++i == members.size()) i = 0;
    }
}

void postThroughChangedCentre(benchmark::State& state) {
    constexpr NSString* kName = u"PageDidChangeNotification"_ns;
    AutoreleasePool pool;
    PBNotificationCenter::doPosing();
    NSNotificationCenter* centre = NSNotificationCenter::defaultCenter();
    auto listeners = workers(state.range(0)), others = workers(state.range(1));
    for (std::size_t i = 0; i < others.size(); ++i)
        centre->addObserver_selector_name_object(
            others[i], "hear:"_sel, NSString::ofUTF8("Other" + std::to_string(i) + "Notification"), nullptr);
    for (auto& listener : listeners)
        centre->addObserver_selector_name_object(listener, "hear:"_sel, kName, nullptr);
    for (auto _ : state) centre->postNotificationName_object(kName, nullptr);
    for (auto* crowd : {&listeners, &others})
        for (auto& listener : *crowd) centre->removeObserver(listener);
}

constexpr int kItems = 10'000;

void idleItem(benchmark::State& state) {
    AutoreleasePool pool;
    auto queue = PBIdleQueue::initWithSelector("work"_sel);
    auto items = workers(kItems);
    for (auto _ : state) {
        for (auto& item : items) queue->addObject(item);
        while (queue->count() > 0)
            NSRunLoop::currentRunLoop()->runMode_beforeDate(NSDefaultRunLoopMode, nullptr);
    }
    state.SetItemsProcessed(state.iterations() * kItems);
}

void peerGLibIdle(benchmark::State& state) {
    int worked = 0;
    GSourceFunc work = [](void* count) -> gboolean {
        ++*static_cast<int*>(count);
        return G_SOURCE_REMOVE;
    };
    for (auto _ : state) {
        for (int i = worked = 0; i < kItems; ++i) g_idle_add(work, &worked);
        while (worked < kItems) g_main_context_iteration(nullptr, FALSE);
    }
    state.SetItemsProcessed(state.iterations() * kItems);
}

// MARK: Lists

// A list is filled, every other node goes, and the list ends.

void listFilledAndThinned(benchmark::State& state) {
    auto object = make<Worker>();
    for (auto _ : state) {
        AutoreleasePool pool;
        auto list = PBLinkedList::init();
        for (std::int64_t i = 0; i < state.range(0); ++i) list->push(object);
        PBLinkedListEnumerator* walk = list->objectEnumerator();
        for (bool isLeaving = false; walk->nextObject(); isLeaving = !isLeaving)
            if (isLeaving) walk->removeLastObject();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void peerStandardList(benchmark::State& state) {
    auto object = make<Worker>();
    for (auto _ : state) {
        std::list<Retained<Object>> list;
        for (std::int64_t i = 0; i < state.range(0); ++i) list.push_front(object);
        bool isLeaving = false;
        for (auto at = list.begin(); at != list.end(); isLeaving = !isLeaving)
            at = isLeaving ? list.erase(at) : std::next(at);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(weakReference);
BENCHMARK(peerWeakPointer);
BENCHMARK(observerSetLookUp)->Arg(4)->Arg(50);
BENCHMARK(postThroughChangedCentre)->ArgsProduct({{1, 10, 100}, {0, 10'000}});
BENCHMARK(peerQtSignal)->Arg(1)->Arg(10)->Arg(100);
BENCHMARK(idleItem);
BENCHMARK(peerGLibIdle);
BENCHMARK(peerQtPostedEvent)->Arg(kItems);
BENCHMARK(listFilledAndThinned)->Arg(10)->Arg(1000);
BENCHMARK(peerStandardList)->Arg(10)->Arg(1000);

}  // namespace

constinit Library benchmarkLibrary{"DeferredWorkBenchmark", kDependencies, kClasses, {}};

PELVOR_DEFINE_CLASS(Worker, benchmarkLibrary) {
    methods.instance<"work", &Worker::work>();
    methods.instance<"hear:", &Worker::hear>();
}

}  // namespace pelvor
