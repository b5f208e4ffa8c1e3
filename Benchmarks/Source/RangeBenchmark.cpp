// SPDX-License-Identifier: Apache-2.0
// Lists of boxed ranges beside sorting plain structures and beside Boost's interval sets; sorted arrays,
// index sets and float arrays beside the standard library's containers.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <boost/icl/interval_set.hpp>
#include <numeric>
#include <random>
#include <vector>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSValue.h"
#include "NSArray-PelvorAdditions.h"
#include "NSIndexSet-PelvorAdditions.h"
#include "PBFloatArray.h"
#include "PBRangeUtil.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

using Ranges = std::vector<NSRange>;
using Intervals = boost::icl::interval_set<std::uint32_t>;

constexpr std::size_t kMany = 1'000'000;

enum class Shape { sparse, dense, sorted };

// Sparse ranges hardly ever meet; dense ones mostly do; sorted ones are a normalised list.
Ranges rangesOf(Shape shape, std::size_t count = kMany, unsigned seed = 1) {
    std::mt19937 random(seed);
    Ranges ranges(count);
    NSUInteger place = 0;
    for (NSRange& range : ranges) {
        NSUInteger length = 1 + random() % 10;
        if (shape == Shape::sorted)
            range = {place, length};
        else
            range = {static_cast<NSUInteger>(random() % (shape == Shape::sparse ? 2'000'000'000 : 4'000'000)),
                     length};
        place += length + 1 + random() % 50;
    }
    return ranges;
}

Retained<NSMutableArray> boxed(const Ranges& ranges) {
    AutoreleasePool pool;
    auto list = NSMutableArray::initWithCapacity(static_cast<NSUInteger>(ranges.size()));
    for (NSRange range : ranges) list->addObject(NSValue::valueWithRange(range));
    return list;
}

void perItem(benchmark::State& state, std::size_t count) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count));
}

// MARK: Normalising

Ranges mergedAfterSorting(Ranges ranges) {
    std::sort(ranges.begin(), ranges.end(), [](NSRange a, NSRange b) { return a.location < b.location; });
    std::size_t last = 0;
    for (std::size_t i = 1; i < ranges.size(); ++i) {
        NSRange& current = ranges[last];
        if (ranges[i].location <= NSMaxRange(current))
            current.length = std::max(NSMaxRange(current), NSMaxRange(ranges[i])) - current.location;
        else
            ranges[++last] = ranges[i];
    }
    ranges.resize(last + 1);
    return ranges;
}

Intervals intervalsOf(const Ranges& ranges) {
    Intervals intervals;
    for (NSRange range : ranges) intervals.add(Intervals::interval_type(range.location, NSMaxRange(range)));
    return intervals;
}

// Lists of boxes that somebody made one by one, and lists as the library answers them.
enum class Maker { user, library };

Retained<NSArray> listOf(const Ranges& ranges, Maker maker) {
    AutoreleasePool pool;
    auto list = boxed(ranges);
    if (maker == Maker::user) return list;
    return Retained<NSArray>::retaining(PBNormalizeRanges(list, true));
}

