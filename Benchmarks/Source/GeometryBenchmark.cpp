// SPDX-License-Identifier: Apache-2.0
// Places and extents on the screen, call by call over a list of rectangles.
#include <benchmark/benchmark.h>

#include <array>

#include "PBUtil.h"

namespace pelvor {
namespace {

constexpr std::size_t kCount = 256;

// Of a rectangle, what says that all of it was reckoned; the whole would be stored in parts and loaded in one
// piece, which takes longer than the functions.
float digest(NSRect rect) { return rect.origin.x + rect.origin.y + rect.size.width + rect.size.height; }

template <class Function>
void run(benchmark::State& state, Function function) {
    std::array<NSRect, kCount + 1> rects;
    for (std::size_t i = 0; i < rects.size(); ++i) {
        const auto step = static_cast<float>(i);
        rects[i] = {{10.2f + step * 1.37f, 20.7f + step * 0.71f}, {100 + step, 50 + step}};
    }
    for (auto _ : state)
        for (std::size_t i = 0; i < kCount; ++i) benchmark::DoNotOptimize(function(rects[i], rects[i + 1]));
    state.counters["a call"] = benchmark::Counter(static_cast<double>(state.iterations()) * kCount,
                                                  benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void equalPoints(benchmark::State& state) {
    run(state, [](NSRect a, NSRect b) { return PBEqualDisplayPoints(a.origin, b.origin); });
}
void equalRects(benchmark::State& state) {
    run(state, [](NSRect a, NSRect b) { return PBEqualDisplayRects(a, b); });
}
void integralRect(benchmark::State& state) {
    run(state, [](NSRect a, NSRect) { return digest(PBIntegralDisplayRect(a)); });
}
void integralCoordinate(benchmark::State& state) {
    run(state, [](NSRect a, NSRect) { return PBIntegralDisplayCoordinateForThickness(a.origin.x, 1); });
}
void integralCoordinateOfAnEvenLine(benchmark::State& state) {
    run(state, [](NSRect a, NSRect) { return PBIntegralDisplayCoordinateForThickness(a.origin.x, 2); });
}
void scaleSize(benchmark::State& state) {
    run(state, [](NSRect a, NSRect) { return PBScaleSize(a.size, 150, 75); });
}
void rectEnclosingPoints(benchmark::State& state) {
    run(state, [](NSRect a, NSRect b) { return digest(PBRectEnclosingPoints(a.origin, b.origin)); });
}

BENCHMARK(equalPoints);
BENCHMARK(equalRects);
BENCHMARK(integralRect);
BENCHMARK(integralCoordinate);
BENCHMARK(integralCoordinateOfAnEvenLine);
BENCHMARK(scaleSize);
BENCHMARK(rectEnclosingPoints);

}  // namespace
}  // namespace pelvor
