// SPDX-License-Identifier: Apache-2.0
// Forms with files beside copying the bytes by hand and the Base64 encoder alone.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "Foundation/NSMutableData.h"
#include "Foundation/NSString.h"
#include "NSData-PelvorAdditions.h"
#include "PBPostURLRequest.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

constexpr std::int64_t kTotal = 1'000'000'000;

/// Files of `kTotal` bytes together, in a folder that goes with the program.
class Files {
  public:
    explicit Files(std::int64_t count) {
        std::string name = std::filesystem::temp_directory_path() / "PelvorXXXXXX";
        _folder = mkdtemp(name.data());
        std::string content(static_cast<std::size_t>(kTotal / count), '\0');
        for (std::size_t i = 0; i < content.size(); ++i)
            content[i] = static_cast<char>(i * 2654435761u >> 13);
        for (std::int64_t i = 0; i < count; ++i) {
            paths.push_back(NSString::ofUTF8(_folder + "/" + std::to_string(i))->copy());
            std::ofstream(paths.back()->toUTF8(), std::ios::binary) << content;
        }
    }
    ~Files() { std::filesystem::remove_all(_folder); }
    Files(const Files&) = delete;

    std::vector<Retained<NSString>> paths;

  private:
    std::string _folder;
};

void build(benchmark::State& state, bool isEncoded) {
    AutoreleasePool pool;
    Files files(state.range(0));
    for (auto _ : state) {
        AutoreleasePool inner;
        auto request = PBPostURLRequest::initWithURL(nullptr);
        for (NSString* path : files.paths) {
            AutoreleasePool file;
            request->postContentsOfFile_forKey_isEncode(path, u"file"_ns, isEncoded);
        }
        request->finalizePost();
        benchmark::DoNotOptimize(request->HTTPBody()->bytes());
    }
    state.SetBytesProcessed(state.iterations() * kTotal);
}

void BodyOfFiles(benchmark::State& state) { build(state, false); }
void BodyOfEncodedFiles(benchmark::State& state) { build(state, true); }

/// The encoder alone, over data in memory.
void EncoderAlone(benchmark::State& state) {
    AutoreleasePool pool;
    auto size = static_cast<NSUInteger>(kTotal / state.range(0));
    NSData* data = NSMutableData::dataWithLength(size);
    for (auto _ : state)
        for (std::int64_t i = 0; i < state.range(0); ++i) {
            AutoreleasePool inner;
            benchmark::DoNotOptimize(base64DataWithLineLength(data, 76)->bytes());
        }
    state.SetBytesProcessed(state.iterations() * kTotal);
}

BENCHMARK(BodyOfFiles)->Arg(1)->Arg(10)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(BodyOfEncodedFiles)->Arg(1)->Arg(10)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(EncoderAlone)->Arg(1)->Arg(10)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace pelvor
