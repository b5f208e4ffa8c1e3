// SPDX-License-Identifier: Apache-2.0
// Collections beside the standard library's, over the same objects, with the same hashes and comparisons.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSMutableSet.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

struct HashOf {
    std::size_t operator()(const Retained<Object>& object) const { return object->hash(); }
};
struct SameAs {
    bool operator()(const Retained<Object>& a, const Retained<Object>& b) const {
        return a == b || a->isEqual(b);
    }
};
using StandardSet = std::unordered_set<Retained<Object>, HashOf, SameAs>;
using StandardMap = std::unordered_map<Retained<Object>, Retained<Object>, HashOf, SameAs>;

// Strings that share no object with another call's, in an order of their own.
std::vector<Retained<Object>> words(int64_t count, unsigned seed) {
    AutoreleasePool pool;
    std::vector<Retained<Object>> result;
    for (int64_t i = 0; i < count; ++i)
        result.push_back(
            Retained<Object>::retaining(NSString::ofUTF8("word number " + std::to_string(i * 7919))));
    std::shuffle(result.begin(), result.end(), std::mt19937(seed));
    return result;
}

std::vector<Retained<Object>> objects(int64_t count) {
    std::vector<Retained<Object>> result;
    for (int64_t i = 0; i < count; ++i) result.push_back(make<NSObject>());
    return result;
}

void perItem(benchmark::State& state) { state.SetItemsProcessed(state.iterations() * state.range(0)); }

// MARK: Membership

void setFind(benchmark::State& state, const std::vector<Retained<Object>>& members,
             const std::vector<Retained<Object>>& probes) {
    auto set = NSMutableSet::init();
    for (auto& member : members) set->addObject(member);
    for (auto _ : state)
        for (auto& probe : probes) benchmark::DoNotOptimize(set->containsObject(probe));
    perItem(state);
}

void standardFind(benchmark::State& state, const std::vector<Retained<Object>>& members,
                  const std::vector<Retained<Object>>& probes) {
    StandardSet set(members.begin(), members.end());
    for (auto _ : state)
        for (auto& probe : probes) benchmark::DoNotOptimize(set.contains(probe));
    perItem(state);
}

void SetFindsWords(benchmark::State& state) {
    setFind(state, words(state.range(0), 1), words(state.range(0), 2));
}
void StandardSetFindsWords(benchmark::State& state) {
    standardFind(state, words(state.range(0), 1), words(state.range(0), 2));
}
BENCHMARK(SetFindsWords)->Arg(6)->Arg(100)->Arg(10000);
BENCHMARK(StandardSetFindsWords)->Arg(6)->Arg(100)->Arg(10000);

void SetFindsObjects(benchmark::State& state) {
    auto members = objects(state.range(0));
    setFind(state, members, members);
}
void StandardSetFindsObjects(benchmark::State& state) {
    auto members = objects(state.range(0));
    standardFind(state, members, members);
}
BENCHMARK(SetFindsObjects)->Arg(6)->Arg(100)->Arg(10000);
BENCHMARK(StandardSetFindsObjects)->Arg(6)->Arg(100)->Arg(10000);

// MARK: Filling and walking

void SetFillsAndEmpties(benchmark::State& state) {
    auto members = objects(state.range(0));
    for (auto _ : state) {
        auto set = NSMutableSet::init();
        for (auto& member : members) set->addObject(member);
        for (auto& member : members) set->removeObject(member);
    }
    perItem(state);
}
void StandardSetFillsAndEmpties(benchmark::State& state) {
    auto members = objects(state.range(0));
    for (auto _ : state) {
        StandardSet set;
        for (auto& member : members) set.insert(member);
        for (auto& member : members) set.erase(member);
    }
    perItem(state);
}
BENCHMARK(SetFillsAndEmpties)->Arg(6)->Arg(100)->Arg(10000);
BENCHMARK(StandardSetFillsAndEmpties)->Arg(6)->Arg(100)->Arg(10000);

