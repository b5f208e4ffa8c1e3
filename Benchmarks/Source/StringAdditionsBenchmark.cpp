// SPDX-License-Identifier: Apache-2.0
// Words at a caret, and wrapping and replacing in 100 MB of text, beside ICU's word breaks and Qt's strings.
#include <benchmark/benchmark.h>
#include <unicode/ubrk.h>

#include <QString>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "Foundation/NSCharacterSet.h"
#include "NSMutableString-PelvorAdditions.h"
#include "NSString-PelvorAdditions.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

using Units = std::u16string_view;

constexpr std::size_t kUnits = std::size_t{50} << 20;  // 100 MiB

// English words in lines of about 70 units, which end as asked for.
std::u16string makeText(Units lineEnding) {
    static const Units kWords[] = {u"the",       u"quick",   u"brown",    u"fox",   u"jumps",       u"over",
                                   u"a",         u"lazy",    u"dog",      u"and",   u"documents",   u"of",
                                   u"several",   u"hundred", u"pages",    u"don't", u"necessarily", u"end",
                                   u"$1,250.99", u"here",    u"however,", u"they"};
    std::mt19937 random(1);
    std::u16string text;
    text.reserve(kUnits + 100);
    for (std::size_t line = 0; text.size() < kUnits; line = 0) {
        while (line < 70) {
            Units word = kWords[random() % std::size(kWords)];
            (text += word) += u' ';
            line += word.size() + 1;
        }
        text += lineEnding;
    }
    return text;
}

const std::u16string& lineFeedText() {
    static const std::u16string text = makeText(u"\n");
    return text;
}
const std::u16string& carriageReturnText() {
    static const std::u16string text = makeText(u"\r\n");
    return text;
}

// MARK: Words

// Carets anywhere in the text's first units: few enough for the caches, or so many that each is a cache miss.
constexpr std::size_t kManuscript = std::size_t{1} << 18;

const std::vector<NSUInteger>& carets(std::size_t within) {
    static std::map<std::size_t, std::vector<NSUInteger>> all;
    std::vector<NSUInteger>& places = all[within];
    std::mt19937 random(2);
    while (places.size() < 4096) places.push_back(static_cast<NSUInteger>(random() % within));
    return places;
}

template <class Find>
void findAtCarets(benchmark::State& state, Find find) {
    const auto& places = carets(static_cast<std::size_t>(state.range(0)));
    std::size_t i = 0;
    for (auto _ : state) find(places[i++ % places.size()]);
}

void wordRange(benchmark::State& state) {
    AutoreleasePool pool;
    NSString* text = NSString::of(lineFeedText());
    findAtCarets(state, [&](NSUInteger caret) {
        benchmark::DoNotOptimize(
            wordRangeForRange_includePreviousWord(text, {caret, 0}, state.range(1) != 0));
    });
}
BENCHMARK(wordRange)->ArgsProduct({{kManuscript, kUnits}, {0, 1}})->ArgNames({"units", "previous"});

// What reading a single unit takes.
void readUnit(benchmark::State& state) {
    const std::u16string& text = lineFeedText();
    NSUInteger last = 0;
    findAtCarets(state, [&](NSUInteger caret) { benchmark::DoNotOptimize(last = text[caret ^ (last & 1)]); });
}
BENCHMARK(readUnit)->Arg(kManuscript)->Arg(kUnits)->ArgName("units");

void icuWordRange(benchmark::State& state) {
    UErrorCode error = U_ZERO_ERROR;
    const std::u16string& text = lineFeedText();
    UBreakIterator* words =
        ubrk_open(UBRK_WORD, "en", text.data(), static_cast<int32_t>(text.size()), &error);
    findAtCarets(state, [&](NSUInteger caret) {
        benchmark::DoNotOptimize(ubrk_following(words, static_cast<int32_t>(caret)));
        benchmark::DoNotOptimize(ubrk_previous(words));
    });
    ubrk_close(words);
}
BENCHMARK(icuWordRange)->Arg(kManuscript)->Arg(kUnits)->ArgName("units");

void paragraphRange(benchmark::State& state) {
    AutoreleasePool pool;
    NSString* text = NSString::of(lineFeedText());
    findAtCarets(state, [&](NSUInteger caret) {
        benchmark::DoNotOptimize(paragraphRangeForRange(text, {caret, 0}));
    });
}
BENCHMARK(paragraphRange)->Arg(kManuscript)->Arg(kUnits)->ArgName("units");

void intValueAtIndex(benchmark::State& state) {
    AutoreleasePool pool;
    NSMutableString* text = NSMutableString::of(lineFeedText());
    auto place = static_cast<NSUInteger>(lineFeedText().find(u"250"));
    NSRange range;
    for (auto _ : state) {
        AutoreleasePool inner;
        benchmark::DoNotOptimize(intValueAtIndex_effectiveRange(text, place, &range));
    }
}
BENCHMARK(intValueAtIndex);

// MARK: Whole texts

void setRate(benchmark::State& state) {
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kUnits * sizeof(unichar)));
}

// What copying the text to fresh memory takes, which every derived string has to do.
void copyText(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(std::u16string(lineFeedText()));
    setRate(state);
}
BENCHMARK(copyText)->Unit(benchmark::kMillisecond);