// The whole life of the result is measured, its end included, here and with the peers.
void NormalizeBoxed(benchmark::State& state, Shape shape, Maker maker) {
    auto list = listOf(rangesOf(shape), maker);
    for (auto _ : state) {
        AutoreleasePool pool;
        benchmark::DoNotOptimize(PBNormalizeRanges(list, true)->count());
    }
    perItem(state, kMany);
}
// Every box of the result is asked for.
void NormalizeBoxedAndRead(benchmark::State& state) {
    auto list = boxed(rangesOf(Shape::sorted));
    for (auto _ : state) {
        AutoreleasePool pool;
        NSUInteger sum = 0;
        for (id box : PBNormalizeRanges(list, true)) sum += static_cast<NSValue*>(box)->rangeValue().length;
        benchmark::DoNotOptimize(sum);
    }
    perItem(state, kMany);
}
void ListOfBoxesMade(benchmark::State& state) {
    Ranges ranges = rangesOf(Shape::sorted);
    for (auto _ : state) benchmark::DoNotOptimize(boxed(ranges)->count());
    perItem(state, kMany);
}
void NormalizeStdSort(benchmark::State& state, Shape shape) {
    Ranges ranges = rangesOf(shape);
    for (auto _ : state) benchmark::DoNotOptimize(mergedAfterSorting(ranges).size());
    perItem(state, kMany);
}
void NormalizeIntervalSet(benchmark::State& state, Shape shape) {
    Ranges ranges = rangesOf(shape);
    for (auto _ : state) benchmark::DoNotOptimize(intervalsOf(ranges).iterative_size());
    perItem(state, kMany);
}
BENCHMARK_CAPTURE(NormalizeBoxed, sparse, Shape::sparse, Maker::user)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(NormalizeStdSort, sparse, Shape::sparse)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(NormalizeIntervalSet, sparse, Shape::sparse)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(NormalizeBoxed, dense, Shape::dense, Maker::user)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(NormalizeStdSort, dense, Shape::dense)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(NormalizeIntervalSet, dense, Shape::dense)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(NormalizeBoxed, sorted, Shape::sorted, Maker::user)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(NormalizeBoxed, sorted_by_library, Shape::sorted, Maker::library)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(NormalizeStdSort, sorted, Shape::sorted)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(NormalizeIntervalSet, sorted, Shape::sorted)->Unit(benchmark::kMillisecond);
BENCHMARK(NormalizeBoxedAndRead)->Unit(benchmark::kMillisecond);
BENCHMARK(ListOfBoxesMade)->Unit(benchmark::kMillisecond);

// MARK: Two lists

void UniteBoxed(benchmark::State& state, Maker maker) {
    auto one = listOf(mergedAfterSorting(rangesOf(Shape::sparse, kMany / 2, 1)), maker);
    auto other = listOf(mergedAfterSorting(rangesOf(Shape::sparse, kMany / 2, 2)), maker);
    for (auto _ : state) {
        AutoreleasePool pool;
        benchmark::DoNotOptimize(PBNormalizeRanges(one->arrayByAddingObjectsFromArray(other), true)->count());
    }
    perItem(state, kMany);
}
void UniteStdSort(benchmark::State& state) {
    Ranges one = mergedAfterSorting(rangesOf(Shape::sparse, kMany / 2, 1));
    Ranges other = mergedAfterSorting(rangesOf(Shape::sparse, kMany / 2, 2));
    for (auto _ : state) {
        Ranges all = one;
        all.insert(all.end(), other.begin(), other.end());
        benchmark::DoNotOptimize(mergedAfterSorting(std::move(all)).size());
    }
    perItem(state, kMany);
}
void UniteIntervalSets(benchmark::State& state) {
    Intervals one = intervalsOf(rangesOf(Shape::sparse, kMany / 2, 1));
    Intervals other = intervalsOf(rangesOf(Shape::sparse, kMany / 2, 2));
    for (auto _ : state) benchmark::DoNotOptimize((one + other).iterative_size());
    perItem(state, kMany);
}
BENCHMARK_CAPTURE(UniteBoxed, by_user, Maker::user)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(UniteBoxed, by_library, Maker::library)->Unit(benchmark::kMillisecond);
BENCHMARK(UniteStdSort)->Unit(benchmark::kMillisecond);
BENCHMARK(UniteIntervalSets)->Unit(benchmark::kMillisecond);

// MARK: Adjusting

void AdjustForInsertion(benchmark::State& state) {
    Ranges ranges = rangesOf(Shape::sorted);
    NSRange inserted{ranges[kMany / 2].location, 1};
    for (auto _ : state) {
        for (NSRange& range : ranges) range = PBAdjustedRangeForInsertedRange(range, inserted);
        benchmark::ClobberMemory();
    }
    perItem(state, kMany);
}
void AdjustForInsertionByHand(benchmark::State& state) {
    Ranges ranges = rangesOf(Shape::sorted);
    NSUInteger place = ranges[kMany / 2].location;
    for (auto _ : state) {
        for (NSRange& range : ranges) {
            if (range.location >= place)
                ++range.location;
            else if (NSMaxRange(range) > place)
                ++range.length;
        }
        benchmark::ClobberMemory();
    }
    perItem(state, kMany);
}
BENCHMARK(AdjustForInsertion)->Unit(benchmark::kMillisecond);
BENCHMARK(AdjustForInsertionByHand)->Unit(benchmark::kMillisecond);