void DictionaryFills(benchmark::State& state) {
    auto keys = words(state.range(0), 1);
    for (auto _ : state) {
        auto dictionary = NSMutableDictionary::init();
        for (auto& key : keys) dictionary->setObject_forKey(key, key);
        benchmark::DoNotOptimize(dictionary->count());
    }
    perItem(state);
}
void StandardMapFills(benchmark::State& state) {
    auto keys = words(state.range(0), 1);
    for (auto _ : state) {
        StandardMap map;
        for (auto& key : keys) map.insert_or_assign(key, key);
        benchmark::DoNotOptimize(map.size());
    }
    perItem(state);
}
BENCHMARK(DictionaryFills)->Arg(6)->Arg(100)->Arg(10000);
BENCHMARK(StandardMapFills)->Arg(6)->Arg(100)->Arg(10000);

void DictionaryIsWalked(benchmark::State& state) {
    auto keys = words(state.range(0), 1);
    auto dictionary = NSMutableDictionary::init();
    for (auto& key : keys) dictionary->setObject_forKey(key, key);
    for (auto _ : state)
        for (auto [key, object] : dictionary) benchmark::DoNotOptimize(object);
    perItem(state);
}
void StandardMapIsWalked(benchmark::State& state) {
    StandardMap map;
    for (auto& key : words(state.range(0), 1)) map.insert_or_assign(key, key);
    for (auto _ : state)
        for (auto& [key, object] : map) benchmark::DoNotOptimize(object.get());
    perItem(state);
}
BENCHMARK(DictionaryIsWalked)->Arg(10000);
BENCHMARK(StandardMapIsWalked)->Arg(10000);

void ArrayFills(benchmark::State& state) {
    auto members = objects(state.range(0));
    for (auto _ : state) {
        auto array = NSMutableArray::init();
        for (auto& member : members) array->addObject(member);
        benchmark::DoNotOptimize(array->count());
    }
    perItem(state);
}
void StandardVectorFills(benchmark::State& state) {
    auto members = objects(state.range(0));
    for (auto _ : state) {
        std::vector<Retained<Object>> vector;
        for (auto& member : members) vector.push_back(member);
        benchmark::DoNotOptimize(vector.size());
    }
    perItem(state);
}
BENCHMARK(ArrayFills)->Arg(10000);
BENCHMARK(StandardVectorFills)->Arg(10000);

void ArrayIsWalked(benchmark::State& state) {
    auto array = NSMutableArray::init();
    for (auto& member : objects(state.range(0))) array->addObject(member);
    for (auto _ : state)
        for (id object : array) benchmark::DoNotOptimize(object);
    perItem(state);
}
void ArrayIsWalkedByEnumerator(benchmark::State& state) {
    AutoreleasePool pool;
    auto array = NSMutableArray::init();
    for (auto& member : objects(state.range(0))) array->addObject(member);
    for (auto _ : state) {
        AutoreleasePool inner;
        for (id object : array->objectEnumerator()) benchmark::DoNotOptimize(object);
    }
    perItem(state);
}
BENCHMARK(ArrayIsWalked)->Arg(10000);
BENCHMARK(ArrayIsWalkedByEnumerator)->Arg(10000);

// Objects enter at one end and leave at the other.
void ArrayAsQueue(benchmark::State& state) {
    auto members = objects(state.range(0));
    auto array = NSMutableArray::init();
    for (auto& member : members) array->addObject(member);
    for (auto _ : state) {
        array->addObject(members[0]);
        array->removeObjectAtIndex(0);
    }
}
BENCHMARK(ArrayAsQueue)->Arg(10000);

// MARK: Values

void NumberIsMade(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(NSNumber::initWithDouble(2.5));
}
BENCHMARK(NumberIsMade);

void BoxedRangesAreCompared(benchmark::State& state) {
    AutoreleasePool pool;
    NSValue* one = NSValue::valueWithRange({3, 4});
    NSValue* two = NSValue::valueWithRange({3, 4});
    for (auto _ : state) benchmark::DoNotOptimize(one->isEqual(two));
}
BENCHMARK(BoxedRangesAreCompared);

}  // namespace
}  // namespace pelvor
