// SPDX-License-Identifier: Apache-2.0
// How long Writer takes from main to being ready, with its ten plug-ins, and from being started to its end.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

// Runs the program once and returns the milliseconds from main to the moment, as it tells them itself; below
// 0 if it does not.
double millisecondsTo(const char* moment, const char* arguments) {
    const std::string command = std::string(WRITER_PROGRAM " --timing ") + arguments;
    std::FILE* output = popen(command.c_str(), "r");
    if (!output) return -1;
    const std::string start = std::string("timing ") + moment + ' ';
    double milliseconds = -1;
    for (char line[4096]; std::fgets(line, sizeof line, output);) {
        if (std::strncmp(line, start.c_str(), start.size()) == 0)
            milliseconds = std::strtod(line + start.size(), nullptr);
    }
    return pclose(output) == 0 ? milliseconds : -1;
}

void measure(benchmark::State& state, const char* moment, const char* arguments) {
    for (auto _ : state) {
        const double milliseconds = millisecondsTo(moment, arguments);
        if (milliseconds < 0) {
            state.SkipWithError("the program did not tell");
            return;
        }
        state.SetIterationTime(milliseconds / 1000);
    }
}

void settings(benchmark::internal::Benchmark* benchmark) {
    benchmark->Unit(benchmark::kMillisecond)
        ->UseManualTime()
        ->Iterations(1)
        ->Repetitions(20)
        ->ReportAggregatesOnly();
}

BENCHMARK_CAPTURE(measure, MainToReady, "ready", "--list")->Apply(settings);
BENCHMARK_CAPTURE(measure, MainToSampleOpened, "opened", "")->Apply(settings);
BENCHMARK_CAPTURE(measure, MainToEnd, "end", "")->Apply(settings);

}  // namespace
