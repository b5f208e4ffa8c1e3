// SPDX-License-Identifier: Apache-2.0
// Measuring takes the first of three roads that is exact: letters by a table of pairs; words between blanks,
// shaped once and remembered; the whole run by the shaper.
#include <hb.h>

#include <algorithm>
#include <cassert>
#include <mutex>
#include <optional>

#include "Text/Fonts/ContextualGlyphs.h"
#include "Text/Fonts/FontVariant.h"
#include "Text/Fonts/PairTable.h"
#include "Text/Fonts/Shaper.h"
#include "Text/Fonts/WordCache.h"
#include "Text/NSFont.h"

namespace pelvor {
namespace {

constexpr char16_t kBlank = ' ';

// The first road that is tried for a script.
enum class Road { pairs, words, wholeRun };

Road roadFor(ScriptTag script) {
    switch (script) {
        case scriptTag("Latn"):
        case scriptTag("Grek"):
        case scriptTag("Cyrl"):
        case scriptTag("Armn"):
        case scriptTag("Geor"):
        case scriptTag("Zyyy"):
            return Road::pairs;
        case scriptTag("Arab"):
        case scriptTag("Hebr"):
        case scriptTag("Syrc"):
        case scriptTag("Ethi"):
        case scriptTag("Deva"):
        case scriptTag("Beng"):
        case scriptTag("Guru"):
        case scriptTag("Gujr"):
        case scriptTag("Orya"):
        case scriptTag("Taml"):
        case scriptTag("Telu"):
        case scriptTag("Knda"):
        case scriptTag("Mlym"):
        case scriptTag("Sinh"):
            return Road::words;
        default:
            return Road::wholeRun;  // most of the other scripts have no blanks between words
    }
}

// The sums of each cluster's advances, in units of the font. `start` is the first unit of the run.
void sumAdvances(const ShapedText& shaped, NSUInteger start, std::span<std::int32_t> advances) {
    std::fill(advances.begin(), advances.end(), 0);
    for (std::size_t i = 0; i < shaped.glyphs.size(); ++i) {
        std::int32_t& sum = advances[shaped.glyphs[i].cluster - start];
        sum = addAdvance(sum, shaped.places[i].x_advance);
    }
}

void measureWhole(const FontVariant& variant, const ShapingRun& run, std::int32_t* advances) {
    sumAdvances(shapeInFontUnits(variant, run), run.start, {advances, run.length});
}

// What measures the text of one font, script, language and direction. One thread at a time.
class Measurer {
  public:
    explicit Measurer(const ShapingRun& run);
    bool isFor(const ShapingRun& run) const;

    /// Writes the advance of each cluster, in units of the font, at its first unit.
    void measure(const ShapingRun& run, std::int32_t* advances);

  private:
    // So many runs are compared with the shaper's result.
    static constexpr unsigned kChecks = 64;

    bool measureWords(const ShapingRun& run, std::int32_t* advances);
    bool measureWord(std::u16string_view word, bool isBeforeBlank, std::int32_t* advances);
    bool shapeWord(std::u16string_view word, bool isBeforeBlank, std::int32_t* advances);
    bool hasCircle(const ShapedText& shaped) const;
    bool isExact(const ShapingRun& run, const std::int32_t* advances);
    ShapingRun runOf(std::u16string_view text) const;
    std::vector<PlainGlyph> shapePlainly(std::u16string_view text) const;

    const FontVariant& _variant;  // whose measurer this is
    ShapingRun _style;            // without text and font
    hb_language_t _language;
    std::uint32_t _number;
    Road _road;
    unsigned _checked = 0;
    PlainGlyph _blank{};         // a blank alone
    hb_codepoint_t _circle = 0;  // what carries marks without a letter; 0 if the font has none
    std::optional<ContextualGlyphs> _contextual;
    std::optional<PairTable> _pairs;
};

// All that measuring shares.
struct Shared {
    std::mutex mutex;
    WordCache words;
    std::uint32_t measurerCount = 0;

