// SPDX-License-Identifier: Apache-2.0
// Measuring and shaping 1 MiB of text in paragraphs of 550 units, beside HarfBuzz alone.
#include <benchmark/benchmark.h>
#include <fontconfig/fontconfig.h>
#include <hb-ot.h>

#include <cstdlib>

#include "Foundation/NSArray.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"
#include "SampleText.h"
#include "Text/Fonts/Shaping.h"
#include "Text/NSFont.h"
#include "Text/NSFontDescriptor.h"

namespace pelvor {
namespace {

constexpr std::size_t kSize = std::size_t{1} << 19;  // units: 1 MiB
constexpr std::size_t kParagraph = 550;

struct Sample {
    const char* font;
    ScriptTag script;
    bool isRightToLeft;
    std::u16string text;
};

const Sample& sampleOf(std::string_view name) {
    static const std::vector<std::pair<std::string_view, Sample>> samples = {
        {"English", {"DejaVuSans", scriptTag("Latn"), false, sampleText(kEnglish, kSize)}},
        {"RandomLetters", {"DejaVuSans", scriptTag("Latn"), false, randomLetters(kSize)}},
        {"Russian", {"DejaVuSans", scriptTag("Cyrl"), false, sampleText(kRussian, kSize)}},
        {"Arabic", {"NotoSansArabic-Regular", scriptTag("Arab"), true, sampleText(kArabic, kSize)}},
        {"Hindi", {"NotoSansDevanagari-Regular", scriptTag("Deva"), false, runningText(kHindiStory, kSize)}},
        {"Thai", {"NotoSansThai-Regular", scriptTag("Thai"), false, sampleText(kThai, kSize)}},
        {"Chinese", {"NotoSansCJKsc-Regular", scriptTag("Hani"), false, sampleText(kChinese, kSize)}}};
    for (const auto& [known, sample] : samples)
        if (known == name) return sample;
    std::abort();
}

NSFont* fontOf(const Sample& sample) {
    NSFont* font = NSFont::fontWithName_size(NSString::stringWithUTF8String(sample.font), 12);
    if (!font) std::abort();
    return font;
}

// The same font with tables of its own: it carries a setting that changes nothing.
NSFont* freshFontOf(const Sample& sample) {
    static int number = 100000;
    NSDictionary* setting =
        NSDictionary::of({{NSFontFeatureTypeIdentifierKey, NSNumber::numberWithInt(++number)},
                          {NSFontFeatureSelectorIdentifierKey, NSNumber::numberWithInt(0)}});
    NSDictionary* settings = NSDictionary::of({{NSFontFeatureSettingsAttribute, NSArray::of({setting})}});
    return NSFont::fontWithDescriptor_size(
        fontOf(sample)->fontDescriptor()->fontDescriptorByAddingAttributes(settings), 12);
}

template <class Work>
void forParagraphs(const Sample& sample, NSFont* font, Work work) {
    for (std::size_t start = 0; start < sample.text.size(); start += kParagraph) {
        const auto length = static_cast<NSUInteger>(std::min(kParagraph, sample.text.size() - start));
        work(ShapingRun{sample.text.data() + start, length, 0, length, font, sample.script, nullptr,
                        sample.isRightToLeft, 1});
    }
}

void perByte(benchmark::State& state) {
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(2 * kSize));
}

void measureAll(const Sample& sample, NSFont* font) {
    std::vector<std::int32_t> advances(kParagraph);
    forParagraphs(sample, font, [&](const ShapingRun& run) {
        measureAdvances(run, {advances.data(), run.length});
        benchmark::DoNotOptimize(advances.data());
    });
}

// With tables and caches that begin empty each time.
void measureCold(benchmark::State& state, std::string_view name) {
    const Sample& sample = sampleOf(name);
    for (auto _ : state) {
        AutoreleasePool pool;
        measureAll(sample, freshFontOf(sample));
    }
    perByte(state);
}

void measureWarm(benchmark::State& state, std::string_view name) {
    AutoreleasePool pool;
    const Sample& sample = sampleOf(name);
    NSFont* font = fontOf(sample);
    for (auto _ : state) measureAll(sample, font);
    perByte(state);
}

void shapeAll(benchmark::State& state, std::string_view name) {
    AutoreleasePool pool;
    const Sample& sample = sampleOf(name);
    NSFont* font = fontOf(sample);
    std::vector<PlacedGlyph> glyphs;
    for (auto _ : state)
        forParagraphs(sample, font, [&](const ShapingRun& run) {
            shape(run, glyphs);
            benchmark::DoNotOptimize(glyphs.data());
        });
    perByte(state);
}

hb_font_t* peerFont(const char* postScriptName) {
    FcPattern* wanted = FcPatternCreate();
    FcPatternAddString(wanted, FC_POSTSCRIPT_NAME, reinterpret_cast<const FcChar8*>(postScriptName));
    FcResult result;
    FcPattern* found = FcFontMatch(nullptr, wanted, &result);
    FcChar8* file = nullptr;
    int index = 0;
    FcPatternGetString(found, FC_FILE, 0, &file);
    FcPatternGetInteger(found, FC_INDEX, 0, &index);
    hb_blob_t* blob = hb_blob_create_from_file(reinterpret_cast<const char*>(file));
    hb_face_t* face = hb_face_create(blob, static_cast<unsigned>(index));
    hb_font_t* font = hb_font_create(face);
    hb_face_destroy(face);
    hb_blob_destroy(blob);
    FcPatternDestroy(found);
    FcPatternDestroy(wanted);
    return font;
}

void harfBuzzAlone(benchmark::State& state, std::string_view name) {
    const Sample& sample = sampleOf(name);
    hb_font_t* font = peerFont(sample.font);
    hb_buffer_t* buffer = hb_buffer_create();
    for (auto _ : state)
        forParagraphs(sample, nullptr, [&](const ShapingRun& run) {
            hb_buffer_clear_contents(buffer);
            hb_buffer_set_direction(buffer, run.isRightToLeft ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
            hb_buffer_set_script(buffer, static_cast<hb_script_t>(run.script));
            const auto length = static_cast<int>(run.length);
            hb_buffer_add_utf16(buffer, reinterpret_cast<const std::uint16_t*>(run.text), length, 0, length);
            hb_shape(font, buffer, nullptr, 0);
            benchmark::DoNotOptimize(hb_buffer_get_glyph_positions(buffer, nullptr));
        });
    perByte(state);
    hb_buffer_destroy(buffer);
    hb_font_destroy(font);
}

void registerAll() {
    for (const char* name : {"English", "RandomLetters", "Russian", "Arabic", "Hindi", "Thai", "Chinese"})
        for (auto [label, work] :
             {std::pair{"measureCold/", &measureCold}, std::pair{"measureWarm/", &measureWarm},
              std::pair{"shape/", &shapeAll}, std::pair{"harfBuzzAlone/", &harfBuzzAlone}})
            benchmark::RegisterBenchmark((std::string(label) + name).c_str(), work, name)
                ->Unit(benchmark::kMillisecond);
}

[[maybe_unused]] const bool isRegistered = (registerAll(), true);

}  // namespace
}  // namespace pelvor
