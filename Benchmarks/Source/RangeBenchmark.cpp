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
#include "Foundation/NSMutableIndexSet.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSValue.h"
#include "NSArray-PelvorAdditions.h"
#include "NSArray-PelvorRangeArray.h"
#include "NSIndexSet-PelvorAdditions.h"
#include "PBFloatArray.h"
#include "PBFloatVector.h"
#include "PBRangeUtil.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

using Ranges = std::vector<NSRange>;
using Intervals = boost::icl::interval_set<std::uint32_t>;

enum class Shape { sparse, dense, sorted };

// Sparse ranges hardly ever meet; dense ones mostly do; sorted ones are a normalised list.
Ranges rangesOf(Shape shape, std::size_t count, unsigned seed = 1) {
    std::mt19937 random(seed);
    Ranges ranges(count);
    NSUInteger place = 0;
    for (NSRange& range : ranges) {
        NSUInteger length = 1 + random() % 10;
        NSUInteger limit = shape == Shape::sparse ? 2'000'000'000 : static_cast<NSUInteger>(4 * count);
        range = {shape == Shape::sorted ? place : static_cast<NSUInteger>(random() % limit), length};
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

// The lists of a word processor's selections and edits.
void listLengths(benchmark::internal::Benchmark* benchmark) { benchmark->Arg(100)->Arg(1000); }
std::size_t length(const benchmark::State& state) { return static_cast<std::size_t>(state.range(0)); }

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

// The whole life of the result is measured, its end included, here and with the peers.
void NormalizeBoxed(benchmark::State& state, Shape shape) {
    auto list = boxed(rangesOf(shape, length(state)));
    for (auto _ : state) {
        AutoreleasePool pool;
        benchmark::DoNotOptimize(PBNormalizeRanges(list, true)->count());
    }
    perItem(state, length(state));
}
void NormalizeStdSort(benchmark::State& state, Shape shape) {
    Ranges ranges = rangesOf(shape, length(state));
    for (auto _ : state) benchmark::DoNotOptimize(mergedAfterSorting(ranges).size());
    perItem(state, length(state));
}
void NormalizeIntervalSet(benchmark::State& state, Shape shape) {
    Ranges ranges = rangesOf(shape, length(state));
    for (auto _ : state) benchmark::DoNotOptimize(intervalsOf(ranges).iterative_size());
    perItem(state, length(state));
}
BENCHMARK_CAPTURE(NormalizeBoxed, sparse, Shape::sparse)->Apply(listLengths);
BENCHMARK_CAPTURE(NormalizeStdSort, sparse, Shape::sparse)->Apply(listLengths);
BENCHMARK_CAPTURE(NormalizeIntervalSet, sparse, Shape::sparse)->Apply(listLengths);
BENCHMARK_CAPTURE(NormalizeBoxed, dense, Shape::dense)->Apply(listLengths);
BENCHMARK_CAPTURE(NormalizeStdSort, dense, Shape::dense)->Apply(listLengths);
BENCHMARK_CAPTURE(NormalizeIntervalSet, dense, Shape::dense)->Apply(listLengths);
BENCHMARK_CAPTURE(NormalizeBoxed, sorted, Shape::sorted)->Apply(listLengths);
BENCHMARK_CAPTURE(NormalizeStdSort, sorted, Shape::sorted)->Apply(listLengths);
BENCHMARK_CAPTURE(NormalizeIntervalSet, sorted, Shape::sorted)->Apply(listLengths);

// Every box of the result is asked for.
void NormalizeBoxedAndRead(benchmark::State& state) {
    auto list = boxed(rangesOf(Shape::sorted, length(state)));
    for (auto _ : state) {
        AutoreleasePool pool;
        NSUInteger sum = 0;
        for (id box : PBNormalizeRanges(list, true)) sum += static_cast<NSValue*>(box)->rangeValue().length;
        benchmark::DoNotOptimize(sum);
    }
    perItem(state, length(state));
}
BENCHMARK(NormalizeBoxedAndRead)->Apply(listLengths);

// MARK: Selections

// A selection as the operations left it is given a range in its middle, and is then read.
void SelectionAdds(benchmark::State& state) {
    AutoreleasePool outer;
    Ranges ranges = rangesOf(Shape::sorted, length(state));
    NSRange added{ranges[ranges.size() / 2].location, 30};
    auto boxes = boxed(ranges);
    NSArray* list = PBNormalizeRanges(boxes, true);
    for (auto _ : state) {
        AutoreleasePool pool;
        NSArray* all = PBCombineRangeWithNormalizedRanges(added, list, PBSelectionMode_Add, nullptr);
        NSUInteger sum = 0;
        for (NSUInteger i = 0; i < all->count(); ++i) sum += rangeAtIndex(all, i).length;
        benchmark::DoNotOptimize(sum);
    }
    perItem(state, length(state));
}
void StdVectorAdds(benchmark::State& state) {
    Ranges ranges = rangesOf(Shape::sorted, length(state));
    NSRange added{ranges[ranges.size() / 2].location, 30};
    for (auto _ : state) {
        Ranges all = ranges;
        all.push_back(added);
        NSUInteger sum = 0;
        for (NSRange range : mergedAfterSorting(std::move(all))) sum += range.length;
        benchmark::DoNotOptimize(sum);
    }
    perItem(state, length(state));
}
BENCHMARK(SelectionAdds)->Apply(listLengths);
BENCHMARK(StdVectorAdds)->Apply(listLengths);

// MARK: Adjusting

void AdjustForInsertion(benchmark::State& state) {
    Ranges ranges = rangesOf(Shape::sorted, length(state));
    NSRange inserted{ranges[ranges.size() / 2].location, 1};
    for (auto _ : state) {
        for (NSRange& range : ranges) range = PBAdjustedRangeForInsertedRange(range, inserted);
        benchmark::ClobberMemory();
    }
    perItem(state, length(state));
}
void AdjustForInsertionByHand(benchmark::State& state) {
    Ranges ranges = rangesOf(Shape::sorted, length(state));
    NSUInteger place = ranges[ranges.size() / 2].location;
    for (auto _ : state) {
        for (NSRange& range : ranges) {
            if (range.location >= place)
                ++range.location;
            else if (NSMaxRange(range) > place)
                ++range.length;
        }
        benchmark::ClobberMemory();
    }
    perItem(state, length(state));
}
BENCHMARK(AdjustForInsertion)->Arg(1000);
BENCHMARK(AdjustForInsertionByHand)->Arg(1000);

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

constexpr std::size_t kSorted = 1'000;

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
    auto probes = numbers(kSorted, 3);
    for (auto _ : state) {
        auto array = NSMutableArray::init();
        for (auto& probe : probes)
            insertObject_withCompareFunction_context(array, probe, &compareInts, nullptr);
    }
    perItem(state, kSorted);
}
void StdLowerBoundInserts(benchmark::State& state) {
    auto probes = numbers(kSorted, 3);
    for (auto _ : state) {
        std::vector<Retained<Object>> array;
        for (auto& probe : probes)
            array.insert(std::lower_bound(array.begin(), array.end(), probe, isBefore), probe);
    }
    perItem(state, kSorted);
}
BENCHMARK(SortedArrayFinds);
BENCHMARK(StdLowerBoundFinds);
BENCHMARK(SortedArrayInserts);
BENCHMARK(StdLowerBoundInserts);

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
BENCHMARK_CAPTURE(IndexSetOfRanges, sparse, Shape::sparse);
BENCHMARK_CAPTURE(IntervalSetOfRanges, sparse, Shape::sparse);
BENCHMARK_CAPTURE(IndexSetOfRanges, sorted, Shape::sorted);
BENCHMARK_CAPTURE(IntervalSetOfRanges, sorted, Shape::sorted);

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
BENCHMARK(IndexSetContains);
BENCHMARK(IntervalSetContains);

// MARK: Float arrays

constexpr std::size_t kMany = 1'000;

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
BENCHMARK(FloatVectorFills);
BENCHMARK(StdVectorFills);
BENCHMARK(FloatArrayReads);
BENCHMARK(StdVectorReads);
BENCHMARK(FloatArraySums);
BENCHMARK(StdAccumulateSums);

}  // namespace
}  // namespace pelvor
