// SPDX-License-Identifier: Apache-2.0
// Base64, hexadecimal text and byte search of data objects beside OpenSSL, Qt, Boost and the C library.
#include <benchmark/benchmark.h>
#include <openssl/evp.h>

#include <QByteArray>
#include <QByteArrayMatcher>
#include <algorithm>
#include <boost/algorithm/hex.hpp>
#include <cstring>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "Foundation/NSString.h"
#include "NSData-PelvorAdditions.h"
#include "Runtime/AutoreleasePool.h"
#include "Shared/WideInstructions.h"

namespace pelvor {
namespace {

using Additions = NSData_PelvorAdditions;
using Byte = unsigned char;
using Bytes = std::vector<Byte>;

constexpr std::size_t kMebibyte = 1 << 20;

Bytes randomBytes(std::size_t size) {
    std::mt19937 random(1);
    Bytes bytes(size);
    for (Byte& byte : bytes) byte = static_cast<Byte>(random());
    return bytes;
}

Retained<NSData> dataOf(const Bytes& bytes) {
    return NSData::initWithBytes_length(bytes.data(), static_cast<NSUInteger>(bytes.size()));
}

Retained<NSString> stringOf(NSData* text) {
    AutoreleasePool pool;
    return Retained<NSString>::retaining(
        NSString::ofUTF8({static_cast<const char*>(text->bytes()), text->length()}));
}

void perByte(benchmark::State& state, std::size_t size) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(size));
}

// MARK: Base64. Everyone's output is a fresh object of its own kind, except with OpenSSL, which fills a
// buffer.

void Base64Encode(benchmark::State& state) {
    auto data = dataOf(randomBytes(kMebibyte));
    for (auto _ : state) {
        AutoreleasePool pool;
        benchmark::DoNotOptimize(base64DataWithLineLength(data, 0)->bytes());
    }
    perByte(state, kMebibyte);
}
void Base64EncodeToString(benchmark::State& state) {
    auto data = dataOf(randomBytes(kMebibyte));
    for (auto _ : state) {
        AutoreleasePool pool;
        benchmark::DoNotOptimize(base64String(data));
    }
    perByte(state, kMebibyte);
}
void Base64EncodeLines(benchmark::State& state) {
    auto data = dataOf(randomBytes(kMebibyte));
    for (auto _ : state) {
        AutoreleasePool pool;
        benchmark::DoNotOptimize(base64DataWithLineLength(data, 76)->bytes());
    }
    perByte(state, kMebibyte);
}
void Base64EncodeOpenSSL(benchmark::State& state) {
    Bytes bytes = randomBytes(kMebibyte), text(kMebibyte * 4 / 3 + 8);
    for (auto _ : state) {
        EVP_EncodeBlock(text.data(), bytes.data(), static_cast<int>(bytes.size()));
        benchmark::ClobberMemory();
    }
    perByte(state, kMebibyte);
}
void Base64EncodeQt(benchmark::State& state) {
    Bytes bytes = randomBytes(kMebibyte);
    auto data = QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data()), kMebibyte);
    for (auto _ : state) benchmark::DoNotOptimize(data.toBase64().constData());
    perByte(state, kMebibyte);
}
// A picture in a document, with and without wide instructions.
void Base64Document(benchmark::State& state) {
    std::optional<PlainInstructionsScope> plain;
    if (state.range(0)) plain.emplace();
    auto data = dataOf(randomBytes(1 << 16));
    for (auto _ : state) {
        AutoreleasePool pool;
        benchmark::DoNotOptimize(Additions::dataWithBase64String(base64String(data))->bytes());
    }
    perByte(state, 1 << 16);
}
BENCHMARK(Base64Document)->ArgName("plain")->Arg(0)->Arg(1);
BENCHMARK(Base64Encode);
BENCHMARK(Base64EncodeToString);
BENCHMARK(Base64EncodeLines);
BENCHMARK(Base64EncodeOpenSSL);
BENCHMARK(Base64EncodeQt);

