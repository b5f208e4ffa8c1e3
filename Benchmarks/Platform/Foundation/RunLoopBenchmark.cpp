// SPDX-License-Identifier: Apache-2.0
// A turn of the run loop, timers and calls to the main thread, beside the bare system calls and Qt's event
// loop.
#include <benchmark/benchmark.h>
#include <sys/epoll.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QObject>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <map>
#include <thread>

#include "BaseLibrary.h"
#include "FileWatcher/ZWMainThreadProxy.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSTimer.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"
#include "Runtime/Registry.h"

namespace pelvor {

extern Library benchmarkLibrary;

class Servant : public NSObject {
    PELVOR_CLASS(Servant, NSObject);

  public:
    std::int64_t served = 0;

    void read(int descriptor) {
        char byte;
        served += ::read(descriptor, &byte, 1);
    }
    void tick(NSTimer*) { ++served; }
    int add(int number) { return static_cast<int>(served += number); }

  protected:
    Servant() = default;
    ~Servant() = default;
};

namespace {

constexpr Library* kDependencies[] = {&baseLibrary};
constexpr Class* kClasses[] = {&Servant::classRecord};

class Pipe {
  public:
    Pipe() {
        if (pipe(_ends) != 0) std::abort();
    }
    ~Pipe() {
        close(_ends[0]);
        close(_ends[1]);
    }
    int readEnd() const { return _ends[0]; }
    void put() const {
        if (write(_ends[1], "x", 1) != 1) std::abort();
    }
    void take() const {
        char byte;
        if (::read(_ends[0], &byte, 1) != 1) std::abort();
    }

  private:
    int _ends[2];
};

bool turnUntil(NSDate* limit) {
    return NSRunLoop::currentRunLoop()->runMode_beforeDate(NSDefaultRunLoopMode, limit);
}

// MARK: A ready descriptor

void turnWithReadyDescriptor(benchmark::State& state) {
    AutoreleasePool pool;
    Pipe pipe;
    auto servant = make<Servant>();
    NSRunLoop* loop = NSRunLoop::currentRunLoop();
    loop->addDescriptor_events_target_selector_forMode(pipe.readEnd(), NSDescriptorReadable, servant,
                                                       "read:"_sel, NSDefaultRunLoopMode);
    for (auto _ : state) {
        pipe.put();
        turnUntil(nullptr);
    }
    if (servant->served != state.iterations()) state.SkipWithError("a byte was not read");
    loop->removeDescriptor_forMode(pipe.readEnd(), NSDefaultRunLoopMode);
}

void peerBareEpoll(benchmark::State& state) {
    Pipe pipe;
    int poll = epoll_create1(EPOLL_CLOEXEC);
    epoll_event event{EPOLLIN, {}};
    epoll_ctl(poll, EPOLL_CTL_ADD, pipe.readEnd(), &event);
    for (auto _ : state) {
        pipe.put();
        epoll_event events[16];
        if (epoll_wait(poll, events, 16, -1) != 1) std::abort();
        pipe.take();
    }
    close(poll);
}

// MARK: Timers

constexpr std::int64_t kTimers = 100'000;

// Moments scattered over less time than it takes to make the timers, so that nothing waits.
class Moments {
  public:
    Moments() {
        std::uint32_t random = 1;
        for (double& moment : _moments)
            moment = 0.01 * ((random = random * 1664525 + 1013904223) >> 8) / (1 << 24);
    }
    double operator[](std::int64_t i) const { return _moments[static_cast<std::size_t>(i)]; }

