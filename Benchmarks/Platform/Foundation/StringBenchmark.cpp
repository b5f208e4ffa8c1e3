// SPDX-License-Identifier: Apache-2.0
// Strings beside the standard library's and ICU's, over the same text.
#include <benchmark/benchmark.h>
#include <unicode/uset.h>
#include <unicode/ustring.h>

#include <cstdio>
#include <functional>
#include <random>
#include <string>

#include "Foundation/NSArray.h"
#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSMutableString.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

constexpr std::size_t kMiB = std::size_t{1} << 20;

// Words of one to nine letters of the alphabet, 1 MiB of units or bytes.
template <class Char>
std::basic_string<Char> wordsOf(std::basic_string_view<Char> alphabet, std::size_t size) {
    std::mt19937 random(1);
    std::basic_string<Char> text;
    while (text.size() < size) {
        for (std::size_t i = random() % 9 + 1; i > 0; --i) text += alphabet[random() % alphabet.size()];
        text += Char(' ');
    }
    text.resize(size);
    return text;
}

std::u16string english() { return wordsOf<char16_t>(u"etaoinshrdlucmfwypvbgkjqxz", kMiB / 2); }

// English with a typographic apostrophe here and there.
std::u16string typographic() {
    std::u16string text = english();
    for (std::size_t i = 50; i < text.size(); i += 100) text[i] = u'\u2019';
    return text;
}

template <class Text>
void perByte(benchmark::State& state, const Text& text) {
    state.SetBytesProcessed(state.iterations() *
                            static_cast<int64_t>(text.size() * sizeof(typename Text::value_type)));
}

// MARK: Hashing and equality

std::u16string keyOf(const benchmark::State& state) {
    return english().substr(0, static_cast<std::size_t>(state.range(0)));
}

void hash(benchmark::State& state) {
    AutoreleasePool pool;
    std::u16string text = keyOf(state);
    NSString* string = NSMutableString::of(text);  // immutable strings keep their hash
    for (auto _ : state) benchmark::DoNotOptimize(string->hash());
    perByte(state, text);
}
BENCHMARK(hash)->Arg(8)->Arg(32)->Arg(kMiB / 2);

void hashAgain(benchmark::State& state) {
    AutoreleasePool pool;
    NSString* string = NSString::of(keyOf(state));
    for (auto _ : state) benchmark::DoNotOptimize(string->hash());
}
BENCHMARK(hashAgain)->Arg(32);

void standardHash(benchmark::State& state) {
    std::u16string text = keyOf(state);
    for (auto _ : state) benchmark::DoNotOptimize(std::hash<std::u16string>()(text));
    perByte(state, text);
}
BENCHMARK(standardHash)->Arg(8)->Arg(32)->Arg(kMiB / 2);

void equality(benchmark::State& state) {
    AutoreleasePool pool;
    NSString *a = NSString::of(keyOf(state)), *b = NSString::of(keyOf(state));
    for (auto _ : state) benchmark::DoNotOptimize(a->isEqualToString(b));
}
BENCHMARK(equality)->Arg(8)->Arg(32);

// MARK: Making

void makeString(benchmark::State& state) {
    std::u16string text = keyOf(state);
    for (auto _ : state) {
        auto string = NSString::initWithCharacters_length(text.data(), static_cast<NSUInteger>(text.size()));
        benchmark::DoNotOptimize(string.get());
    }
}
BENCHMARK(makeString)->Arg(8)->Arg(32);

void makeStandardString(benchmark::State& state) {
    std::u16string text = keyOf(state);
    for (auto _ : state) {
        auto string = std::make_shared<std::u16string>(text);
        benchmark::DoNotOptimize(string.get());
    }
}
BENCHMARK(makeStandardString)->Arg(8)->Arg(32);

void split(benchmark::State& state) {
    AutoreleasePool outer;
    NSString* text = NSString::of(english());
    NSUInteger pieces = text->componentsSeparatedByString(u" "_ns)->count();
    for (auto _ : state) {
        AutoreleasePool pool;
        benchmark::DoNotOptimize(text->componentsSeparatedByString(u" "_ns));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(pieces));
}
BENCHMARK(split);

void appendUnits(benchmark::State& state) {
    for (auto _ : state) {
        auto string = NSMutableString::init();
        for (int i = 0; i < 1000; ++i) string->appendString(u"word "_ns);
        benchmark::DoNotOptimize(string.get());
    }
    state.SetItemsProcessed(state.iterations() * 1000);
}
BENCHMARK(appendUnits);

// MARK: Searching 1 MiB for what is not there

template <NSStringCompareOptions Options, std::u16string (*Text)()>
void search(benchmark::State& state) {
    AutoreleasePool pool;
    std::u16string text = Text();
    NSString* string = NSString::of(text);
    for (auto _ : state) benchmark::DoNotOptimize(string->rangeOfString_options(u"needlework"_ns, Options));
    perByte(state, text);
}
BENCHMARK(search<NSLiteralSearch, english>)->Name("search/literal");
BENCHMARK(search<0, english>)->Name("search/canonical");
BENCHMARK(search<0, typographic>)->Name("search/canonical/typographic");
BENCHMARK(search<NSCaseInsensitiveSearch, english>)->Name("search/caseInsensitive");