void hardWrapping(benchmark::State& state) {
    AutoreleasePool pool;
    NSString* text = NSString::of(lineFeedText());
    for (auto _ : state) {
        AutoreleasePool inner;
        benchmark::DoNotOptimize(
            stringByHardWrappingToLineLength(text, static_cast<NSUInteger>(state.range(0))));
    }
    setRate(state);
}
BENCHMARK(hardWrapping)->Arg(10)->Arg(60)->Arg(1000)->Unit(benchmark::kMillisecond);

template <class Change>
void changeText(benchmark::State& state, const std::u16string& source, Change change) {
    AutoreleasePool pool;
    for (auto _ : state) {
        state.PauseTiming();
        auto text =
            NSMutableString::initWithCharacters_length(source.data(), static_cast<NSUInteger>(source.size()));
        state.ResumeTiming();
        change(text.get());
        state.PauseTiming();
        text = nullptr;
        state.ResumeTiming();
    }
    setRate(state);
}

template <class Change>
void changeQtText(benchmark::State& state, const std::u16string& source, Change change) {
    for (auto _ : state) {
        state.PauseTiming();
        {
            QString text(reinterpret_cast<const QChar*>(source.data()),
                         static_cast<qsizetype>(source.size()));
            state.ResumeTiming();
            change(text);
            benchmark::DoNotOptimize(text.constData());
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
    setRate(state);
}

QString qt(Units text) {
    return QString(reinterpret_cast<const QChar*>(text.data()), static_cast<qsizetype>(text.size()));
}

void toLineFeeds(benchmark::State& state) {
    changeText(state, carriageReturnText(),
               [](auto* text) { replaceAllLineEndingsWithString(text, u"\n"_ns); });
}
BENCHMARK(toLineFeeds)->Unit(benchmark::kMillisecond);
void qtToLineFeeds(benchmark::State& state) {
    changeQtText(state, carriageReturnText(), [](QString& text) {
        text.replace(qt(u"\r\n"), qt(u"\n"));
        text.replace(QChar(u'\r'), QChar(u'\n'));
    });
}
BENCHMARK(qtToLineFeeds)->Unit(benchmark::kMillisecond);

void toCarriageReturns(benchmark::State& state) {
    changeText(state, lineFeedText(), [](auto* text) { replaceAllLineEndingsWithString(text, u"\r\n"_ns); });
}
BENCHMARK(toCarriageReturns)->Unit(benchmark::kMillisecond);
void qtToCarriageReturns(benchmark::State& state) {
    changeQtText(state, lineFeedText(), [](QString& text) {
        text.replace(qt(u"\r\n"), qt(u"\n"));
        text.replace(QChar(u'\r'), QChar(u'\n'));
        text.replace(qt(u"\n"), qt(u"\r\n"));
    });
}
BENCHMARK(qtToCarriageReturns)->Unit(benchmark::kMillisecond);

// A replacement of the same size, a longer one, a shorter one; and of something that is not there.
struct Replacement {
    Units target, replacement;
};
constexpr Replacement kReplacements[] = {
    {u"fox", u"cat"}, {u"dog", u"elephant"}, {u"documents", u"x"}, {u"zebra", u"x"}};

void replaceString(benchmark::State& state) {
    AutoreleasePool pool;
    const Replacement& one = kReplacements[state.range(0)];
    NSString *target = NSString::of(one.target), *replacement = NSString::of(one.replacement);
    changeText(state, lineFeedText(), [&](auto* text) {
        benchmark::DoNotOptimize(replaceAllOccurrencesOfString_withString(text, target, replacement));
    });
    state.SetLabel(target->toUTF8());
}
BENCHMARK(replaceString)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);
void qtReplaceString(benchmark::State& state) {
    const Replacement& one = kReplacements[state.range(0)];
    QString target = qt(one.target), replacement = qt(one.replacement);
    changeQtText(state, lineFeedText(), [&](QString& text) { text.replace(target, replacement); });
    state.SetLabel(target.toStdString());
}
BENCHMARK(qtReplaceString)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);

void stringByReplacing(benchmark::State& state) {
    AutoreleasePool pool;
    const Replacement& one = kReplacements[state.range(0)];
    NSString *text = NSString::of(lineFeedText()), *target = NSString::of(one.target),
             *replacement = NSString::of(one.replacement);
    for (auto _ : state) {
        AutoreleasePool inner;
        benchmark::DoNotOptimize(
            stringByReplacingAllOccurrencesOfString_withString(text, target, replacement));
    }
    setRate(state);
}
BENCHMARK(stringByReplacing)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);

void removeVowels(benchmark::State& state) {
    AutoreleasePool pool;
    NSCharacterSet* vowels = NSCharacterSet::characterSetWithCharactersInString(u"aeiou"_ns);
    changeText(state, lineFeedText(), [&](auto* text) { removeCharactersInSet(text, vowels); });
}
BENCHMARK(removeVowels)->Unit(benchmark::kMillisecond);
void replaceMembers(benchmark::State& state) {
    AutoreleasePool pool;
    NSCharacterSet* marks = NSCharacterSet::characterSetWithCharactersInString(u"$,'"_ns);
    changeText(state, lineFeedText(),
               [&](auto* text) { replaceAllOccurrencesOfCharactersInSet_withString(text, marks, u"--"_ns); });
}
BENCHMARK(replaceMembers)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace pelvor
