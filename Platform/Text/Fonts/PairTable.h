// SPDX-License-Identifier: Apache-2.0
// PairTable: the advances of letters that depend on no more than the letter behind them.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace pelvor {

/// What a short text becomes when it is shaped alone: a glyph a unit, in the order of the text, or nothing if
/// the font does anything else with it than to change advances.
struct PlainGlyph {
    std::uint32_t glyph;
    std::int32_t advance;
};
using ShapePlainly = std::function<std::vector<PlainGlyph>(std::u16string_view)>;

/// The advance of a letter before a letter, in units of the font, learned from the shaper one pair at a time
/// for up to 254 letters: most text of alphabets is then measured without shaping.
///
/// The advances of pairs are those of the whole text because a pair is refused when the font does more with
/// it than to change the first advance (a ligature, a kern that is split over both glyphs), and because rules
/// that look at more than two letters are known: the lookups of the font name the letters that take part in
/// ligatures and in contextual rules. Three such letters in a row are tried as they stand, four are refused.
///
/// One thread at a time.
class PairTable {
  public:
    /// Special are the glyphs that take part in ligatures and in contextual rules.
    PairTable(ShapePlainly shapePlainly, std::function<bool(std::uint32_t glyph)> isSpecial)
        : _shapePlainly(std::move(shapePlainly)), _isSpecialGlyph(std::move(isSpecial)) {}

    enum class Result {
        measured,
        needsShaping,         ///< the font does more with this word than to change advances
        dependsOnNeighbours,  ///< and with a blank beside it too: what stands behind the blank may matter
    };

    /// Writes the advances of a word's units, and before them that of the blank before it if `word` begins
    /// with one. A blank or the end of the text follows.
    Result measure(std::u16string_view word, bool isBeforeBlank, std::int32_t* advances);

  private:
    using Class = std::uint8_t;
    static constexpr Class kEnd = 0;        // of the text; the first class
    static constexpr Class kRefused = 255;  // for letters that stand in no pair
    static constexpr std::int16_t kUnknown = -32768, kNoPair = -32767;
    static constexpr char16_t kUnits = 0x2100;  // above them no unit has a class

    struct Letter {
        char16_t unit = 0;
        bool isSpecial = false;
        PlainGlyph alone{};
        std::array<std::int16_t, 256> before;  // its advance before each class
    };

    Class classOf(char16_t unit);
    Class learnClass(char16_t unit);
    std::int16_t learnPair(Class first, Class second);
    bool isPlainTriple(Class first, Class second, Class third);
    bool areAlone(const std::vector<PlainGlyph>& glyphs, std::initializer_list<Class> classes) const;

    ShapePlainly _shapePlainly;
    std::function<bool(std::uint32_t)> _isSpecialGlyph;
    std::array<Class, kUnits> _classes{};           // 0: unknown
    std::vector<std::unique_ptr<Letter>> _letters;  // by class; the first has none
    std::unordered_map<std::uint32_t, bool> _triples;
};

}  // namespace pelvor
