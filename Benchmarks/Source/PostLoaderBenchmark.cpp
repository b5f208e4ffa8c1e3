// SPDX-License-Identifier: Apache-2.0
// A load cycle over many classes with many hooks: how long a hook takes.
//
// The post-loader calls an implementation once in the life of the process, so each cycle is measured once:
// the first with all its hooks, those after it with nothing to call. To repeat it, run the program again.
#include <benchmark/benchmark.h>

#include <chrono>
#include <string>

#include "PBPostLoader.h"
#include "Runtime/Message.h"

namespace pelvor {
namespace {

constexpr int kClassCount = 5000;
constexpr int kHooksPerClass = 4;  // one a phase
constexpr int kHookCount = kClassCount * kHooksPerClass;

int calls = 0;

// Bodies differ, so that no two become one function.
template <int N>
void hook(Object*, SEL) {
    calls += 1;
    benchmark::DoNotOptimize(N);
}

using Hook = void (*)(Object*, SEL);

template <int Base, int... I>
void addHooks(Hook* hooks, std::integer_sequence<int, I...>) {
    ((hooks[Base + I] = &hook<Base + I>), ...);
}

template <int... Block>
void addBlocks(Hook* hooks, std::integer_sequence<int, Block...>) {
    (addHooks<Block * 100>(hooks, std::make_integer_sequence<int, 100>()), ...);
}

void makeClasses() {
    static Hook hooks[kHookCount];
    addBlocks(hooks, std::make_integer_sequence<int, kHookCount / 100>());
    const char* phases[kHooksPerClass] = {"performPosing", "didLoad", "activateToolkit",
                                          "becomingMultiThreaded"};
    for (int i = 0; i < kClassCount; ++i) {
        Class* cls = Class::createSubclass(("Class" + std::to_string(i)).c_str(), NSObject::classObject());
        MethodGroup group{"Hooks", {}, nullptr};
        for (int j = 0; j < kHooksPerClass; ++j) {
            auto function = reinterpret_cast<void (*)()>(hooks[i * kHooksPerClass + j]);
            group.methods.push_back(
                {registerSelector(phases[j]), {function, &SignatureFor<void>::object, nullptr}});
        }
        cls->metaclass()->addMethods(std::move(group));
    }
}

void cycle() {
    PBPostLoader::processClassesStartingRegistry(false);
    PBPostLoader::processSelector_initialize("becomingMultiThreaded"_sel, false);
}

void firstCycle(benchmark::State& state) {
    PBPostLoader::isMultiThreaded();
    makeClasses();
    for (auto _ : state) {
        auto start = std::chrono::steady_clock::now();
        cycle();
        state.SetIterationTime(
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    if (calls != kHookCount) state.SkipWithError("not every hook was called once");
    state.SetItemsProcessed(kHookCount);
}
BENCHMARK(firstCycle)->Iterations(1)->Repetitions(1)->UseManualTime()->Unit(benchmark::kMillisecond);

void cycleWithoutNewHooks(benchmark::State& state) {
    for (auto _ : state) cycle();
    if (calls != kHookCount) state.SkipWithError("a hook was called again");
}
BENCHMARK(cycleWithoutNewHooks)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace pelvor
