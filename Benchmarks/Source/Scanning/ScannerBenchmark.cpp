// SPDX-License-Identifier: Apache-2.0
// The scanner over a mebibyte of units beside Qt, ICU and the standard library over the same text.
#include <benchmark/benchmark.h>
#include <fast_float/fast_float.h>
#include <unicode/uset.h>
#include <unicode/ustring.h>

#include <QHash>
#include <QString>
#include <QStringList>
#include <bitset>
#include <charconv>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSMutableString.h"
#include "Runtime/AutoreleasePool.h"
#include "Scanning/OFCaseConversion.h"
#include "Scanning/OFStringScanner.h"
#include "Shared/WideInstructions.h"

namespace pelvor {
namespace {

constexpr std::size_t kUnitCount = std::size_t{1} << 19;

// MARK: Spans, tokens, lines, numbers

std::u16string wordsOf(std::u16string_view alphabet, char16_t separator, unsigned longest) {
    std::mt19937 random(2);
    std::u16string text;
    while (text.size() < kUnitCount) {
        for (auto i = random() % longest + 1; i > 0; --i) text += alphabet[random() % alphabet.size()];
        text += separator;
    }
    return text;
}
std::u16string english(char16_t separator = u' ', unsigned longest = 9) {
    return wordsOf(u"etaoinshrdlucmfwypvbgkjqxz", separator, longest);
}
std::u16string numbers() { return wordsOf(u"0123456789", u' ', 9); }

void finish(benchmark::State& state, std::u16string_view text) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size() * 2));
}

// Runs over the text again and again; `read` returns false at its end.
template <class Read>
void scan(benchmark::State& state, const std::u16string& text, Read read) {
    AutoreleasePool outer;
    auto scanner = OFStringScanner::initWithString(NSString::of(text));
    scanner->setRewindMark();
    std::int64_t items = 0;
    for (auto _ : state) {
        scanner->setScanLocation(0);
        AutoreleasePool pool;
        for (int i = 1; read(scanner.get()); ++i, ++items)
            if (i % 256 == 0) pool.drain();
    }
    state.SetItemsProcessed(items);
    finish(state, text);
}

void absentCharacter(benchmark::State& state) {
    scan(state, english(), [](OFStringScanner* scanner) { return scanner->scanUpToCharacter(u'#'); });
}
BENCHMARK(absentCharacter);
void qtAbsentCharacter(benchmark::State& state) {
    QString text = QString::fromStdU16String(english());
    for (auto _ : state) benchmark::DoNotOptimize(text.indexOf(QChar(u'#')));
    finish(state, text.toStdU16String());
}
BENCHMARK(qtAbsentCharacter);

void longSpan(benchmark::State& state) {
    AutoreleasePool pool;
    OFCharacterSet* set = OFCharacterSet::characterSetWithString(u"<>&\"\r\n"_ns);
    scan(state, english(), [set](OFStringScanner* scanner) {
        return scanner->readFullTokenWithDelimiterOFCharacterSet(set) != nullptr;
    });
}
BENCHMARK(longSpan);
void longSpanInSet(benchmark::State& state) {
    AutoreleasePool pool;
    NSCharacterSet* set = NSCharacterSet::characterSetWithCharactersInString(u"<>&\"\r\n"_ns);
    scan(state, english(), [set](OFStringScanner* scanner) { return scanner->scanUpToCharacterInSet(set); });
}
BENCHMARK(longSpanInSet);
void icuLongSpan(benchmark::State& state) {
    std::u16string text = english();
    USet* set = uset_openEmpty();
    for (char16_t unit : std::u16string_view(u"<>&\"\r\n")) uset_add(set, unit);
    uset_freeze(set);
    for (auto _ : state)
        benchmark::DoNotOptimize(
            uset_span(set, text.data(), static_cast<int32_t>(text.size()), USET_SPAN_NOT_CONTAINED));
    uset_close(set);
    finish(state, text);
}
BENCHMARK(icuLongSpan);

void tokens(benchmark::State& state) {
    AutoreleasePool pool;
    OFCharacterSet* space = OFCharacterSet::whitespaceOFCharacterSet();
    scan(state, english(), [space](OFStringScanner* scanner) {
        NSString* token = scanner->readFullTokenWithDelimiterOFCharacterSet(space);
        scanner->readCharacter();
        return token != nullptr;
    });
}
BENCHMARK(tokens);
void tokensPlainly(benchmark::State& state) {
    PlainInstructionsScope plain;
    tokens(state);
}
BENCHMARK(tokensPlainly);
void qtTokens(benchmark::State& state) {
    QString text = QString::fromStdU16String(english());
    std::int64_t items = 0;
    for (auto _ : state) items += text.split(QChar(u' ')).size();
    state.SetItemsProcessed(items);
}
BENCHMARK(qtTokens);

void lines(benchmark::State& state) {
    scan(state, english(u'\n', 80), [](OFStringScanner* scanner) { return scanner->readLine() != nullptr; });
}
BENCHMARK(lines);
void linesPlainly(benchmark::State& state) {
    PlainInstructionsScope plain;
    lines(state);
}
BENCHMARK(linesPlainly);
void qtLines(benchmark::State& state) {
    QString text = QString::fromStdU16String(english(u'\n', 80));
    std::int64_t items = 0;
    for (auto _ : state) items += text.split(QChar(u'\n')).size();
    state.SetItemsProcessed(items);
}
BENCHMARK(qtLines);

