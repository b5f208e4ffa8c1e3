// SPDX-License-Identifier: Apache-2.0
// Loading many bundles that declare profiles, one after the other: the time for one must not grow with their
// number.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "Foundation/NSArray.h"
#include "PBPostLoader.h"
#include "PBRegistry.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

namespace fs = std::filesystem;

// A folder of bundles without code. Bundles stay in the process, so each benchmark has bundles of its own.
class Folder {
  public:
    explicit Folder(std::int64_t count)
        : path(fs::temp_directory_path() /
               ("bundles-" + std::to_string(::getpid()) + "-" + std::to_string(count))) {
        for (std::int64_t i = 0; i < count; ++i) {
            const std::string name = std::to_string(count) + "-" + std::to_string(i);
            const fs::path contents = path / (name + ".bundle/Contents");
            fs::create_directories(contents / "Resources");
            std::ofstream(contents / "Info.plist") << "{ CFBundleIdentifier = \"example." << name << "\"; }";
            std::ofstream(contents / "Resources/Profiles.plist")
                << "{ Profiles = { \"profile " << name << "\" = { type = palette; }; }; }";
        }
    }
    ~Folder() { fs::remove_all(path); }

    const fs::path path;
};

void loadBundles(benchmark::State& state) {
    AutoreleasePool pool;
    Folder folder(state.range(0));
    PBPostLoader::processClasses();
    std::int64_t loaded = 0;
    for (auto _ : state)
        for (id each : NSBundle::bundlesInDirectory(NSString::ofUTF8(folder.path.string()))) {
            AutoreleasePool inner;
            loaded += static_cast<NSBundle*>(each)->load();
        }
    if (loaded != state.range(0)) state.SkipWithError("not all bundles were loaded");
    state.counters["each"] = benchmark::Counter(static_cast<double>(loaded),
                                                benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

BENCHMARK(loadBundles)->Arg(1'000)->Arg(4'000)->Arg(10'000)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace pelvor
