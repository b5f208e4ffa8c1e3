// SPDX-License-Identifier: Apache-2.0
// Reading and writing rich text of 10 MB, from bytes to an attributed string and back.
#include <benchmark/benchmark.h>

#include <string>

#include "Runtime/AutoreleasePool.h"
#include "Writer/PlugIns/RichText/RichTextAnswer.h"
#include "Writer/PlugIns/RichText/RichTextMarkup.h"

namespace pelvor {
namespace {

constexpr std::size_t kSize = 10'000'000;

const std::string kHead =
    "{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl{\\f0\\froman DejaVu Serif;}{\\f1\\fswiss DejaVu Sans;}"
    "{\\f2\\fcharset204 DejaVu Sans;}}{\\colortbl;\\red255\\green0\\blue0;}\n";

// As an editor of small texts writes.
const std::string kPlain =
    "\\pard\\sa200\\sl276\\slmult1\\f0\\fs22 It was a bright cold day in April, and the clocks were striking "
    "\\b thirteen\\b0 . Winston Smith, his chin nuzzled into his breast in an effort to escape the vile "
    "wind, "
    "slipped quickly through the glass doors.\\par\n";

// As a word processor writes that says everything with every piece.
const std::string kDense =
    "\\pard\\plain \\ltrpar\\qj "
    "\\li0\\ri0\\sa120\\widctlpar\\wrapdefault\\aspalpha\\aspnum\\faauto\\adjustright\\rin0"
    "\\lin0\\itap0\\pararsid1 \\rtlch\\fcs1 \\af0\\afs24\\alang1025 \\ltrch\\fcs0 "
    "\\fs24\\lang1033\\langfe1033\\cgrid"
    "\\langnp1033\\langfenp1033 {\\rtlch\\fcs1 \\af0 \\ltrch\\fcs0 \\insrsid123 It was a bright cold "
    "day}{\\rtlch\\fcs1 "
    "\\af0 \\ltrch\\fcs0 \\b\\insrsid456  in April}{\\rtlch\\fcs1 \\af0 \\ltrch\\fcs0 \\cf1\\insrsid123 , "
    "and the clocks "
    "were \\ldblquote striking\\rdblquote  thirteen}{\\rtlch\\fcs1 \\af0 \\ltrch\\fcs0 \\insrsid123 \n\\par "
    "}";

const std::string kRussian =
    "\\pard\\f2\\fs22 \\u1041?\\u1099?\\u1083? \\'ff\\'f0\\'ea\\'e8\\'e9 "
    "\\'f5\\'ee\\'eb\\'ee\\'e4\\'ed\\'fb\\'e9 "
    "\\u1072?\\u1087?\\u1088?\\u1077?\\u1083?\\u1100?\\u1089?\\u1082?\\u1080?\\u1081? "
    "\\u1076?\\u1077?\\u1085?\\u1100?\\par\n";

std::string documentOf(const std::string& paragraph) {
    std::string bytes = kHead;
    while (bytes.size() < kSize) bytes += paragraph;
    return bytes + "}";
}

void read(benchmark::State& state, const std::string& paragraph) {
    const std::string bytes = documentOf(paragraph);
    NSUInteger length = 0;
    for (auto _ : state) {
        AutoreleasePool pool;
        RichText read = readRichText(TextFileSource(std::string_view(bytes)));
        length = objectsOf(read).text->length();
        if (length < 10'000 || !read.isRichText) return state.SkipWithError("the document was not read");
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes.size()));
    state.counters["units"] = length;
}

void write(benchmark::State& state, const std::string& paragraph) {
    AutoreleasePool pool;
    const std::string bytes = documentOf(paragraph);
    RichText read = readRichText(TextFileSource(std::string_view(bytes)));
    const RichTextObjects objects = objectsOf(read);
    std::size_t written = 0;
    for (auto _ : state) written += markupOfRichText(objects.text, objects.settings).bytes.size();
    state.SetBytesProcessed(static_cast<std::int64_t>(written));
}

BENCHMARK_CAPTURE(read, Plain, kPlain)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(read, Dense, kDense)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(read, Russian, kRussian)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(write, Plain, kPlain)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(write, Russian, kRussian)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace pelvor
