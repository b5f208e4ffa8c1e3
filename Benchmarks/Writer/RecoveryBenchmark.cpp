// SPDX-License-Identifier: Apache-2.0
// What a journal costs the thread that types into a text of 1 MiB, and how long the other thread writes.
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <filesystem>

#include "Foundation/NSDictionary.h"
#include "Runtime/AutoreleasePool.h"
#include "Writer/Recovery/RecoveryFile.h"
#include "Writer/Recovery/RecoveryStore.h"
#include "Writer/Recovery/WRRecoveryJournal.h"

using namespace pelvor;

namespace {

constexpr std::size_t kUnits = 1 << 20;
constexpr int kLettersAWriting = 10;  // as a quick typist's in a second

struct Typist {
    explicit Typist(bool isKept) {
        std::string name = std::filesystem::temp_directory_path() / "PelvorXXXXXX";
        folder = mkdtemp(name.data());
        std::u16string text;
        while (text.size() < kUnits) text += u"A line of a letter that somebody writes.\n";
        storage = NSTextStorage::initWithString_attributes(NSString::of(text), nullptr);
        if (isKept) journal = WRRecoveryJournal::create(storage, {}, RecoveryStore(folder).newFile());
    }
    ~Typist() {
        if (journal) journal->close();
        std::filesystem::remove_all(folder);
    }
    void type() { storage->replaceCharactersInRange_withString({place++, 0}, u"e"_ns); }

    std::string folder;
    Retained<NSTextStorage> storage;
    Retained<WRRecoveryJournal> journal;
    NSUInteger place = kUnits / 2;
};

// Letters, and with a journal each time that it writes.
void typeLetters(benchmark::State& state, bool isKept) {
    AutoreleasePool pool;
    Typist typist(isKept);
    for (auto _ : state) {
        for (int i = 0; i < kLettersAWriting; ++i) typist.type();
        if (!isKept) continue;
        typist.journal->writeChanges(nullptr);
        state.PauseTiming();
        typist.journal->writeNow();  // waits, as a second passes between two writings
        pool.drain();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * kLettersAWriting);
}

void writeWholeText(benchmark::State& state) {
    AutoreleasePool pool;
    Typist typist(false);
    RecoveryFile file(typist.folder);
    const auto origin = archivedOrigin({});
    const auto text = typist.storage->copy();
    for (auto _ : state)
        if (!file.writeText(origin, text, 0)) return state.SkipWithError("the text was not written");
    file.remove();
}

void readWholeText(benchmark::State& state) {
    AutoreleasePool pool;
    Typist typist(true);
    typist.type();
    typist.journal->leave();
    for (auto _ : state) {
        AutoreleasePool inner;
        if (RecoveryStore(typist.folder).abandonedDocuments().size() != 1)
            return state.SkipWithError("the text was not found");
    }
}

BENCHMARK_CAPTURE(typeLetters, WithoutJournal, false);
BENCHMARK_CAPTURE(typeLetters, WithJournal, true);
BENCHMARK(writeWholeText)->Unit(benchmark::kMillisecond);
BENCHMARK(readWholeText)->Unit(benchmark::kMillisecond);

}  // namespace