void standardSearch(benchmark::State& state) {
    std::u16string text = english();
    for (auto _ : state) benchmark::DoNotOptimize(text.find(u"needlework"));
    perByte(state, text);
}
BENCHMARK(standardSearch);

void icuSearch(benchmark::State& state) {
    std::u16string text = english();
    for (auto _ : state)
        benchmark::DoNotOptimize(
            u_strFindFirst(text.data(), static_cast<int32_t>(text.size()), u"needlework", 10));
    perByte(state, text);
}
BENCHMARK(icuSearch);

void searchSet(benchmark::State& state) {
    AutoreleasePool pool;
    std::u16string text = english();
    NSString* string = NSString::of(text);
    NSCharacterSet* digits = NSCharacterSet::decimalDigitCharacterSet();
    for (auto _ : state) benchmark::DoNotOptimize(string->rangeOfCharacterFromSet(digits));
    perByte(state, text);
}
BENCHMARK(searchSet);

void icuSpanSet(benchmark::State& state) {
    std::u16string text = english();
    UErrorCode error = U_ZERO_ERROR;
    USet* digits = uset_openPattern(u"[:^Nd:]", 7, &error);
    uset_freeze(digits);
    for (auto _ : state)
        benchmark::DoNotOptimize(
            uset_span(digits, text.data(), static_cast<int32_t>(text.size()), USET_SPAN_SIMPLE));
    uset_close(digits);
    perByte(state, text);
}
BENCHMARK(icuSpanSet);

// MARK: UTF-8

// 16 KiB, so that making room for the result does not count for most.
std::string utf8Of(const benchmark::State& state) {
    constexpr std::size_t kSize = 16384;
    if (state.range(0) == 0) return wordsOf<char>("etaoinshrdlucmfwypvbgkjqxz", kSize);
    AutoreleasePool pool;
    if (state.range(0) == 1)
        return NSString::of(wordsOf<char16_t>(u"абвгдежзийклмнопрстуфхцчшщъыьэюя", kSize / 2))->toUTF8();
    return NSString::of(typographic().substr(0, kSize))->toUTF8();
}

void fromUTF8(benchmark::State& state) {
    std::string bytes = utf8Of(state);
    for (auto _ : state) {
        AutoreleasePool pool;
        benchmark::DoNotOptimize(NSString::ofUTF8(bytes));
    }
    perByte(state, bytes);
}
BENCHMARK(fromUTF8)->ArgName("text")->DenseRange(0, 2);

void icuFromUTF8(benchmark::State& state) {
    std::string bytes = utf8Of(state);
    for (auto _ : state) {
        std::u16string units(bytes.size(), u'\0');
        UErrorCode error = U_ZERO_ERROR;
        int32_t size = 0;
        u_strFromUTF8(units.data(), static_cast<int32_t>(units.size()), &size, bytes.data(),
                      static_cast<int32_t>(bytes.size()), &error);
        benchmark::DoNotOptimize(units.data());
    }
    perByte(state, bytes);
}
BENCHMARK(icuFromUTF8)->ArgName("text")->DenseRange(0, 2);

void toUTF8(benchmark::State& state) {
    AutoreleasePool pool;
    NSString* string = NSString::ofUTF8(utf8Of(state));
    for (auto _ : state) benchmark::DoNotOptimize(string->toUTF8());
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(string->length() * sizeof(unichar)));
}
BENCHMARK(toUTF8)->ArgName("text")->DenseRange(0, 2);

// MARK: Comparing and formatting

template <NSStringCompareOptions Options>
void compare(benchmark::State& state) {
    AutoreleasePool pool;
    std::u16string text = keyOf(state);
    NSString *a = NSString::of(text + u"a"), *b = NSString::of(text + u"b");
    for (auto _ : state) benchmark::DoNotOptimize(a->compare_options(b, Options));
}
BENCHMARK(compare<NSLiteralSearch>)->Name("compare/literal")->Arg(20);
BENCHMARK(compare<0>)->Name("compare/canonical")->Arg(20);
BENCHMARK(compare<NSCaseInsensitiveSearch>)->Name("compare/caseInsensitive")->Arg(20);

void format(benchmark::State& state) {
    AutoreleasePool pool;
    NSString* name = NSString::of(u"paragraph");
    int i = 0;
    for (auto _ : state) {
        AutoreleasePool inner;
        benchmark::DoNotOptimize(NSString::stringWithFormat(u"%@ %d: %.2f%%"_ns, name, i, i * 0.25));
        ++i;
    }
}
BENCHMARK(format);

void cFormat(benchmark::State& state) {
    int i = 0;
    for (auto _ : state) {
        char text[64];
        std::snprintf(text, sizeof text, "%s %d: %.2f%%", "paragraph", i, i * 0.25);
        ++i;
        benchmark::DoNotOptimize(std::string(text).data());
    }
}
BENCHMARK(cFormat);

}  // namespace
}  // namespace pelvor