    static Shared& instance() {
        static Shared* shared = new Shared;
        return *shared;
    }
};

hb_language_t languageOf(const ShapingRun& run) {
    return run.language ? hb_language_from_string(run.language, -1) : nullptr;
}

Measurer::Measurer(const ShapingRun& run)
    : _variant(run.font->variant()),
      _style(run),
      _language(languageOf(run)),
      _number(Shared::instance().measurerCount++),
      _road(roadFor(run.script)) {
    _style.language = _language ? hb_language_to_string(_language) : nullptr;
    _style.font = nullptr;
    if (_road == Road::wholeRun) return;
    hb_font_get_nominal_glyph(_variant.face().shaper(), 0x25CC, &_circle);
    const auto blank = shapePlainly({&kBlank, 1});
    if (blank.size() == 1) _blank = blank[0];
    hb_shape_plan_t* plan = makeShapePlan(_variant, run);
    _contextual.emplace(hb_font_get_face(_variant.face().shaper()), plan, _blank.glyph);
    hb_shape_plan_destroy(plan);
    if (blank.size() != 1 || !_contextual->leaveWordsAlone())
        _road = Road::wholeRun;
    else if (_road == Road::pairs && !run.isRightToLeft && _contextual->areListed())
        _pairs.emplace([this](std::u16string_view text) { return shapePlainly(text); },
                       [this](std::uint32_t glyph) { return _contextual->has(glyph); });
}

bool Measurer::isFor(const ShapingRun& run) const {
    return run.script == _style.script && languageOf(run) == _language &&
           run.isRightToLeft == _style.isRightToLeft && run.ligatures == _style.ligatures;
}

ShapingRun Measurer::runOf(std::u16string_view text) const {
    ShapingRun run = _style;
    run.text = text.data();
    run.textLength = run.length = static_cast<NSUInteger>(text.size());
    run.start = 0;
    return run;
}

std::vector<PlainGlyph> Measurer::shapePlainly(std::u16string_view text) const {
    const ShapedText shaped = shapeInFontUnits(_variant, runOf(text));
    std::vector<PlainGlyph> glyphs;
    if (shaped.glyphs.size() != text.size()) return {};
    for (std::size_t i = 0; i < shaped.glyphs.size(); ++i) {
        const hb_glyph_position_t& place = shaped.places[i];
        if (shaped.glyphs[i].cluster != i || place.x_offset || place.y_offset || place.y_advance) return {};
        glyphs.push_back({shaped.glyphs[i].codepoint, place.x_advance});
    }
    return glyphs;
}

void Measurer::measure(const ShapingRun& run, std::int32_t* advances) {
    if (_road != Road::wholeRun && measureWords(run, advances) && isExact(run, advances)) return;
    measureWhole(_variant, run, advances);
}

bool Measurer::isExact(const ShapingRun& run, const std::int32_t* advances) {
    if (_checked == kChecks) return true;
    ++_checked;
    std::vector<std::int32_t> whole(run.length);
    measureWhole(_variant, run, whole.data());
    if (std::equal(whole.begin(), whole.end(), advances)) return true;
    _road = Road::wholeRun;  // from now on
    return false;
}

// False if words cannot be measured by themselves here.
bool Measurer::measureWords(const ShapingRun& run, std::int32_t* advances) {
    const std::size_t start = run.start, end = start + run.length;
    const std::u16string_view text(run.text, end);
    // Letters at both ends may join with what stands beside the run.
    auto joins = [&](std::size_t place) { return run.text[place] > kBlank; };
    if (!_pairs && ((start > 0 && joins(start - 1)) || (end < run.textLength && joins(end)))) return false;
    for (std::size_t word = start; word <= end;) {
        const std::size_t blank = std::min(text.find(kBlank, word), end);
        const std::size_t first = word > start ? word - 1 : word;  // the blank before it
        if (!measureWord(text.substr(first, blank - first), blank < end, advances + (first - start)))
            return false;
        word = blank + 1;
    }
    return true;
}

bool Measurer::measureWord(std::u16string_view word, bool isBeforeBlank, std::int32_t* advances) {
    if (_pairs) {
        const PairTable::Result result = _pairs->measure(word, isBeforeBlank, advances);
        if (result == PairTable::Result::measured) return true;
        if (result == PairTable::Result::dependsOnNeighbours) return false;
    }
    return shapeWord(word, isBeforeBlank, advances);
}

// Whether marks stand without their letter. The shaper puts a circle under them, but leaves out some circles,
// depending on how many syllables stand before them in the run.
bool Measurer::hasCircle(const ShapedText& shaped) const {
    return _circle &&
           std::any_of(shaped.glyphs.begin(), shaped.glyphs.end(),
                       [this](const hb_glyph_info_t& glyph) { return glyph.codepoint == _circle; });
}

// The word is shaped between its blanks, since its letters may kern with them.
bool Measurer::shapeWord(std::u16string_view word, bool isBeforeBlank, std::int32_t* advances) {
    constexpr std::size_t kLongest = 64;  // of a word that is worth remembering
    const bool isAfterBlank = word.starts_with(kBlank);
    const WordCache::Key key{_number, isAfterBlank, isBeforeBlank, word.substr(isAfterBlank)};
    WordCache& cache = Shared::instance().words;
    if (auto known = cache.find(key)) {
        std::copy(known->begin(), known->end(), advances);
        return true;
    }
    std::u16string text(word);
    if (isBeforeBlank) text += kBlank;
    std::vector<std::int32_t> all(text.size());
    const ShapedText shaped = shapeInFontUnits(_variant, runOf(text));
    if (hasCircle(shaped)) return false;
    sumAdvances(shaped, 0, all);
    if (isBeforeBlank && all.back() != _blank.advance) return false;
    all.resize(word.size());
    std::copy(all.begin(), all.end(), advances);
    if (word.size() <= kLongest) cache.add(key, all);
    return true;
}

Measurer& measurerFor(const ShapingRun& run) {
    using Measurers = std::vector<std::unique_ptr<Measurer>>;
    FontVariant& variant = run.font->variant();
    if (!variant.measurer) variant.measurer = std::make_shared<Measurers>();
    auto& measurers = *static_cast<Measurers*>(variant.measurer.get());
    for (const auto& measurer : measurers)
        if (measurer->isFor(run)) return *measurer;
    return *measurers.emplace_back(std::make_unique<Measurer>(run));
}

}  // namespace

void measureAdvances(const ShapingRun& run, std::span<std::int32_t> advances) {
    assert(advances.size() == run.length);
    if (!run.length) return;
    {
        std::lock_guard lock(Shared::instance().mutex);
        measurerFor(run).measure(run, advances.data());
    }
    const PointScale scale(run.font->variant(), run.font->pointSize());
    for (std::int32_t& advance : advances) advance = scale(advance);
}

}  // namespace pelvor
