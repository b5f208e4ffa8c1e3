// SPDX-License-Identifier: Apache-2.0
// The object model beside what C++ offers for the same work.
#include <benchmark/benchmark.h>

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"
#include "Runtime/NSInvocation.h"
#include "Runtime/NSProxy.h"
#include "Runtime/Registry.h"
#include "Runtime/RuntimeLibrary.h"

namespace pelvor {

extern Library benchmarkLibrary;

// Adds to a sum, by a method of its own in each of eight classes.
class Adder : public NSObject {
    PELVOR_CLASS(Adder, NSObject);

  public:
    int add(int x) { return _sum += x; }

  protected:
    Adder() = default;
    ~Adder() = default;
    int _sum = 0;
};

template <int N>
int addTimes(Adder* adder, int x) {
    return adder->add(x * N);
}

template <int N>
Class* adderClass() {
    static Class* const cls = [] {
        Class* made = Class::createSubclass(("Adder" + std::to_string(N)).c_str(), Adder::classObject());
        MethodGroup group;
        group.methods.push_back({"add:"_sel, implementation<"add:", &addTimes<N>>()});
        made->addMethods(std::move(group));
        return made;
    }();
    return cls;
}

class Forwarder : public NSProxy {
    PELVOR_CLASS(Forwarder, NSProxy);

  public:
    static Retained<Forwarder> initWithTarget(Object* target) {
        auto forwarder = make<Forwarder>();
        forwarder->_target.set(target);
        return forwarder;
    }
    NSMethodSignature* methodSignatureForSelector(SEL selector) override {
        return _target->methodSignatureForSelector(selector);
    }
    void forwardInvocation(NSInvocation* invocation) override { invocation->invokeWithTarget(_target); }

  protected:
    Forwarder() = default;
    ~Forwarder() = default;
    Retained<Object> _target;
};

PELVOR_DEFINE_CLASS(Adder, benchmarkLibrary) { methods.instance<"add:", &Adder::add>(); }
PELVOR_DEFINE_CLASS(Forwarder, benchmarkLibrary) {}

constexpr Library* kDependencies[] = {&runtimeLibrary};
constexpr Class* kClasses[] = {&Adder::classRecord, &Forwarder::classRecord};
constinit Library benchmarkLibrary{"Benchmark", kDependencies, kClasses, {}};

namespace {

// MARK: Peers

struct VirtualAdder {
    virtual ~VirtualAdder() = default;
    virtual int add(int x) = 0;
    int sum = 0;
};
template <int N>
struct VirtualAdderOf final : VirtualAdder {
    int add(int x) override { return sum += x * N; }
};

template <int... N>
std::vector<std::unique_ptr<VirtualAdder>> virtualAdders(std::integer_sequence<int, N...>) {
    std::vector<std::unique_ptr<VirtualAdder>> adders;
    (adders.push_back(std::make_unique<VirtualAdderOf<N>>()), ...);
    return adders;
}
template <int... N>
std::vector<Retained<Object>> adders(std::integer_sequence<int, N...>) {
    std::vector<Retained<Object>> made;
    (made.push_back(Retained<Object>::adopting(adderClass<N>()->createInstance())), ...);
    return made;
}

constexpr std::size_t kCalls = 1024;

// MARK: Messages. Each pass makes 1024 calls, over one class or in turn over eight.

void BM_VirtualCall(benchmark::State& state) {
    auto objects = virtualAdders(std::make_integer_sequence<int, 8>{});
    std::size_t mask = static_cast<std::size_t>(state.range(0)) - 1;
    for (auto _ : state)
        for (std::size_t i = 0; i < kCalls; ++i) benchmark::DoNotOptimize(objects[i & mask]->add(3));
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kCalls));
}
BENCHMARK(BM_VirtualCall)->Arg(1)->Arg(8);

void BM_MessageBySelector(benchmark::State& state) {
    auto objects = adders(std::make_integer_sequence<int, 8>{});
    std::size_t mask = static_cast<std::size_t>(state.range(0)) - 1;
    const SEL add = "add:"_sel;
    for (auto _ : state)
        for (std::size_t i = 0; i < kCalls; ++i)
            benchmark::DoNotOptimize(send<int>(objects[i & mask].get(), add, 3));
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kCalls));
}
BENCHMARK(BM_MessageBySelector)->Arg(1)->Arg(8);

