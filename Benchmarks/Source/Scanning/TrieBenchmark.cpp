// SPDX-License-Identifier: Apache-2.0
// The longest of a hundred thousand words at places of a text, beside ICU's trie, marisa and a map.
#include <benchmark/benchmark.h>
#include <marisa.h>
#include <unicode/ucharstrie.h>
#include <unicode/ucharstriebuilder.h>

#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"
#include "Scanning/OFStringScanner.h"
#include "Scanning/OFTrie.h"

namespace pelvor {
namespace {

constexpr std::size_t kWordCount = 100000;

// The words in order, and a text of them.
struct Words {
    std::vector<std::u16string> words;
    std::u16string text;
    std::vector<NSUInteger> starts, places;

    Words() {
        constexpr std::u16string_view kParts[] = {
            u"ba", u"ne", u"tion", u"s",  u"re", u"con", u"er", u"li",   u"to", u"ing", u"al",  u"un",
            u"ma", u"ed", u"pro",  u"ly", u"ti", u"sub", u"en", u"ment", u"de", u"or",  u"gra", u"ph",
        };
        std::mt19937 random(3);
        std::set<std::u16string> different;
        while (different.size() < kWordCount) {
            std::u16string word;
            for (auto i = random() % 4 + 1; i > 0; --i) word += kParts[random() % std::size(kParts)];
            different.insert(word);
        }
        words.assign(different.begin(), different.end());
        while (starts.size() < 50000) {
            starts.push_back(static_cast<NSUInteger>(text.size()));
            text += words[random() % words.size()] + u" ";
        }
        for (NSUInteger i = 0; i < text.size(); ++i) places.push_back(i);
    }
};
const Words& words() {
    static const Words words;
    return words;
}

const std::vector<NSUInteger>& placesOf(const benchmark::State& state) {
    return state.range(0) ? words().places : words().starts;
}
void finish(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(placesOf(state).size()));
    state.SetLabel(state.range(0) ? "every place" : "word starts");
}
void atBoth(benchmark::internal::Benchmark* benchmark) { benchmark->Arg(0)->Arg(1); }

Retained<OFTrie> makeTrie(bool isCaseSensitive) {
    auto trie = OFTrie::initCaseSensitive(isCaseSensitive);
    for (auto& word : words().words) {
        AutoreleasePool pool;
        trie->addBucket_forString(make<OFTrieBucket>().get(), NSString::of(word));
    }
    return trie;
}

void readTrie(benchmark::State& state, bool isCaseSensitive) {
    AutoreleasePool pool;
    auto trie = makeTrie(isCaseSensitive);
    auto scanner = OFStringScanner::initWithString(NSString::of(words().text));
    scanner->setRewindMark();
    for (auto _ : state)
        for (NSUInteger place : placesOf(state)) {
            scanner->setScanLocation(place);
            benchmark::DoNotOptimize(scanner->readLongestTrieElement(trie));
        }
    finish(state);
}
void trie(benchmark::State& state) { readTrie(state, true); }
BENCHMARK(trie)->Apply(atBoth);
void caseBlindTrie(benchmark::State& state) { readTrie(state, false); }
BENCHMARK(caseBlindTrie)->Apply(atBoth);

std::unique_ptr<icu::UCharsTrie> makeICUTrie() {
    UErrorCode error = U_ZERO_ERROR;
    icu::UCharsTrieBuilder builder(error);
    int32_t number = 0;
    for (auto& word : words().words)
        builder.add(icu::UnicodeString(word.data(), static_cast<int32_t>(word.size())), ++number, error);
    return std::unique_ptr<icu::UCharsTrie>(builder.build(USTRINGTRIE_BUILD_FAST, error));
}

void icuTrie(benchmark::State& state) {
    auto trie = makeICUTrie();
    const std::u16string& text = words().text;
    for (auto _ : state)
        for (NSUInteger start : placesOf(state)) {
            trie->reset();
            int32_t longest = 0;
            for (std::size_t place = start; place < text.size(); ++place) {
                UStringTrieResult result = trie->next(text[place]);
                if (USTRINGTRIE_HAS_VALUE(result)) longest = trie->getValue();
                if (!USTRINGTRIE_HAS_NEXT(result)) break;
            }
            benchmark::DoNotOptimize(longest);
        }
    finish(state);
}
BENCHMARK(icuTrie)->Apply(atBoth);

void marisaTrie(benchmark::State& state) {
    marisa::Keyset keys;
    for (auto& word : words().words) keys.push_back(std::string(word.begin(), word.end()).c_str());
    marisa::Trie trie;
    trie.build(keys);
    std::string text(words().text.begin(), words().text.end());
    marisa::Agent agent;
    for (auto _ : state)
        for (NSUInteger start : placesOf(state)) {
            agent.set_query(text.data() + start, std::min<std::size_t>(text.size() - start, 32));
            std::size_t longest = 0;
            while (trie.common_prefix_search(agent)) longest = agent.key().length();
            benchmark::DoNotOptimize(longest);
        }
    finish(state);
}
BENCHMARK(marisaTrie)->Apply(atBoth);

// The greatest word that is not above what the text has; then the greatest not above what both share.
void standardMap(benchmark::State& state) {
    std::map<std::u16string, int, std::less<>> map;
    for (auto& word : words().words) map[word] = static_cast<int>(word.size());
    std::u16string_view text = words().text;
    for (auto _ : state)
        for (NSUInteger start : placesOf(state)) {
            std::u16string_view rest = text.substr(start, 32);
            int longest = 0;
            while (!rest.empty()) {
                auto found = map.upper_bound(rest);
                if (found == map.begin()) break;
                const auto& [word, length] = *--found;
                if (rest.starts_with(word)) {
                    longest = length;
                    break;
                }
                auto shared = std::mismatch(rest.begin(), rest.end(), word.begin(), word.end()).first;
                rest = rest.substr(0, static_cast<std::size_t>(shared - rest.begin()));
            }
            benchmark::DoNotOptimize(longest);
        }
    finish(state);
}
BENCHMARK(standardMap)->Apply(atBoth);

void buildTrie(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(makeTrie(true));
}
BENCHMARK(buildTrie)->Unit(benchmark::kMillisecond);
void buildICUTrie(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(makeICUTrie());
}
BENCHMARK(buildICUTrie)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace pelvor
