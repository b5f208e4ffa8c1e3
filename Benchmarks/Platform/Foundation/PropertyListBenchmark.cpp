// SPDX-License-Identifier: Apache-2.0
// Reading and writing property lists of 10 MB, with libplist beside.
#include <benchmark/benchmark.h>
#include <plist/plist.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "Foundation/NSArray.h"
#include "Foundation/NSData.h"
#include "Foundation/NSPropertyListSerialization.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

constexpr std::size_t kSize = 10 << 20;

constexpr char kHeader[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n<array>\n";

// Records of a catalogue of documents: nine keys, all kinds of values but data, a few letters beyond ASCII.
constexpr char kRecord[] =
    "\t<dict>\n"
    "\t\t<key>author</key>\n\t\t<string>J\xC3\xB6rg M\xC3\xBCller %d</string>\n"
    "\t\t<key>created</key>\n\t\t<date>2004-%02d-%02dT12:34:56Z</date>\n"
    "\t\t<key>identifier</key>\n\t\t<string>document.%08d</string>\n"
    "\t\t<key>locked</key>\n\t\t<%s/>\n"
    "\t\t<key>ratio</key>\n\t\t<real>%.3f</real>\n"
    "\t\t<key>size</key>\n\t\t<integer>%d</integer>\n"
    "\t\t<key>styles</key>\n\t\t<array>\n"
    "\t\t\t<string>Heading</string>\n\t\t\t<string>Body text</string>\n\t\t</array>\n"
    "\t\t<key>title</key>\n\t\t<string>The quick brown fox &amp; the lazy dog, chapter %d</string>\n"
    "\t</dict>\n";

// Chapters of text: long strings, few of them.
constexpr char kChapter[] =
    "\t<dict>\n\t\t<key>number</key>\n\t\t<integer>%d</integer>\n\t\t<key>text</key>\n\t\t<string>%s</"
    "string>\n"
    "\t</dict>\n";

std::string records(std::size_t size) {
    std::string text = kHeader;
    char record[1024];
    for (int i = 0; text.size() < size; ++i) {
        std::snprintf(record, sizeof record, kRecord, i, i % 12 + 1, i % 28 + 1, i, i % 2 ? "true" : "false",
                      i * 0.375, i * 1234, i);
        text += record;
    }
    return text + "</array>\n</plist>\n";
}

std::string chapters() {
    std::string paragraph;
    for (int i = 0; i < 40; ++i)
        paragraph += "It was a bright cold day in April, and the clocks were striking. ";
    std::string text = kHeader;
    std::string chapter(paragraph.size() + 256, '\0');
    for (int i = 0; text.size() < kSize; ++i) {
        int length = std::snprintf(chapter.data(), chapter.size(), kChapter, i, paragraph.c_str());
        text.append(chapter, 0, static_cast<std::size_t>(length));
    }
    return text + "</array>\n</plist>\n";
}

const std::string& text(std::int64_t which) {
    static const std::string texts[] = {records(kSize), chapters()};
    return texts[which];
}

id readList(NSData* data) {
    return NSPropertyListSerialization::propertyListWithData_options_format_error(
        data, NSPropertyListImmutable, nullptr, nullptr);
}

NSData* writeList(id list, NSPropertyListFormat format) {
    return NSPropertyListSerialization::dataWithPropertyList_format_options_error(list, format, 0, nullptr);
}

NSData* dataOf(const std::string& bytes) {
    return NSData::dataWithBytes_length(bytes.data(), static_cast<NSUInteger>(bytes.size()));
}

plist_t peerList(const std::string& bytes) {
    plist_t list = nullptr;
    plist_from_xml(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &list);
    return list;
}

void finish(benchmark::State& state, std::size_t bytes) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(bytes));
}

// Reading is measured with the release of what was read, in both.

void readXML(benchmark::State& state) {
    AutoreleasePool pool;
    NSData* data = dataOf(text(state.range(0)));
    for (auto _ : state) {
        AutoreleasePool inner;
        if (!readList(data)) state.SkipWithError("not read");
    }
    finish(state, data->length());
}