// Text without line breaks, or with one after 64 characters.
Retained<NSData> base64Text(NSUInteger lineLength) {
    AutoreleasePool pool;
    return Retained<NSData>::retaining(
        base64DataWithLineLength(dataOf(randomBytes(kMebibyte / 4 * 3)).get(), lineLength));
}

void Base64Decode(benchmark::State& state) {
    auto text = stringOf(base64Text(static_cast<NSUInteger>(state.range(0))).get());
    for (auto _ : state) {
        AutoreleasePool pool;
        benchmark::DoNotOptimize(Additions::dataWithBase64String(text)->bytes());
    }
    perByte(state, text->length());
}
void Base64DecodeOpenSSL(benchmark::State& state) {
    auto text = base64Text(0);
    Bytes bytes(text->length());
    for (auto _ : state) {
        EVP_DecodeBlock(bytes.data(), static_cast<const Byte*>(text->bytes()),
                        static_cast<int>(text->length()));
        benchmark::ClobberMemory();
    }
    perByte(state, text->length());
}
void Base64DecodeLinesOpenSSL(benchmark::State& state) {
    auto text = base64Text(64);
    Bytes bytes(text->length());
    EVP_ENCODE_CTX* context = EVP_ENCODE_CTX_new();
    for (auto _ : state) {
        int length = 0, rest = 0;
        EVP_DecodeInit(context);
        EVP_DecodeUpdate(context, bytes.data(), &length, static_cast<const Byte*>(text->bytes()),
                         static_cast<int>(text->length()));
        EVP_DecodeFinal(context, bytes.data() + length, &rest);
        benchmark::ClobberMemory();
    }
    EVP_ENCODE_CTX_free(context);
    perByte(state, text->length());
}
void Base64DecodeQt(benchmark::State& state) {
    auto text = base64Text(static_cast<NSUInteger>(state.range(0)));
    auto bytes = QByteArray::fromRawData(static_cast<const char*>(text->bytes()), text->length());
    for (auto _ : state) benchmark::DoNotOptimize(QByteArray::fromBase64(bytes).constData());
    perByte(state, text->length());
}
BENCHMARK(Base64Decode)->ArgName("line")->Arg(0)->Arg(64);
BENCHMARK(Base64DecodeOpenSSL);
BENCHMARK(Base64DecodeLinesOpenSSL);
BENCHMARK(Base64DecodeQt)->ArgName("line")->Arg(0)->Arg(64);

// MARK: Hexadecimal text

void HexEncode(benchmark::State& state) {
    auto data = dataOf(randomBytes(kMebibyte));
    for (auto _ : state) {
        AutoreleasePool pool;
        benchmark::DoNotOptimize(unadornedLowercaseHexString(data));
    }
    perByte(state, kMebibyte);
}
void HexEncodeBoost(benchmark::State& state) {
    Bytes bytes = randomBytes(kMebibyte);
    std::string text(2 * kMebibyte, ' ');
    for (auto _ : state) {
        boost::algorithm::hex_lower(bytes.begin(), bytes.end(), text.begin());
        benchmark::ClobberMemory();
    }
    perByte(state, kMebibyte);
}
void HexEncodeQt(benchmark::State& state) {
    Bytes bytes = randomBytes(kMebibyte);
    auto data = QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data()), kMebibyte);
    for (auto _ : state) benchmark::DoNotOptimize(data.toHex().constData());
    perByte(state, kMebibyte);
}
void HexDecode(benchmark::State& state) {
    AutoreleasePool outer;
    NSString* text = unadornedLowercaseHexString(dataOf(randomBytes(kMebibyte / 2)).get());
    for (auto _ : state) {
        AutoreleasePool pool;
        benchmark::DoNotOptimize(Additions::dataWithHexString(text)->bytes());
    }
    perByte(state, kMebibyte);
}
void HexDecodeQt(benchmark::State& state) {
    Bytes bytes = randomBytes(kMebibyte / 2);
    auto text = QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data()), kMebibyte / 2).toHex();
    for (auto _ : state) benchmark::DoNotOptimize(QByteArray::fromHex(text).constData());
    perByte(state, kMebibyte);
}
BENCHMARK(HexEncode);
BENCHMARK(HexEncodeBoost);
BENCHMARK(HexEncodeQt);
BENCHMARK(HexDecode);
BENCHMARK(HexDecodeQt);

