// SPDX-License-Identifier: Apache-2.0
#include "Text/Layout/MeasuredText.h"

#include <unicode/ubidi.h>
#include <unicode/uchar.h>
#include <unicode/uscript.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "Foundation/TextBoundaries.h"
#include "Text/NSLayoutManager.h"
#include "Text/NSTextStorage.h"

namespace pelvor {
namespace {

constexpr bool isBlank(unichar unit) {
    return unit == ' ' || unit == 0x1680 || (unit >= 0x2000 && unit <= 0x200A && unit != 0x2007) ||
           unit == 0x205F || unit == 0x3000;
}

constexpr bool isSpecial(unichar unit) {
    return unit == '\t' || unit == kSoftHyphen || unit == NSAttachmentCharacter || isLineEnd(unit);
}

constexpr std::uint8_t markOf(unichar unit) {
    return isBlank(unit)     ? MeasuredText::kBlank
           : isSpecial(unit) ? MeasuredText::kSpecial
                             : MeasuredText::kText;
}

constexpr auto kMarksOfASCII = [] {
    std::array<std::uint8_t, 0x80> marks{};
    for (unichar unit = 0; unit < marks.size(); ++unit) marks[unit] = markOf(unit);
    return marks;
}();

// Below these characters are only Latin letters, and what takes the script of the text around it.
constexpr unichar kEndOfLatin = 0x2EA;

// Whether the unit may be of text from right to left, or order such text.
constexpr unichar kFirstToOrder = 0x590;
constexpr bool callsForOrdering(unichar unit) {
    if (unit < kFirstToOrder) return false;
    return unit <= 0x8FF || unit == 0x200F || (unit >= 0x202A && unit <= 0x202E) ||
           (unit >= 0x2066 && unit <= 0x2069) || unit == 0xD802 || unit == 0xD803 || unit == 0xD83A ||
           unit == 0xD83B || (unit >= 0xFB1D && unit <= 0xFDFF) || (unit >= 0xFE70 && unit <= 0xFEFC);
}

// Common and inherited characters take the script of the text around them.
UScriptCode scriptOf(char32_t character) {
    if (character < kEndOfLatin)
        return character >= 0xC0 ? (character == 0xD7 || character == 0xF7 ? USCRIPT_COMMON : USCRIPT_LATIN)
               : (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z')
                   ? USCRIPT_LATIN
                   : USCRIPT_COMMON;
    UErrorCode status = U_ZERO_ERROR;
    return uscript_getScript(static_cast<UChar32>(character), &status);
}

bool isPlaced(UScriptCode script) { return script > USCRIPT_INHERITED; }

struct ScriptStretch {
    UScriptCode script;
    std::uint32_t end;
};

ScriptStretch scriptStretch(std::u16string_view text, std::uint32_t start, std::uint32_t limit) {
    UScriptCode script = USCRIPT_COMMON;
    for (std::uint32_t unit = start, at = start; unit < limit; at = unit) {
        char32_t character;
        U16_NEXT(text.data(), unit, limit, character);
        const UScriptCode own = scriptOf(character);
        if (!isPlaced(own) || own == script) continue;
        if (isPlaced(script)) return {script, at};
        script = own;
    }
    return {script, limit};
}

}  // namespace

void MeasuredText::read(LayoutTools& tools, NSRange wanted, Direction direction, Purpose purpose) {
    range = wanted;
    units.resize(range.length);
    if (range.length) tools.storage->string()->getCharacters_range(units.data(), range);
    advances.assign(range.length, 0);
    marks.assign(range.length, 0);
    runs.clear();
    _styles.clear();
    markUnits();
    findStyles(tools);
    findDirections(direction);
    const bool isForLines = purpose == Purpose::lines;
    _measures = isForLines || hasSpecials || paragraph()->lineBreakMode() != NSLineBreakByWordWrapping;
    const std::vector<TextRun> stretches = std::exchange(runs, {});
    for (const TextRun& stretch : stretches) addTextRuns(tools, stretch.start, stretch.end, *stretch.style);
    if (size() && (isForLines || hasSpecials))
        tools.boundaries.markLineBreaks(units, stretches.front().style->language, kMayBreak, marks);
}

void MeasuredText::markUnits() {
    hasSpecials = false;
    _greatestUnit = 0;
    for (std::uint32_t i = 0; i < size(); ++i) {
        const unichar unit = units[i];
        marks[i] = unit < kMarksOfASCII.size() ? kMarksOfASCII[unit] : markOf(unit);
        if (marks[i] == kSpecial && !isLineEnd(unit)) hasSpecials = true;
        _greatestUnit = std::max(_greatestUnit, unit);
    }
}

// One run for each stretch of attributes; an empty text takes the attributes of the character before it.
void MeasuredText::findStyles(LayoutTools& tools) {
    const auto add = [&](NSDictionary* attributes, NSRange stretch) {
        _styles.push_back(tools.styles.styleFor(attributes, tools.layoutManager));
        TextRun run;
        run.start = stretch.location - range.location;
        run.end = NSMaxRange(stretch) - range.location;
        run.style = _styles.back().get();
        run.font = run.style->font;
        runs.push_back(run);
    };
    for (AttributeRun run : tools.storage->runsInRange(range)) add(run.attributes, run.range);
    if (runs.empty()) {
        NSDictionary* before =
            range.location ? tools.storage->attributesAtIndex_effectiveRange(range.location - 1, nullptr)
                           : nullptr;
        add(before, {range.location, 0});
    }
    _paragraphStyle = runs.front().style;
}

void MeasuredText::findDirections(Direction known) {
    const bool needsOrder =
        _greatestUnit >= kFirstToOrder && std::any_of(units.begin(), units.end(), callsForOrdering);
    const NSWritingDirection direction = paragraph()->baseWritingDirection();
    if (direction != NSWritingDirectionNatural)
        isRightToLeft = direction == NSWritingDirectionRightToLeft;
    else if (known != Direction::unknown)
        isRightToLeft = known == Direction::rightToLeft;
    else
        isRightToLeft = needsOrder && isParagraphReadRightToLeft({units.data(), size()});
    _levels.clear();
    if (!needsOrder && !isRightToLeft) return;
    UErrorCode status = U_ZERO_ERROR;
    UBiDi* order = ubidi_openSized(static_cast<std::int32_t>(size()), 0, &status);
    ubidi_setPara(order, units.data(), static_cast<std::int32_t>(size()), isRightToLeft ? 1 : 0, nullptr,
                  &status);
    const UBiDiLevel* levels = ubidi_getLevels(order, &status);
    if (U_SUCCESS(status) && levels) _levels.assign(levels, levels + size());
    ubidi_close(order);
    // What directs the order and is not seen itself must not part what it stands between.
    const auto isUnseen = [&](std::uint32_t unit) {
        const UCharDirection direction_ = u_charDirection(units[unit]);
        return direction_ == U_BOUNDARY_NEUTRAL || (units[unit] >= 0x202A && units[unit] <= 0x202E);
    };
    std::uint32_t first = 0;
    while (first < _levels.size() && isUnseen(first)) ++first;
    if (first == _levels.size()) return;
    std::fill_n(_levels.begin(), first, _levels[first]);
    for (std::uint32_t unit = first + 1; unit < _levels.size(); ++unit)
        if (isUnseen(unit)) _levels[unit] = _levels[unit - 1];
}

// Splits a stretch of attributes at changes of direction, special characters, scripts and fonts.
void MeasuredText::addTextRuns(LayoutTools& tools, std::uint32_t start, std::uint32_t end,
                               const TextStyle& style) {
    TextRun run;
    run.style = &style;
    run.font = style.font;
    run.start = run.end = start;
    if (start == end) return runs.push_back(run);
    while ((run.start = run.end) < end) {
        run.level = _levels.empty() ? 0 : _levels[run.start];
        run.font = style.font;
        const unichar first = units[run.start];
        if (marks[run.start] == kSpecial && first != kSoftHyphen) {
            run.kind = first == '\t'      ? TextRun::Kind::tab
                       : isLineEnd(first) ? TextRun::Kind::lineEnd
                       : style.attachment ? TextRun::Kind::attachment
                                          : TextRun::Kind::text;
            run.end = run.start + 1;
            if (run.kind != TextRun::Kind::text) {
                addRun(run);
                continue;
            }
        } else {
            run.kind = TextRun::Kind::text;
            run.end = endOfText(run.start, end);
        }
        const std::uint32_t stretchEnd = run.end;
        for (run.end = run.start; (run.start = run.end) < stretchEnd;) {
            const ScriptStretch script = _greatestUnit < kEndOfLatin
                                             ? ScriptStretch{USCRIPT_LATIN, stretchEnd}
                                             : scriptStretch(units, run.start, stretchEnd);
            run.script = isPlaced(script.script) ? scriptTagOfCode(script.script) : scriptTag("Latn");
            const FontStretch font =
                fontStretchAt(style.font, text().substr(0, script.end), run.start, style.eastAsian);
            run.font = font.font;
            run.end = endOfShaping(tools, run.start,
                                   std::clamp<std::uint32_t>(font.end, run.start + 1, script.end));
            addRun(run);
        }
    }
}

// Where text that begins at `start` ends: before another direction or a special character that is no soft
// hyphen.
std::uint32_t MeasuredText::endOfText(std::uint32_t start, std::uint32_t end) const {
    if (!_levels.empty())
        end = static_cast<std::uint32_t>(
            std::find_if(_levels.begin() + start, _levels.begin() + end,
                         [level = _levels[start]](std::uint8_t other) { return other != level; }) -
            _levels.begin());
    while (start < end) {
        const void* special = std::memchr(&marks[start], kSpecial, end - start);
        if (!special) break;
        start = static_cast<std::uint32_t>(static_cast<const std::uint8_t*>(special) - marks.data());
        if (units[start] != kSoftHyphen) return start;
        ++start;
    }
    return end;
}

// Where a run that begins at `start` ends: it is cut so that shaping takes time in proportion to the text,
// behind a blank, or where there is none between characters.
std::uint32_t MeasuredText::endOfShaping(LayoutTools& tools, std::uint32_t start, std::uint32_t end) {
    constexpr std::uint32_t kLongest = 4096, kReach = 1024;
    if (end - start <= kLongest) return end;
    const std::uint32_t limit = start + kLongest;
    for (std::uint32_t unit = limit; unit > limit - kReach; --unit)
        if (marks[unit - 1] == kBlank) return unit;
    const std::uint32_t cut = tools.boundaries.characterStart(text(), limit);
    return cut > start ? cut : limit;
}

void MeasuredText::addRun(TextRun run) {
    runs.push_back(run);
    if (_measures && run.kind == TextRun::Kind::text) measure(run);
}

ShapingRun MeasuredText::shapingOf(const TextRun& run) const {
    ShapingRun shaping;
    shaping.text = units.data();
    shaping.textLength = size();
    shaping.start = run.start;
    shaping.length = run.end - run.start;
    shaping.font = run.font;
    shaping.script = run.script;
    shaping.language = run.style->language.empty() ? nullptr : run.style->language.c_str();
    shaping.isRightToLeft = run.level & 1;
    shaping.ligatures = run.style->ligatures;
    return shaping;
}

void MeasuredText::keepStyle(const TextStyle* style,
                             std::vector<std::shared_ptr<const TextStyle>>& styles) const {
    for (const auto& own : _styles)
        if (own.get() == style && (styles.empty() || styles.back() != own)) return styles.push_back(own);
}

void MeasuredText::measure(const TextRun& run) {
    const std::span<Extent> own = std::span(advances).subspan(run.start, run.end - run.start);
    measureAdvances(shapingOf(run), own);
    if (run.style->kern || run.style->expansion != 1)
        for (Extent& advance : own) advance = run.style->spaced(advance);
}

std::size_t MeasuredText::runAt(std::uint32_t unit) const {
    auto after = std::upper_bound(runs.begin(), runs.end(), unit,
                                  [](std::uint32_t place, const TextRun& run) { return place < run.start; });
    return after == runs.begin() ? 0 : static_cast<std::size_t>(after - runs.begin()) - 1;
}

std::uint32_t MeasuredText::shownEnd(std::uint32_t start, std::uint32_t end) const {
    while (end > start && ((marks[end - 1] & kBlank) || isLineEnd(units[end - 1]))) --end;
    return end;
}

bool MeasuredText::canSpread(std::uint32_t start, std::uint32_t end) const {
    end = shownEnd(start, end);
    for (std::uint32_t unit = end; unit > start && units[unit - 1] != '\t'; --unit)
        if (isSpreadBlank(units[unit - 1]) || (isIdeograph(units[unit - 1]) && unit < end)) return true;
    return false;
}

}  // namespace pelvor