// MARK: Sorted arrays

int compareInts(id first, id second, void*) {
    int a = static_cast<NSNumber*>(first)->intValue(), b = static_cast<NSNumber*>(second)->intValue();
    return a < b ? -1 : a > b ? 1 : 0;
}
bool isBefore(const Retained<Object>& first, const Retained<Object>& second) {
    return compareInts(first, second, nullptr) < 0;
}

std::vector<Retained<Object>> numbers(std::size_t count, unsigned seed) {
    AutoreleasePool pool;
    std::vector<Retained<Object>> result;
    for (std::size_t i = 0; i < count; ++i) result.push_back(NSNumber::initWithInt(static_cast<int>(i)));
    std::shuffle(result.begin(), result.end(), std::mt19937(seed));
    return result;
}

constexpr std::size_t kSorted = 100'000, kInserted = 20'000;

void SortedArrayFinds(benchmark::State& state) {
    auto probes = numbers(kSorted, 3);
    auto array = NSMutableArray::init();
    for (auto& probe : probes) array->addObject(probe);
    array->sortUsingFunction_context(&compareInts, nullptr);
    for (auto _ : state)
        for (auto& probe : probes)
            benchmark::DoNotOptimize(
                indexOfObject_withCompareFunction_context(array, probe, &compareInts, nullptr));
    perItem(state, kSorted);
}
void StdLowerBoundFinds(benchmark::State& state) {
    auto probes = numbers(kSorted, 3), array = probes;
    std::sort(array.begin(), array.end(), isBefore);
    for (auto _ : state)
        for (auto& probe : probes)
            benchmark::DoNotOptimize(std::lower_bound(array.begin(), array.end(), probe, isBefore));
    perItem(state, kSorted);
}
void SortedArrayInserts(benchmark::State& state) {
    auto probes = numbers(kInserted, 3);
    for (auto _ : state) {
        auto array = NSMutableArray::init();
        for (auto& probe : probes)
            insertObject_withCompareFunction_context(array, probe, &compareInts, nullptr);
    }
    perItem(state, kInserted);
}
void StdLowerBoundInserts(benchmark::State& state) {
    auto probes = numbers(kInserted, 3);
    for (auto _ : state) {
        std::vector<Retained<Object>> array;
        for (auto& probe : probes)
            array.insert(std::lower_bound(array.begin(), array.end(), probe, isBefore), probe);
    }
    perItem(state, kInserted);
}
BENCHMARK(SortedArrayFinds)->Unit(benchmark::kMillisecond);
BENCHMARK(StdLowerBoundFinds)->Unit(benchmark::kMillisecond);
BENCHMARK(SortedArrayInserts)->Unit(benchmark::kMillisecond);
BENCHMARK(StdLowerBoundInserts)->Unit(benchmark::kMillisecond);

// MARK: Index sets

void IndexSetOfRanges(benchmark::State& state, Shape shape) {
    auto list = boxed(rangesOf(shape, kSorted));
    for (auto _ : state) {
        AutoreleasePool pool;
        benchmark::DoNotOptimize(NSIndexSet_PelvorAdditions::indexSetWithRangeArray(list)->count());
    }
    perItem(state, kSorted);
}
void IntervalSetOfRanges(benchmark::State& state, Shape shape) {
    Ranges ranges = rangesOf(shape, kSorted);
    for (auto _ : state) benchmark::DoNotOptimize(intervalsOf(ranges).iterative_size());
    perItem(state, kSorted);
}
BENCHMARK_CAPTURE(IndexSetOfRanges, sparse, Shape::sparse)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(IntervalSetOfRanges, sparse, Shape::sparse)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(IndexSetOfRanges, sorted, Shape::sorted)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(IntervalSetOfRanges, sorted, Shape::sorted)->Unit(benchmark::kMillisecond);