// MARK: Search

constexpr std::size_t kSearched = 16 * kMebibyte;

struct Haystack {
    Bytes bytes;
    std::string needle;
};

std::string englishText(std::size_t size) {
    static constexpr const char* kWords[] = {
        "the",  "of",   "and",  "a",     "to",    "in",   "is",      "you",  "that", "it",  "he",
        "was",  "for",  "on",   "are",   "as",    "with", "his",     "they", "I",    "at",  "be",
        "this", "have", "from", "words", "water", "long", "through", "she",  "when", "your"};
    std::mt19937 random(2);
    std::string text;
    while (text.size() < size) {
        text += kWords[random() % std::size(kWords)];
        text += random() % 12 ? ' ' : '\n';
    }
    text.resize(size);
    return text;
}

Bytes bytesOf(const std::string& text) { return Bytes(text.begin(), text.end()); }

std::string lines(std::size_t size) {
    std::string text = englishText(size);
    std::replace(text.begin(), text.end(), '\n', ' ');
    for (std::size_t i = 70; i < size; i += 71) text[i] = i % 2 ? '\r' : '\n';
    return text;
}

// None of the needles is there.
Haystack haystack(int kind) {
    switch (kind) {
        case 0:
            return {bytesOf(englishText(kSearched)), "waterest"};
        case 1:
            return {bytesOf(englishText(kSearched)), "she was in the water for your book"};
        case 2:
            return {randomBytes(kSearched),
                    "\x13\x57\x9b\xdf\x24\x68\xac\xe0\x11\x22\x33\x44\x55\x66\x77\x88"};
        case 3:
            return {bytesOf(lines(kSearched)), "\r\n"};
        case 4:
            return {Bytes(kSearched, 'a'), std::string(16, 'a') + "b" + std::string(16, 'a')};
        default:
            return {Bytes(kSearched, 'a'), "b" + std::string(1000, 'a')};
    }
}

constexpr const char* kKinds[] = {"8 in text", "33 in text", "random", "CR LF", "a…b…a", "b then a…"};

void ByteSearch(benchmark::State& state) {
    auto [bytes, needle] = haystack(static_cast<int>(state.range(0)));
    auto data = dataOf(bytes);
    for (auto _ : state)
        benchmark::DoNotOptimize(
            rangeOfBytes_length(data, needle.data(), static_cast<NSUInteger>(needle.size())));
    state.SetLabel(kKinds[state.range(0)]);
    perByte(state, kSearched);
}
void ByteSearchMemmem(benchmark::State& state) {
    auto [bytes, needle] = haystack(static_cast<int>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(memmem(bytes.data(), bytes.size(), needle.data(), needle.size()));
    state.SetLabel(kKinds[state.range(0)]);
    perByte(state, kSearched);
}
void ByteSearchQt(benchmark::State& state) {
    auto [bytes, needle] = haystack(static_cast<int>(state.range(0)));
    QByteArrayMatcher matcher(needle.data(), static_cast<qsizetype>(needle.size()));
    for (auto _ : state)
        benchmark::DoNotOptimize(matcher.indexIn(reinterpret_cast<const char*>(bytes.data()), kSearched));
    state.SetLabel(kKinds[state.range(0)]);
    perByte(state, kSearched);
}
BENCHMARK(ByteSearch)->DenseRange(0, 5);
BENCHMARK(ByteSearchMemmem)->DenseRange(0, 5);
BENCHMARK(ByteSearchQt)->DenseRange(0, 5);

}  // namespace
}  // namespace pelvor