void readXMLByLibplist(benchmark::State& state) {
    const std::string& bytes = text(state.range(0));
    for (auto _ : state) {
        plist_t list = peerList(bytes);
        if (!list) state.SkipWithError("not read");
        plist_free(list);
    }
    finish(state, bytes.size());
}

void writeXML(benchmark::State& state) {
    AutoreleasePool pool;
    id list = readList(dataOf(text(state.range(0))));
    std::size_t size = 0;
    for (auto _ : state) {
        AutoreleasePool inner;
        size = writeList(list, NSPropertyListXMLFormat_v1_0)->length();
    }
    finish(state, size);
}

void writeXMLByLibplist(benchmark::State& state) {
    plist_t list = peerList(text(state.range(0)));
    std::uint32_t size = 0;
    for (auto _ : state) {
        char* bytes = nullptr;
        plist_to_xml(list, &bytes, &size);
        std::free(bytes);
    }
    plist_free(list);
    finish(state, size);
}

void readBinary(benchmark::State& state) {
    AutoreleasePool pool;
    NSData* data = writeList(readList(dataOf(text(state.range(0)))), NSPropertyListBinaryFormat_v1_0);
    for (auto _ : state) {
        AutoreleasePool inner;
        if (!readList(data)) state.SkipWithError("not read");
    }
    finish(state, data->length());
}

void readBinaryByLibplist(benchmark::State& state) {
    AutoreleasePool pool;
    NSData* data = writeList(readList(dataOf(text(state.range(0)))), NSPropertyListBinaryFormat_v1_0);
    for (auto _ : state) {
        plist_t list = nullptr;
        plist_from_bin(static_cast<const char*>(data->bytes()), data->length(), &list);
        if (!list) state.SkipWithError("not read");
        plist_free(list);
    }
    finish(state, data->length());
}

void writeBinary(benchmark::State& state) {
    AutoreleasePool pool;
    id list = readList(dataOf(text(state.range(0))));
    std::size_t size = 0;
    for (auto _ : state) {
        AutoreleasePool inner;
        size = writeList(list, NSPropertyListBinaryFormat_v1_0)->length();
    }
    finish(state, size);
}

void writeBinaryByLibplist(benchmark::State& state) {
    plist_t list = peerList(text(state.range(0)));
    std::uint32_t size = 0;
    for (auto _ : state) {
        char* bytes = nullptr;
        plist_to_bin(list, &bytes, &size);
        std::free(bytes);
    }
    plist_free(list);
    finish(state, size);
}

// The speed stays the same from the smallest list to the largest. With a comment in it, a document is read by
// the parser.
void readXMLOfSize(benchmark::State& state) {
    AutoreleasePool pool;
    std::string text = records(static_cast<std::size_t>(state.range(0)));
    if (state.range(1)) text += "<!-- -->";
    NSData* data = dataOf(text);
    for (auto _ : state) {
        AutoreleasePool inner;
        if (!readList(data)) state.SkipWithError("not read");
    }
    finish(state, data->length());
}
BENCHMARK(readXMLOfSize)
    ->ArgNames({"bytes", "parsed"})
    ->ArgsProduct({{64 << 10, 2 << 20, 64 << 20}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

#define PELVOR_PROPERTY_LIST_BENCHMARK(function) \
    BENCHMARK(function)->ArgName("chapters")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)

PELVOR_PROPERTY_LIST_BENCHMARK(readXML);
PELVOR_PROPERTY_LIST_BENCHMARK(readXMLByLibplist);
PELVOR_PROPERTY_LIST_BENCHMARK(writeXML);
PELVOR_PROPERTY_LIST_BENCHMARK(writeXMLByLibplist);
PELVOR_PROPERTY_LIST_BENCHMARK(readBinary);
PELVOR_PROPERTY_LIST_BENCHMARK(readBinaryByLibplist);
PELVOR_PROPERTY_LIST_BENCHMARK(writeBinary);
PELVOR_PROPERTY_LIST_BENCHMARK(writeBinaryByLibplist);

}  // namespace
}  // namespace pelvor
