// SPDX-License-Identifier: Apache-2.0
// Copies beside `cp --reflink=auto`, and unique names beside one question to the system for each candidate.
#include <benchmark/benchmark.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "Foundation/NSArray.h"
#include "Foundation/ProgramRun.h"
#include "NSFileManager-PelvorAdditions.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

namespace fs = std::filesystem;

// A folder that goes at the end.
class Folder {
  public:
    Folder() {
        std::string name = fs::temp_directory_path() / "PelvorXXXXXX";
        if (!mkdtemp(name.data())) std::abort();
        _path = name;
    }
    ~Folder() { fs::remove_all(_path); }
    fs::path operator/(const std::string& name) const { return _path / name; }

  private:
    fs::path _path;
};

void writeFile(const fs::path& path, std::size_t size) {
    fs::create_directories(path.parent_path());
    const std::string piece(1 << 20, 'x');
    std::ofstream file(path, std::ios::binary);
    for (; size > 0; size -= std::min(size, piece.size()))
        file.write(piece.data(), std::min(size, piece.size()));
}

bool copyByUs(const fs::path& from, const fs::path& to) {
    return copyFileAtPath_toPath(NSFileManager::defaultManager(), NSString::ofUTF8(from.string()),
                                 NSString::ofUTF8(to.string())) == 0;
}

bool copyByProgram(const fs::path& from, const fs::path& to) {
    return runProgram(u"/bin/cp"_ns,
                      NSArray::of({u"--reflink=auto"_ns, u"-a"_ns, NSString::ofUTF8(from.string()),
                                   NSString::ofUTF8(to.string())})) == 0;
}

template <class Copy>
void copy(benchmark::State& state, const fs::path& from, const fs::path& to, Copy copyOnce) {
    for (auto _ : state) {
        AutoreleasePool pool;
        if (!copyOnce(from, to)) return state.SkipWithError("the copy failed");
        state.PauseTiming();
        fs::remove_all(to);
        state.ResumeTiming();
    }
}

template <bool (*copyOnce)(const fs::path&, const fs::path&)>
void copyFile(benchmark::State& state) {
    const Folder folder;
    writeFile(folder / "from", 256 << 20);
    copy(state, folder / "from", folder / "to", copyOnce);
    state.SetBytesProcessed(state.iterations() * (256 << 20));
}
BENCHMARK(copyFile<copyByUs>)->UseRealTime()->MinTime(2);
BENCHMARK(copyFile<copyByProgram>)->UseRealTime()->MinTime(2);

template <bool (*copyOnce)(const fs::path&, const fs::path&)>
void copyFolder(benchmark::State& state) {
    const Folder folder;
    for (int i = 0; i < 5000; ++i)
        writeFile(folder / ("from/" + std::to_string(i % 50) + "/" + std::to_string(i)), 4000);
    copy(state, folder / "from", folder / "to", copyOnce);
    state.SetItemsProcessed(state.iterations() * 5000);
}
BENCHMARK(copyFolder<copyByUs>)->UseRealTime()->MinTime(2);
BENCHMARK(copyFolder<copyByProgram>)->UseRealTime()->MinTime(2);

void fillWithNames(const Folder& folder) {
    writeFile(folder / "in/x.txt", 0);
    for (int i = 1; i <= 50'000; ++i) writeFile(folder / ("in/x (" + std::to_string(i) + ").txt"), 0);
}

void uniqueName(benchmark::State& state) {
    const Folder folder;
    fillWithNames(folder);
    for (auto _ : state) {
        AutoreleasePool pool;
        NSString* name = uniqueFileName_inFolder(NSFileManager::defaultManager(), u"x.txt"_ns,
                                                 NSString::ofUTF8((folder / "in").string()));
        if (!name || name->toUTF8() != "x (50001).txt") return state.SkipWithError("another name");
    }
}
BENCHMARK(uniqueName)->Unit(benchmark::kMillisecond);

void uniqueNameByQuestions(benchmark::State& state) {
    const Folder folder;
    fillWithNames(folder);
    for (auto _ : state) {
        struct stat status;
        int number = 1;
        while (stat((folder / ("in/x (" + std::to_string(number) + ").txt")).c_str(), &status) == 0) ++number;
        if (number != 50'001) return state.SkipWithError("another name");
    }
}
BENCHMARK(uniqueNameByQuestions)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace pelvor