  private:
    std::array<double, kTimers> _moments;
};

void timersAddedAndFired(benchmark::State& state) {
    static const Moments moments;
    auto servant = make<Servant>();
    for (auto _ : state) {
        AutoreleasePool pool;
        servant->served = 0;
        for (std::int64_t i = 0; i < kTimers; ++i)
            NSTimer::scheduledTimerWithTimeInterval_target_selector_userInfo_repeats(
                moments[i], servant, "tick:"_sel, nullptr, false);
        while (servant->served < kTimers) turnUntil(nullptr);
    }
    state.SetItemsProcessed(state.iterations() * kTimers);
}

// An ordered map of moments with a function each.
void peerTimerMap(benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    static const Moments moments;
    for (auto _ : state) {
        std::int64_t fired = 0;
        std::multimap<Clock::time_point, std::function<void()>> timers;
        for (std::int64_t i = 0; i < kTimers; ++i)
            timers.emplace(Clock::now() + std::chrono::nanoseconds(std::int64_t(moments[i] * 1e9)),
                           [&fired] { ++fired; });
        while (!timers.empty()) {
            for (auto now = Clock::now(); !timers.empty() && timers.begin()->first <= now;) {
                auto function = std::move(timers.begin()->second);
                timers.erase(timers.begin());
                function();
            }
        }
        benchmark::DoNotOptimize(fired);
    }
    state.SetItemsProcessed(state.iterations() * kTimers);
}

// MARK: Calls from another thread

constexpr std::int64_t kCalls = 1000;

// Calls come from a second thread while this one serves them, `serve(isDone)`, until all are done.
template <class Call, class Serve, class End>
void callsFromAnotherThread(benchmark::State& state, Call call, Serve serve, End end) {
    for (auto _ : state) {
        std::atomic<bool> isDone{false};
        std::thread caller([&] {
            for (std::int64_t i = 0; i < kCalls; ++i) call();
            isDone = true;
            end();
        });
        serve(isDone);
        caller.join();
    }
    state.SetItemsProcessed(state.iterations() * kCalls);
}

void proxiedCall(benchmark::State& state) {
    AutoreleasePool pool;
    auto servant = make<Servant>();
    auto proxy = copyMainThreadProxy(servant);
    auto serve = [](std::atomic<bool>& isDone) {
        while (!isDone) turnUntil(nullptr);
    };
    callsFromAnotherThread(
        state, [&] { benchmark::DoNotOptimize(send<int>(proxy, "add:"_sel, 1)); }, serve,
        [] { NSRunLoop::mainRunLoop()->wakeUp(); });
    if (servant->served != state.iterations() * kCalls) state.SkipWithError("a call was lost");
}

void peerPipeRoundTrip(benchmark::State& state) {
    Pipe there, back;
    auto call = [&] {
        there.put();
        back.take();
    };
    auto serve = [&](std::atomic<bool>&) {
        for (std::int64_t i = 0; i < kCalls; ++i) {
            there.take();
            back.put();
        }
    };
    callsFromAnotherThread(state, call, serve, [] {});
}

QCoreApplication& application() {
    static int count = 1;
    static char name[] = "RunLoopBenchmark", *arguments[] = {name, nullptr};
    static QCoreApplication* const made = new QCoreApplication(count, arguments);
    return *made;
}

void peerQtBlockingCall(benchmark::State& state) {
    application();
    QObject servant;
    std::int64_t served = 0;
    auto call = [&] {
        std::int64_t result = 0;
        auto add = [&served] { return ++served; };
        QMetaObject::invokeMethod(&servant, add, Qt::BlockingQueuedConnection, &result);
        benchmark::DoNotOptimize(result);
    };
    auto serve = [](std::atomic<bool>& isDone) {
        while (!isDone) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    };
    callsFromAnotherThread(state, call, serve, [&] {
        QMetaObject::invokeMethod(
            &servant, [] {}, Qt::QueuedConnection);
    });
    if (served != state.iterations() * kCalls) state.SkipWithError("a call was lost");
}

BENCHMARK(turnWithReadyDescriptor);
BENCHMARK(peerBareEpoll);
BENCHMARK(timersAddedAndFired)->Unit(benchmark::kMillisecond);
BENCHMARK(peerTimerMap)->Unit(benchmark::kMillisecond);
BENCHMARK(proxiedCall)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(peerPipeRoundTrip)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(peerQtBlockingCall)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace

constinit Library benchmarkLibrary{"RunLoopBenchmark", kDependencies, kClasses, {}};

PELVOR_DEFINE_CLASS(Servant, benchmarkLibrary) {
    methods.instance<"read:", &Servant::read>();
    methods.instance<"tick:", &Servant::tick>();
    methods.instance<"add:", &Servant::add>();
}

}  // namespace pelvor
