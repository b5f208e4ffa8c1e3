// SPDX-License-Identifier: Apache-2.0
// Posting notifications beside Qt's signals and centres made by hand: a hash table of callbacks, and a bare
// list.
#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSNotificationCenter.h"
#include "QtPeers.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Registry.h"

namespace pelvor {

extern Library benchmarkLibrary;

class Listener : public NSObject {
    PELVOR_CLASS(Listener, NSObject);

  public:
    void hear(NSNotification* notification) { heard += notification != nullptr; }

    std::uint64_t heard = 0;

  protected:
    Listener() = default;
    ~Listener() = default;
};

namespace {

constexpr Library* kDependencies[] = {&foundationLibrary};
constexpr Class* kClasses[] = {&Listener::classRecord};

// MARK: Ours

// A centre with so many listeners to one name, also among other names that have one each.
class Hall {
  public:
    Hall(std::int64_t listeners, std::int64_t otherNames, id sender = nullptr) {
        AutoreleasePool pool;
        for (std::int64_t i = 0; i < otherNames; ++i)
            add(NSString::ofUTF8("Other" + std::to_string(i) + "Notification"), nullptr);
        for (std::int64_t i = 0; i < listeners; ++i) add(u"PageDidChangeNotification"_ns, sender);
    }
    ~Hall() {
        for (auto& listener : _listeners) centre->removeObserver(listener);
    }

    Retained<NSNotificationCenter> centre = NSNotificationCenter::init();

  private:
    void add(NSString* name, id sender) {
        _listeners.push_back(make<Listener>());
        centre->addObserver_selector_name_object(_listeners.back(), "hear:"_sel, name, sender);
    }

    std::vector<Retained<Listener>> _listeners;
};

void postByName(benchmark::State& state) {
    Hall hall(state.range(0), state.range(1));
    for (auto _ : state) hall.centre->postNotificationName_object(u"PageDidChangeNotification"_ns, nullptr);
}

void postByNameWithSender(benchmark::State& state) {
    Hall hall(state.range(0), state.range(1));
    auto sender = make<Listener>();
    for (auto _ : state) hall.centre->postNotificationName_object(u"PageDidChangeNotification"_ns, sender);
}

void postBySender(benchmark::State& state) {
    auto sender = make<Listener>();
    Hall hall(state.range(0), state.range(1), sender);
    for (auto _ : state) hall.centre->postNotificationName_object(u"PageDidChangeNotification"_ns, sender);
}

void addAndRemove(benchmark::State& state) {
    Hall hall(state.range(0), 0);
    auto listener = make<Listener>();
    for (auto _ : state) {
        hall.centre->addObserver_selector_name_object(listener, "hear:"_sel, u"PageDidChangeNotification"_ns,
                                                      nullptr);
        hall.centre->removeObserver(listener);
    }
}

// MARK: Peers

using Callback = std::function<void(const std::string& name, void* sender)>;

// One thread, one name and sender a list, no order across them, no change while it calls.
class HashCentre {
  public:
    void add(const std::string& name, Callback callback) { _callbacks[name].push_back(std::move(callback)); }
    void post(const std::string& name, void* sender) {
        auto found = _callbacks.find(name);
        if (found == _callbacks.end()) return;
        for (const Callback& callback : found->second) callback(name, sender);
    }

  private:
    std::unordered_map<std::string, std::vector<Callback>> _callbacks;
};

void peerHashCentre(benchmark::State& state) {
    HashCentre centre;
    auto listener = make<Listener>();
    auto hear = [&](const std::string&, void*) { benchmark::DoNotOptimize(++listener->heard); };
    for (std::int64_t i = 0; i < state.range(1); ++i)
        centre.add("Other" + std::to_string(i) + "Notification", hear);
    const std::string name = "PageDidChangeNotification";
    for (std::int64_t i = 0; i < state.range(0); ++i) centre.add(name, hear);
    for (auto _ : state) centre.post(name, nullptr);
}

void peerFunctionList(benchmark::State& state) {
    auto listener = make<Listener>();
    std::vector<Callback> callbacks(static_cast<std::size_t>(state.range(0)), [&](const std::string&, void*) {
        benchmark::DoNotOptimize(++listener->heard);
    });
    const std::string name = "PageDidChangeNotification";
    for (auto _ : state)
        for (const Callback& callback : callbacks) callback(name, nullptr);
}

void crowds(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"observers", "otherNames"});
    for (std::int64_t otherNames : {0, 10'000})
        for (std::int64_t observers : {0, 1, 10, 100}) benchmark->Args({observers, otherNames});
}

BENCHMARK(postByName)->Apply(crowds);
BENCHMARK(postByNameWithSender)->Apply(crowds);
BENCHMARK(postBySender)->Apply(crowds);
BENCHMARK(peerHashCentre)->Apply(crowds);
BENCHMARK(peerQtSignal)->Arg(1)->Arg(10)->Arg(100);
BENCHMARK(peerFunctionList)->Arg(1)->Arg(10)->Arg(100);
BENCHMARK(addAndRemove)->Arg(0)->Arg(100)->Arg(10'000);

}  // namespace

constinit Library benchmarkLibrary{"NotificationBenchmark", kDependencies, kClasses, {}};

PELVOR_DEFINE_CLASS(Listener, benchmarkLibrary) { methods.instance<"hear:", &Listener::hear>(); }

}  // namespace pelvor