void BM_RespondsToSelector(benchmark::State& state) {
    auto objects = adders(std::make_integer_sequence<int, 8>{});
    const SEL selectors[] = {"add:"_sel, "noSuchMessage"_sel};
    for (auto _ : state)
        for (std::size_t i = 0; i < kCalls; ++i)
            benchmark::DoNotOptimize(objects[i & 7]->respondsToSelector(selectors[i & 1]));
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kCalls));
}
BENCHMARK(BM_RespondsToSelector);

void BM_InvocationBuildAndInvoke(benchmark::State& state) {
    auto adder = make<Adder>();
    const SEL add = "add:"_sel;
    for (auto _ : state) {
        auto invocation = NSInvocation::initWithMethodSignature(adder->methodSignatureForSelector(add));
        invocation->setSelector(add);
        invocation->setArgument(2, 3);
        invocation->invokeWithTarget(adder);
        benchmark::DoNotOptimize(invocation->returnValue<int>());
    }
}
BENCHMARK(BM_InvocationBuildAndInvoke);

void BM_FunctionOnHeap(benchmark::State& state) {
    auto adder = std::make_unique<VirtualAdderOf<2>>();
    std::array<void*, 4> bound{adder.get()};
    for (auto _ : state) {
        std::function<int()> call = [bound] { return static_cast<VirtualAdderOf<2>*>(bound[0])->add(3); };
        benchmark::DoNotOptimize(call);
        benchmark::DoNotOptimize(call());
    }
}
BENCHMARK(BM_FunctionOnHeap);

void BM_ForwardedMessage(benchmark::State& state) {
    auto adder = make<Adder>();
    auto forwarder = Forwarder::initWithTarget(adder);
    const SEL add = "add:"_sel;
    for (auto _ : state) benchmark::DoNotOptimize(send<int>(forwarder, add, 3));
}
BENCHMARK(BM_ForwardedMessage);

// MARK: Ownership

void BM_AtomicPair(benchmark::State& state) {
    std::atomic<std::uint32_t> count{1};
    for (auto _ : state) {
        count.fetch_add(1, std::memory_order_relaxed);
        benchmark::DoNotOptimize(count.fetch_sub(1, std::memory_order_acq_rel));
    }
}
BENCHMARK(BM_AtomicPair);

void BM_RetainRelease(benchmark::State& state) {
    auto adder = make<Adder>();
    for (auto _ : state) {
        adder->retain();
        benchmark::DoNotOptimize(adder.get());
        adder->release();
    }
}
BENCHMARK(BM_RetainRelease);

void BM_SharedPointerCopy(benchmark::State& state) {
    auto adder = std::make_shared<VirtualAdderOf<1>>();
    for (auto _ : state) {
        auto copy = adder;
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(BM_SharedPointerCopy);

void BM_MakeObject(benchmark::State& state) {
    for (auto _ : state) {
        auto adder = make<Adder>();
        benchmark::DoNotOptimize(adder.get());
    }
}
BENCHMARK(BM_MakeObject);

void BM_MakeShared(benchmark::State& state) {
    for (auto _ : state) {
        auto adder = std::make_shared<VirtualAdderOf<1>>();
        benchmark::DoNotOptimize(adder.get());
    }
}
BENCHMARK(BM_MakeShared);

constexpr int kMillion = 1000000;

void BM_MillionAutoreleased(benchmark::State& state) {
    for (auto _ : state) {
        AutoreleasePool pool;
        for (int i = 0; i < kMillion; ++i) benchmark::DoNotOptimize(make<Adder>().autorelease());
    }
}
BENCHMARK(BM_MillionAutoreleased)->Unit(benchmark::kMillisecond);

void BM_MillionSharedInVector(benchmark::State& state) {
    for (auto _ : state) {
        std::vector<std::shared_ptr<VirtualAdder>> pool;
        for (int i = 0; i < kMillion; ++i) pool.push_back(std::make_shared<VirtualAdderOf<1>>());
        benchmark::DoNotOptimize(pool.data());
    }
}
BENCHMARK(BM_MillionSharedInVector)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace pelvor
