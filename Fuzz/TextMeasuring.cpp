// SPDX-License-Identifier: Apache-2.0
// The advances of random text, measured by whatever road, beside those of the glyphs that shaping places.
#include <cstdint>
#include <string>
#include <vector>

#include "Foundation/NSArray.h"
#include "Foundation/NSString.h"
#include "Require.h"
#include "Runtime/AutoreleasePool.h"
#include "Text/Fonts/Shaping.h"
#include "Text/NSFont.h"
#include "Text/NSFontManager.h"

namespace pelvor {
namespace {

// A font with the script that is tried in it, and the letters that random bytes stand for; bytes beyond them
// are taken two by two as units.
struct Sample {
    NSString* font;
    ScriptTag script;
    bool isRightToLeft;
    std::u16string_view letters;
};

constexpr std::u16string_view kLatin =
    u"  etaoinshr AVWTy.,f\u2019ifljI\u201D1-\u00E9\u00A0\u00AD\u0301\u0308";
constexpr std::u16string_view kArabic =
    u"  "
    u"\u0627\u0644\u0628\u062A\u0643\u0645\u0646\u0647\u064A\u06CC\u06D2\u06C1\u064E\u0651\u200C\u200D\u0640";
constexpr std::u16string_view kHebrew = u"  \u05D0\u05D1\u05E9\u05DC\u05D5\u05B8\u05C1\u05BC";
constexpr std::u16string_view kIndic =
    u"  \u0915\u0937\u0930\u0938\u0924\u094D\u094D\u093F\u0940\u0947\u0902\u200C\u200D";

const Sample kSamples[] = {
    {u"DejaVuSans"_ns, scriptTag("Latn"), false, kLatin},
    {u"DejaVuSerif-Bold"_ns, scriptTag("Latn"), false, kLatin},
    {u"NotoSans-Italic"_ns, scriptTag("Latn"), false, kLatin},
    {u"NotoSerif-Regular"_ns, scriptTag("Latn"), false, kLatin},
    {u"NotoSansMono-Regular"_ns, scriptTag("Zyyy"), true, kLatin},
    {u"NotoSans-Regular"_ns, scriptTag("Cyrl"), false,
     u"  \u0430\u0435\u0438\u043E\u0413\u0410\u0423\u0442.\u0301"},
    {u"NotoSansArabic-Regular"_ns, scriptTag("Arab"), true, kArabic},
    {u"NotoNastaliqUrdu-Regular"_ns, scriptTag("Arab"), true, kArabic},
    {u"DejaVuSans"_ns, scriptTag("Arab"), true, kArabic},
    {u"NotoSansHebrew-Regular"_ns, scriptTag("Hebr"), true, kHebrew},
    {u"NotoSansDevanagari-Regular"_ns, scriptTag("Deva"), false, kIndic},
    {u"NotoSerifDevanagari-Bold"_ns, scriptTag("Deva"), false, kIndic},
    {u"NotoSansThai-Regular"_ns, scriptTag("Thai"), false, u" \u0E01\u0E33\u0E49\u0E40\u0E32"},
    {u"NotoColorEmoji"_ns, scriptTag("Zyyy"), false, u" \u200D\uFE0F\u2764\xD83D\xDC68\xDC69"}};

struct Input {
    const std::uint8_t* data;
    std::size_t size;

    unsigned byte() {
        if (!size) return 0;
        --size;
        return *data++;
    }
    std::u16string text(std::u16string_view letters) {
        std::u16string units;
        while (size) {
            const unsigned first = byte();
            units += first < 192 ? letters[first % letters.size()]
                                 : static_cast<char16_t>((first - 192) << 8 | byte());
        }
        return units;
    }
};

// The sample's font, or another one if a number is given. The user font where there is no such font.
NSFont* fontFor(const Sample& sample, float points, unsigned number) {
    static NSArray* all =
        Retained<NSArray>::retaining(NSFontManager::sharedFontManager()->availableFonts()).leak();
    NSString* name = number && all->count()
                         ? static_cast<NSString*>(all->objectAtIndex(number % all->count()))
                         : sample.font;
    NSFont* font = NSFont::fontWithName_size(name, points);
    return font ? font : NSFont::userFontOfSize(points);
}

void checkMeasuring(const ShapingRun& run) {
    std::vector<PlacedGlyph> glyphs;
    shape(run, glyphs);
    std::vector<std::int32_t> expected(run.length), measured(run.length, -1);
    for (const PlacedGlyph& glyph : glyphs) {
        require(glyph.unit >= run.start && glyph.unit - run.start < run.length, "a glyph outside the run");
        expected[glyph.unit - run.start] += glyph.advance;
    }
    for (int time = 0; time < 2; ++time) {
        measureAdvances(run, measured);
        require(measured == expected, "measured otherwise than shaped");
    }
}

void checkStretches(NSFont* font, std::u16string_view text) {
    for (NSUInteger place = 0; place < text.size();) {
        const FontStretch stretch = fontStretchAt(font, text, place);
        require(stretch.font && stretch.end > place && stretch.end <= text.size(), "no progress");
        place = stretch.end;
    }
}

}  // namespace
}  // namespace pelvor

// fontconfig forgets a little of what its rules for standing in make. Only the address sanitizer asks.
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig"; }

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace pelvor;
    AutoreleasePool pool;
    Input input{data, size};
    const Sample& sample = kSamples[input.byte() % std::size(kSamples)];
    const auto points = static_cast<float>(input.byte() + 1) / 8;
    const unsigned choices = input.byte(), from = input.byte();
    const unsigned other = choices & 0x80 ? input.byte() : 0;
    NSFont* font = fontFor(sample, points, other);
    const std::u16string text = input.text(sample.letters);
    const auto length = static_cast<NSUInteger>(text.size());
    ShapingRun run{text.data(),
                   length,
                   0,
                   length,
                   font,
                   sample.script,
                   choices & 1 ? "de" : nullptr,
                   sample.isRightToLeft,
                   static_cast<int>(choices >> 1 & 3) % 3};
    checkMeasuring(run);
    if (length > 1) {
        run.start = from % length;
        run.length = (length - run.start + 1) / 2;
        checkMeasuring(run);
    }
    checkStretches(font, text);
    return 0;
}
