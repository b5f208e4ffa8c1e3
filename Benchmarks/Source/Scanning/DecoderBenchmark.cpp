// SPDX-License-Identifier: Apache-2.0
// Bytes to UTF-16 in steps of 4 KiB and back, beside Qt's and ICU's converters over the same text.
#include <benchmark/benchmark.h>
#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include <QString>
#include <QStringDecoder>
#include <QStringEncoder>
#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"
#include "Scanning/OFStringDecoder.h"
#include "Shared/WideInstructions.h"

namespace pelvor {
namespace {

constexpr std::size_t kSize = std::size_t{1} << 20;
constexpr std::size_t kStep = 4096;

// MARK: Texts

enum Script { ascii, latin, cyrillic, cjk, emoji, mixed, broken, scriptCount };
constexpr const char* kScriptNames[] = {"ASCII", "Latin", "Cyrillic", "CJK", "emoji", "mixed", "broken"};

std::string utf8Of(unsigned value) {
    if (value < 0x80) return {static_cast<char>(value)};
    auto tail = [value](int shift) { return static_cast<char>(0x80 | (value >> shift & 0x3F)); };
    if (value < 0x800) return {static_cast<char>(0xC0 | value >> 6), tail(0)};
    if (value < 0x10000) return {static_cast<char>(0xE0 | value >> 12), tail(6), tail(0)};
    return {static_cast<char>(0xF0 | value >> 18), tail(12), tail(6), tail(0)};
}

// In 100 letters of Latin 8 have accents; in 100 of broken text one is a byte that is no character.
std::string letter(Script script, std::mt19937& random) {
    unsigned number = static_cast<unsigned>(random()), percent = number / 1024 % 100;
    switch (script) {
        case cyrillic:
            return utf8Of(0x430 + number % 32);
        case cjk:
            return utf8Of(0x4E00 + number % 0x5000);
        case emoji:
            return utf8Of(0x1F600 + number % 0x40);
        case latin:
            if (percent < 8) return utf8Of(0xE0 + number % 0x1F);
            break;
        case broken:
            if (percent < 1) return "\xFF";
            break;
        default:
            break;
    }
    return utf8Of(u'a' + number % 26);
}

// A mebibyte of words; in mixed text each is of another script. CJK and emoji have no spaces.
const std::string& textOf(Script script) {
    static std::string texts[scriptCount];
    std::string& text = texts[script];
    std::mt19937 random(1);
    while (text.size() < kSize) {
        Script current = script == mixed ? static_cast<Script>(random() % mixed) : script;
        for (auto count = 2 + random() % 9; count > 0; --count) text += letter(current, random);
        if (current != cjk && current != emoji) text += ' ';
    }
    return text;
}

// The same in a byte a character.
const std::string& latin1Text() {
    static std::string bytes;
    std::mt19937 random(2);
    while (bytes.size() < kSize) {
        auto number = static_cast<unsigned>(random());
        bytes += static_cast<char>(number / 1024 % 100 < 8 ? 0xE0 + number % 0x1F : 'a' + number % 26);
    }
    return bytes;
}

// With quotes and dashes, one in a hundred, from where Windows Latin 1 has characters of its own.
const std::string& windowsText() {
    static std::string bytes;
    if (bytes.empty()) {
        bytes = latin1Text();
        std::mt19937 random(3);
        for (char& byte : bytes)
            if (random() % 100 == 0) byte = static_cast<char>(0x91 + random() % 7);
    }
    return bytes;
}

void finish(benchmark::State& state, std::size_t size) {
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(size));
}

// MARK: Bytes to units

void decodeWith(benchmark::State& state, const std::string& text, CFStringEncoding encoding) {
    std::vector<unichar> units(text.size() + 8);
    auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    for (auto _ : state) {
        auto decoder = OFInitialStateForEncoding(encoding);
        unichar* out = units.data();
        for (std::size_t place = 0; place < text.size(); place += kStep) {
            auto count = static_cast<NSUInteger>(std::min(kStep, text.size() - place));
            auto result = OFScanCharactersIntoBuffer(decoder, bytes + place, count, out, count + 2);
            decoder = result.state;
            out += result.charactersProduced;
        }
        benchmark::DoNotOptimize(out);
        benchmark::ClobberMemory();
    }
    finish(state, text.size());
}

// As on machines without wide instructions.
void decodePlainly(benchmark::State& state, const std::string& text) {
    PlainInstructionsScope plain;
    decodeWith(state, text, kCFStringEncodingUTF8);
}

void qtDecodeWith(benchmark::State& state, const std::string& text, QStringConverter::Encoding encoding) {
    std::vector<QChar> units(text.size() + kStep);
    for (auto _ : state) {
        QChar* out = units.data();
        QStringDecoder streaming(encoding);
        for (std::size_t place = 0; place < text.size(); place += kStep) {
            auto count = static_cast<qsizetype>(std::min(kStep, text.size() - place));
            out = streaming.appendToBuffer(out, QByteArrayView(text.data() + place, count));
        }
        benchmark::DoNotOptimize(out);
        benchmark::ClobberMemory();
    }
    finish(state, text.size());
}

void icuDecodeWith(benchmark::State& state, const std::string& text, const char* name) {
    std::vector<char16_t> units(text.size() + kStep);
    UErrorCode error = U_ZERO_ERROR;
    UConverter* converter = ucnv_open(name, &error);
    if (U_FAILURE(error)) return state.SkipWithError(u_errorName(error));
    for (auto _ : state) {
        ucnv_reset(converter);
        char16_t* out = units.data();
        for (std::size_t place = 0; place < text.size(); place += kStep) {
            const char* from = text.data() + place;
            const char* end = from + std::min(kStep, text.size() - place);
            ucnv_toUnicode(converter, &out, units.data() + units.size(), &from, end, nullptr, false, &error);
        }
        benchmark::DoNotOptimize(out);
        benchmark::ClobberMemory();
    }
    ucnv_close(converter);
    finish(state, text.size());
}

// What the machine can do at most: every byte a unit.
void widening(benchmark::State& state) {
    const std::string& text = latin1Text();
    std::vector<unichar> units(text.size());
    for (auto _ : state) {
        for (std::size_t place = 0; place < text.size(); place += 16) {
            std::uint8_t bytes __attribute__((vector_size(16)));
            std::memcpy(&bytes, text.data() + place, sizeof bytes);
            using Wide = std::uint16_t __attribute__((vector_size(32)));
            Wide wide = __builtin_convertvector(bytes, Wide);
            std::memcpy(units.data() + place, &wide, sizeof wide);
        }
        benchmark::ClobberMemory();
    }
    finish(state, text.size());
}

// MARK: Units to bytes

void encode(benchmark::State& state, Script script) {
    AutoreleasePool pool;
    NSString* string = NSString::ofUTF8(textOf(script));
    for (auto _ : state) benchmark::DoNotOptimize(string->toUTF8());
    finish(state, std::size_t{string->length()} * sizeof(unichar));
}

void qtEncode(benchmark::State& state, Script script) {
    QString string = QString::fromStdString(textOf(script));
    for (auto _ : state) benchmark::DoNotOptimize(string.toUtf8());
    finish(state, static_cast<std::size_t>(string.size()) * sizeof(QChar));
}

void icuEncode(benchmark::State& state, Script script) {
    QString string = QString::fromStdString(textOf(script));
    auto length = static_cast<int32_t>(string.size());
    auto* units = reinterpret_cast<const char16_t*>(string.utf16());
    for (auto _ : state) {
        std::string bytes(static_cast<std::size_t>(length) * 3, '\0');
        int32_t written = 0;
        UErrorCode error = U_ZERO_ERROR;
        u_strToUTF8(bytes.data(), static_cast<int32_t>(bytes.size()), &written, units, length, &error);
        benchmark::DoNotOptimize(bytes);
    }
    finish(state, static_cast<std::size_t>(length) * sizeof(char16_t));
}

[[maybe_unused]] const bool isRegistered = [] {
    auto add = [](std::string name, auto... arguments) {
        benchmark::RegisterBenchmark(name.c_str(), arguments...);
    };
    for (int i = 0; i < scriptCount; ++i) {
        auto script = static_cast<Script>(i);
        std::string name = kScriptNames[i];
        add("decode/" + name, [=](auto& state) { decodeWith(state, textOf(script), kCFStringEncodingUTF8); });
        add("decode/" + name + "/plain", [=](auto& state) { decodePlainly(state, textOf(script)); });
        // What fits a processor's cache and its branch prediction better.
        add("decode/" + name + "/64K", [=](auto& state) {
            decodeWith(state, textOf(script).substr(0, 1 << 16), kCFStringEncodingUTF8);
        });
        add("decode/" + name + "/64K/plain",
            [=](auto& state) { decodePlainly(state, textOf(script).substr(0, 1 << 16)); });
        add("decode/" + name + "/Qt",
            [=](auto& state) { qtDecodeWith(state, textOf(script), QStringConverter::Utf8); });
        add("decode/" + name + "/ICU", [=](auto& state) { icuDecodeWith(state, textOf(script), "UTF-8"); });
    }
    add("decode/Latin1", [](auto& state) { decodeWith(state, latin1Text(), kCFStringEncodingISOLatin1); });
    add("decode/Latin1/widening", widening);
    add("decode/Latin1/Qt", [](auto& state) { qtDecodeWith(state, latin1Text(), QStringConverter::Latin1); });
    add("decode/Latin1/ICU", [](auto& state) { icuDecodeWith(state, latin1Text(), "ISO-8859-1"); });
    add("decode/Windows",
        [](auto& state) { decodeWith(state, windowsText(), kCFStringEncodingWindowsLatin1); });
    add("decode/Windows/ICU", [](auto& state) { icuDecodeWith(state, windowsText(), "windows-1252"); });
    for (int i = 0; i < broken; ++i) {
        auto script = static_cast<Script>(i);
        std::string name = std::string("encode/") + kScriptNames[i];
        add(name, [=](auto& state) { encode(state, script); });
        add(name + "/Qt", [=](auto& state) { qtEncode(state, script); });
        add(name + "/ICU", [=](auto& state) { icuEncode(state, script); });
    }
    return true;
}();

}  // namespace
}  // namespace pelvor