void integers(benchmark::State& state) {
    scan(state, numbers(), [](OFStringScanner* scanner) {
        benchmark::DoNotOptimize(scanner->scanUnsignedIntegerMaximumDigits(10));
        return scanner->readCharacter() != 0;
    });
}
BENCHMARK(integers);
void standardIntegers(benchmark::State& state) {
    std::u16string wide = numbers();
    std::string text(wide.begin(), wide.end());
    std::int64_t items = 0;
    for (auto _ : state)
        for (const char *place = text.data(), *end = place + text.size(); place < end; ++items) {
            unsigned value = 0;
            place = std::from_chars(place, end, value).ptr + 1;
            benchmark::DoNotOptimize(value);
        }
    state.SetItemsProcessed(items);
}
BENCHMARK(standardIntegers);

// MARK: Decimals

std::u16string decimals() {
    std::mt19937 random(4);
    std::u16string text;
    while (text.size() < kUnitCount) {
        std::string number = std::to_string(random() % 100000) + "." + std::to_string(random() % 1000) + " ";
        text.append(number.begin(), number.end());
    }
    return text;
}
void doubles(benchmark::State& state) {
    scan(state, decimals(), [](OFStringScanner* scanner) {
        double value;
        scanner->scanDouble_maximumLength_exponentLength(&value, 30, 3);
        benchmark::DoNotOptimize(value);
        return scanner->readCharacter() != 0;
    });
}
BENCHMARK(doubles);
void fastFloatDoubles(benchmark::State& state) {
    std::u16string wide = decimals();
    std::string text(wide.begin(), wide.end());
    std::int64_t items = 0;
    for (auto _ : state)
        for (const char *place = text.data(), *end = place + text.size(); place < end; ++items) {
            double value = 0;
            place = fast_float::from_chars(place, end, value).ptr + 1;
            benchmark::DoNotOptimize(value);
        }
    state.SetItemsProcessed(items);
}
BENCHMARK(fastFloatDoubles);

// MARK: Substrings

constexpr std::u16string_view kAbsent = u"elephantine";

void absentSubstring(benchmark::State& state) {
    AutoreleasePool pool;
    NSString* absent = NSString::of(kAbsent);
    scan(state, english(), [absent](OFStringScanner* scanner) { return scanner->scanUpToString(absent); });
}
BENCHMARK(absentSubstring);
void qtAbsentSubstring(benchmark::State& state) {
    std::u16string text = english();
    QString string = QString::fromStdU16String(text), absent = QString::fromUtf16(kAbsent.data());
    for (auto _ : state) benchmark::DoNotOptimize(string.indexOf(absent));
    finish(state, text);
}
BENCHMARK(qtAbsentSubstring);
void icuAbsentSubstring(benchmark::State& state) {
    std::u16string text = english();
    for (auto _ : state)
        benchmark::DoNotOptimize(u_strFindFirst(text.data(), static_cast<int32_t>(text.size()),
                                                kAbsent.data(), static_cast<int32_t>(kAbsent.size())));
    finish(state, text);
}
BENCHMARK(icuAbsentSubstring);

// MARK: Hashes and sets

void hash(benchmark::State& state) {
    AutoreleasePool pool;
    std::u16string text = english();
    // Immutable strings keep their hash.
    auto string = NSMutableString::initWithString(NSString::of(text));
    for (auto _ : state) benchmark::DoNotOptimize(string->hash());
    finish(state, text);
}
BENCHMARK(hash);
void caseBlindHash(benchmark::State& state) {
    std::u16string text = english();
    for (auto _ : state)
        benchmark::DoNotOptimize(OFCaseInsensitiveHash(text.data(), static_cast<NSUInteger>(text.size())));
    finish(state, text);
}
BENCHMARK(caseBlindHash);
void standardHash(benchmark::State& state) {
    std::u16string text = english();
    for (auto _ : state) benchmark::DoNotOptimize(std::hash<std::u16string>{}(text));
    finish(state, text);
}
BENCHMARK(standardHash);
void qtHash(benchmark::State& state) {
    std::u16string text = english();
    QString string = QString::fromStdU16String(text);
    for (auto _ : state) benchmark::DoNotOptimize(qHash(string));
    finish(state, text);
}
BENCHMARK(qtHash);

void setUnion(benchmark::State& state) {
    auto one = OFCharacterSet::initWithCharacterSet(NSCharacterSet::letterCharacterSet());
    auto other = OFCharacterSet::initWithCharacterSet(NSCharacterSet::decimalDigitCharacterSet());
    for (auto _ : state) {
        one->addCharactersFromOFCharacterSet(other);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(setUnion);
void standardUnion(benchmark::State& state) {
    static std::bitset<0x10000> one, other;
    other.set(99);
    for (auto _ : state) {
        one |= other;
        benchmark::DoNotOptimize(one);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(standardUnion);
void icuUnion(benchmark::State& state) {
    UErrorCode error = U_ZERO_ERROR;
    USet *one = uset_openPattern(u"[:L:]", -1, &error), *other = uset_openPattern(u"[:Nd:]", -1, &error);
    for (auto _ : state) uset_addAll(one, other);
    uset_close(one);
    uset_close(other);
}
BENCHMARK(icuUnion);

}  // namespace
}  // namespace pelvor