std::vector<NSUInteger> places(NSUInteger limit) {
    std::mt19937 random(4);
    std::vector<NSUInteger> result(kSorted);
    for (NSUInteger& place : result) place = static_cast<NSUInteger>(random() % limit);
    return result;
}

void IndexSetContains(benchmark::State& state) {
    Ranges ranges = rangesOf(Shape::sorted, kSorted);
    auto set = NSMutableIndexSet::init();
    for (NSRange range : ranges) set->addIndexesInRange(range);
    auto probes = places(NSMaxRange(ranges.back()));
    for (auto _ : state)
        for (NSUInteger probe : probes) benchmark::DoNotOptimize(set->containsIndex(probe));
    perItem(state, kSorted);
}
void IntervalSetContains(benchmark::State& state) {
    Ranges ranges = rangesOf(Shape::sorted, kSorted);
    Intervals set = intervalsOf(ranges);
    auto probes = places(NSMaxRange(ranges.back()));
    for (auto _ : state)
        for (NSUInteger probe : probes) benchmark::DoNotOptimize(boost::icl::contains(set, probe));
    perItem(state, kSorted);
}
BENCHMARK(IndexSetContains)->Unit(benchmark::kMillisecond);
BENCHMARK(IntervalSetContains)->Unit(benchmark::kMillisecond);

// MARK: Float arrays

void FloatVectorFills(benchmark::State& state) {
    for (auto _ : state) {
        auto vector = PBFloatVector::initWithCapacity(1);
        for (std::size_t i = 0; i < kMany; ++i) vector->addFloat(1);
        benchmark::DoNotOptimize(vector->count());
    }
    perItem(state, kMany);
}
void StdVectorFills(benchmark::State& state) {
    for (auto _ : state) {
        std::vector<float> vector;
        for (std::size_t i = 0; i < kMany; ++i) vector.push_back(1);
        benchmark::DoNotOptimize(vector.data());
    }
    perItem(state, kMany);
}
void FloatArrayReads(benchmark::State& state) {
    auto array = PBFloatArray::initWithCapacity(kMany);
    for (auto _ : state) {
        float highest = 0;
        for (NSUInteger i = 0; i < kMany; ++i) highest = std::max(highest, array->floatAtIndex(i));
        benchmark::DoNotOptimize(highest);
    }
    perItem(state, kMany);
}
void StdVectorReads(benchmark::State& state) {
    std::vector<float> vector(kMany);
    for (auto _ : state) {
        float highest = 0;
        for (std::size_t i = 0; i < kMany; ++i) highest = std::max(highest, vector.at(i));
        benchmark::DoNotOptimize(highest);
    }
    perItem(state, kMany);
}
void FloatArraySums(benchmark::State& state) {
    auto array = PBFloatArray::initWithCapacity(kMany);
    for (auto _ : state) benchmark::DoNotOptimize(array->sumFloatsInRange({kMany - 1, 1}));
    perItem(state, kMany);
}
void StdAccumulateSums(benchmark::State& state) {
    std::vector<float> vector(kMany);
    for (auto _ : state) benchmark::DoNotOptimize(std::accumulate(vector.begin(), vector.end(), 0.0f));
    perItem(state, kMany);
}
BENCHMARK(FloatVectorFills)->Unit(benchmark::kMillisecond);
BENCHMARK(StdVectorFills)->Unit(benchmark::kMillisecond);
BENCHMARK(FloatArrayReads)->Unit(benchmark::kMillisecond);
BENCHMARK(StdVectorReads)->Unit(benchmark::kMillisecond);
BENCHMARK(FloatArraySums)->Unit(benchmark::kMillisecond);
BENCHMARK(StdAccumulateSums)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace pelvor
