// SPDX-License-Identifier: Apache-2.0
#include "Text/Fonts/PairTable.h"

#include <unicode/uchar.h>

#include <algorithm>

namespace pelvor {
namespace {

// Letters that join with what stands before them, and what is not shown, stand in no pair.
bool mayStandInPair(char16_t unit) {
    const auto category = static_cast<std::uint32_t>(U_GET_GC_MASK(unit));
    return unit >= ' ' && !(category & (U_GC_M_MASK | U_GC_C_MASK)) &&
           !u_hasBinaryProperty(unit, UCHAR_DEFAULT_IGNORABLE_CODE_POINT);
}

}  // namespace

PairTable::Result PairTable::measure(std::u16string_view word, bool isBeforeBlank, std::int32_t* advances) {
    if (word.empty()) return Result::measured;
    const Class blank = classOf(' '), behind = isBeforeBlank ? blank : kEnd;
    Class before = kEnd, first = classOf(word[0]);
    int specials = 0;  // in a row, up to and with `first`
    for (std::size_t i = 0; i < word.size(); ++i) {
        const Class second = i + 1 < word.size() ? classOf(word[i + 1]) : behind;
        if (first == kRefused || second == kRefused) return Result::needsShaping;
        const Letter& letter = *_letters[first];
        std::int16_t advance = letter.before[second];
        if (advance == kUnknown) [[unlikely]]
            advance = learnPair(first, second);
        if (advance == kNoPair) [[unlikely]]
            return first == blank || second == blank ? Result::dependsOnNeighbours : Result::needsShaping;
        if (letter.isSpecial) [[unlikely]] {
            const bool goesOn = second != kEnd && _letters[second]->isSpecial;
            if (++specials > 3 || (specials == 2 && goesOn && !isPlainTriple(before, first, second)))
                return Result::needsShaping;
        } else {
            specials = 0;
        }
        advances[i] = advance;
        before = first;
        first = second;
    }
    return Result::measured;
}

PairTable::Class PairTable::classOf(char16_t unit) {
    if (unit >= kUnits) return kRefused;
    const Class known = _classes[unit];
    return known ? known : learnClass(unit);
}

PairTable::Class PairTable::learnClass(char16_t unit) {
    Class& learned = _classes[unit];
    learned = kRefused;
    if (_letters.empty()) _letters.emplace_back();
    if (_letters.size() == kRefused || !mayStandInPair(unit)) return learned;
    const auto alone = _shapePlainly({&unit, 1});
    if (alone.size() != 1 || alone[0].advance <= kNoPair || alone[0].advance > INT16_MAX) return learned;
    learned = static_cast<Class>(_letters.size());
    auto letter = std::make_unique<Letter>();
    letter->unit = unit;
    letter->isSpecial = _isSpecialGlyph(alone[0].glyph);
    letter->alone = alone[0];
    letter->before.fill(kUnknown);
    letter->before[kEnd] = static_cast<std::int16_t>(alone[0].advance);
    _letters.push_back(std::move(letter));
    return learned;
}

bool PairTable::areAlone(const std::vector<PlainGlyph>& glyphs, std::initializer_list<Class> classes) const {
    return std::equal(
        glyphs.begin(), glyphs.end(), classes.begin(), classes.end(),
        [this](PlainGlyph glyph, Class cls) { return glyph.glyph == _letters[cls]->alone.glyph; });
}

std::int16_t PairTable::learnPair(Class first, Class second) {
    std::int16_t& learned = _letters[first]->before[second];
    learned = kNoPair;
    const char16_t text[] = {_letters[first]->unit, _letters[second]->unit};
    const auto glyphs = _shapePlainly({text, 2});
    if (areAlone(glyphs, {first, second}) && glyphs[1].advance == _letters[second]->alone.advance &&
        glyphs[0].advance > kNoPair && glyphs[0].advance <= INT16_MAX)
        learned = static_cast<std::int16_t>(glyphs[0].advance);
    return learned;
}

bool PairTable::isPlainTriple(Class first, Class second, Class third) {
    const std::uint32_t key = static_cast<std::uint32_t>(first) << 16 | second << 8 | third;
    if (auto known = _triples.find(key); known != _triples.end()) return known->second;
    const char16_t text[] = {_letters[first]->unit, _letters[second]->unit, _letters[third]->unit};
    const auto glyphs = _shapePlainly({text, 3});
    const bool isPlain =
        areAlone(glyphs, {first, second, third}) && glyphs[0].advance == _letters[first]->before[second] &&
        glyphs[1].advance == learnPair(second, third) && glyphs[2].advance == _letters[third]->alone.advance;
    return _triples.emplace(key, isPlain).first->second;
}

}  // namespace pelvor
