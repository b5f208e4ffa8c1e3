// SPDX-License-Identifier: Apache-2.0
// Checking 1 MiB of running words in paragraphs, beside Hunspell alone, which is given the words one by one;
// and guesses. The words are those of the dictionary, the frequent ones by Zipf's law, and one in fifty is
// misspelled.
#include <benchmark/benchmark.h>
#include <hunspell.hxx>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"
#include "SpellChecking/NSSpellChecker.h"

namespace pelvor {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kSize = std::size_t{1} << 19;  // units: 1 MiB

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// The word with a letter too many.
std::string misspelled(std::string word, char letter) {
    std::size_t place = word.size() / 2;
    while ((word[place] & 0xC0) == 0x80) --place;  // not inside a character
    return word.insert(place, 1, letter);
}

struct Sample {
    std::string name;
    std::vector<std::string> words;
    std::vector<Retained<NSString>> paragraphs;
    std::unique_ptr<Hunspell> peer;
    double firstReading = 0;  // of ours, in milliseconds
    double peersReading = 0;

    explicit Sample(const char* itsName) : name(itsName) {
        const std::string base = "/usr/share/hunspell/" + name;
        auto start = Clock::now();
        peer = std::make_unique<Hunspell>((base + ".aff").c_str(), (base + ".dic").c_str());
        peersReading = millisecondsSince(start);
        start = Clock::now();
        NSSpellChecker::sharedSpellChecker()->misspelledRanges(u"x"_ns, {0, 1}, language(), 0);
        firstReading = millisecondsSince(start);
        write(stemsOf(base + ".dic"));
    }

    NSString* language() { return NSString::ofUTF8(name); }

    static std::vector<std::string> stemsOf(const std::string& path) {
        std::vector<std::string> stems;
        std::ifstream file(path);
        std::string line;
        for (std::getline(file, line); std::getline(file, line);) {
            line.resize(std::min(line.find_first_of("/\t\r"), line.size()));
            const bool isWord =
                std::ranges::all_of(line, [](unsigned char c) { return std::isalpha(c) || c >= 0x80; });
            if (isWord && line.size() > 1 && line.size() < 14) stems.push_back(line);
        }
        std::ranges::shuffle(stems, std::mt19937(1));
        stems.resize(std::min<std::size_t>(stems.size(), 30000));
        return stems;
    }

    void write(std::vector<std::string> stems) {
        std::mt19937 random(2);
        std::uniform_real_distribution<double> logarithm(0, std::log(static_cast<double>(stems.size())));
        std::string text;
        for (std::size_t total = 0; total < kSize;) {
            std::string word = stems[static_cast<std::size_t>(std::exp(logarithm(random))) - 1];
            if (random() % 50 == 0) word = misspelled(word, 'q');
            text += word + (words.size() % 12 == 11 ? ". " : " ");
            total += word.size() + 1;
            words.push_back(std::move(word));
            if (text.size() > 550)
                paragraphs.push_back(NSString::initWithUTF8String(std::exchange(text, "").c_str()));
        }
    }
};

Sample& sampleOf(std::int64_t number) {
    static Sample samples[] = {Sample("en_US"), Sample("fr")};
    return samples[number];
}

// Returns the number of misspelled words; `longest` becomes the time of the slowest paragraph.
std::size_t check(Sample& sample, double& longest) {
    std::size_t count = 0;
    for (const auto& paragraph : sample.paragraphs) {
        const auto start = Clock::now();
        count += NSSpellChecker::sharedSpellChecker()
                     ->misspelledRanges(paragraph, {0, paragraph->length()}, sample.language(), 0)
                     .size();
        longest = std::max(longest, millisecondsSince(start));
    }
    return count;
}

void OursFirstTime(benchmark::State& state) {
    AutoreleasePool pool;
    Sample& sample = sampleOf(state.range(0));
    double longest = 0;
    for (auto _ : state) state.counters["wrong"] = static_cast<double>(check(sample, longest));
    state.counters["longest paragraph, ms"] = longest;
    state.counters["reading, ms"] = sample.firstReading;
    state.SetItemsProcessed(static_cast<std::int64_t>(sample.words.size()));
}
BENCHMARK(OursFirstTime)->Arg(0)->Arg(1)->ArgName("french")->Iterations(1)->Unit(benchmark::kMillisecond);

void OursAgain(benchmark::State& state) {
    AutoreleasePool pool;
    Sample& sample = sampleOf(state.range(0));
    double longest = 0;
    for (auto _ : state) benchmark::DoNotOptimize(check(sample, longest));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(sample.words.size()));
}
BENCHMARK(OursAgain)->Arg(0)->Arg(1)->ArgName("french")->Unit(benchmark::kMillisecond);

void HunspellAlone(benchmark::State& state) {
    Sample& sample = sampleOf(state.range(0));
    for (auto _ : state) {
        std::size_t count = 0;
        for (const std::string& word : sample.words) count += !sample.peer->spell(word);
        state.counters["wrong"] = static_cast<double>(count);
    }
    state.counters["reading, ms"] = sample.peersReading;
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(sample.words.size()));
}
BENCHMARK(HunspellAlone)->Arg(0)->Arg(1)->ArgName("french")->Unit(benchmark::kMillisecond);

// Guesses for words that nobody has asked for before, one an iteration.

std::string askedWord(Sample& sample, std::size_t number) {
    return misspelled(sample.words[number * 97 % sample.words.size()], 'x');
}

void OursGuessing(benchmark::State& state) {
    Sample& sample = sampleOf(state.range(0));
    NSSpellChecker::sharedSpellChecker()->guessesForWord_language(u"x"_ns, sample.language());
    std::size_t number = 0;
    for (auto _ : state) {
        AutoreleasePool pool;
        benchmark::DoNotOptimize(NSSpellChecker::sharedSpellChecker()->guessesForWord_language(
            NSString::ofUTF8(askedWord(sample, ++number)), sample.language()));
    }
}
BENCHMARK(OursGuessing)->Arg(0)->Arg(1)->ArgName("french")->Iterations(100)->Unit(benchmark::kMillisecond);

void HunspellGuessing(benchmark::State& state) {
    Sample& sample = sampleOf(state.range(0));
    std::size_t number = 0;
    for (auto _ : state) benchmark::DoNotOptimize(sample.peer->suggest(askedWord(sample, ++number)));
}
BENCHMARK(HunspellGuessing)
    ->Arg(0)
    ->Arg(1)
    ->ArgName("french")
    ->Iterations(100)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace pelvor
