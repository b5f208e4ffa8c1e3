// SPDX-License-Identifier: Apache-2.0
#include "Text/Fonts/ContextualGlyphs.h"

#include <hb-aat.h>
#include <hb-ot.h>

#include <algorithm>
#include <functional>
#include <vector>

namespace pelvor {
namespace {

enum class Kind { freeOfContext, ligature, contextual };

// The list of lookups in one of a font's layout tables. What lies outside the table reads as 0, and so does
// everything after more reading than a sound table takes.
class LookupList {
  public:
    LookupList(hb_face_t* face, hb_tag_t table)
        : _face(face), _isSubstitution(table == HB_OT_TAG_GSUB), _blob(hb_face_reference_table(face, table)) {
        constexpr unsigned kPlaceOfList = 8;
        _bytes = reinterpret_cast<const unsigned char*>(hb_blob_get_data(_blob, &_length));
        _list = wordAt(kPlaceOfList);
    }
    LookupList(const LookupList&) = delete;
    ~LookupList() { hb_blob_destroy(_blob); }

    Kind kindOf(unsigned lookup) const {
        const unsigned type = typeOf(lookup);
        if (_isSubstitution)  // one for one, one for several, a choice of one
            return type >= 1 && type <= 3 ? Kind::freeOfContext
                   : type == 4            ? Kind::ligature
                                          : Kind::contextual;
        // One glyph, a pair; and marks, which stand in no pair of letters.
        const bool isFree = type == 1 || type == 2 || (type >= 4 && type <= 6);
        return isFree ? Kind::freeOfContext : Kind::contextual;
    }

    // Whether no rule of a contextual lookup sees beyond the blank: a rule may have the blank in it only as
    // its first or last glyph, unless the rule moves glyphs without changing advances.
    bool endsAtBlank(unsigned lookup, unsigned blank) const {
        const unsigned count = wordAt(placeOf(lookup) + 4);
        for (unsigned i = 0; i < count; ++i)
            if (!subtableEndsAtBlank(typeOf(lookup), subtableOf(lookup, i), blank)) return false;
        return true;
    }

    // Adds the glyphs of the ligatures that no mark takes part in.
    void addLigatures(unsigned lookup, hb_set_t* glyphs) const {
        const unsigned count = wordAt(placeOf(lookup) + 4);
        for (unsigned i = 0; i < count; ++i) addLigaturesOf(subtableOf(lookup, i), glyphs);
    }

    bool isSound() const { return _reads <= kMostReads; }
    // Whether a rule of three or more glyphs that `endsAtBlank` saw has the blank, or any glyph, among them.
    bool hasWideRules() const { return _hasWideRules; }

  private:
    static constexpr unsigned kMostReads = 4'000'000;

    unsigned wordAt(unsigned place) const {
        if (std::size_t{place} + 2 > _length || ++_reads > kMostReads) return 0;
        return static_cast<unsigned>(_bytes[place] << 8 | _bytes[place + 1]);
    }
    unsigned placeOf(unsigned lookup) const { return _list + wordAt(_list + 2 + 2 * lookup); }
    bool isExtended(unsigned lookup) const { return wordAt(placeOf(lookup)) == (_isSubstitution ? 7 : 9); }
    unsigned typeOf(unsigned lookup) const {
        const unsigned place = placeOf(lookup);
        return wordAt(isExtended(lookup) ? place + wordAt(place + 6) + 2 : place);
    }
    unsigned subtableOf(unsigned lookup, unsigned index) const {
        const unsigned subtable = placeOf(lookup) + wordAt(placeOf(lookup) + 6 + 2 * index);
        return isExtended(lookup) ? subtable + (wordAt(subtable + 4) << 16 | wordAt(subtable + 6)) : subtable;
    }
    bool isMark(unsigned glyph) const {
        return hb_ot_layout_get_glyph_class(_face, glyph) == HB_OT_LAYOUT_GLYPH_CLASS_MARK;
    }

    std::vector<unsigned> coverage(unsigned place) const {
        std::vector<unsigned> glyphs;
        const unsigned count = wordAt(place + 2);
        for (unsigned i = 0; i < count; ++i) {
            if (wordAt(place) == 1) {
                glyphs.push_back(wordAt(place + 4 + 2 * i));
                continue;
            }
            const unsigned range = place + 4 + 6 * i, last = wordAt(range + 2);
            for (unsigned glyph = wordAt(range); glyph <= last && ++_reads <= kMostReads; ++glyph)
                glyphs.push_back(glyph);
        }
        return glyphs;
    }

    bool covers(unsigned place, unsigned glyph) const {
        const std::vector<unsigned> glyphs = coverage(place);
        return std::find(glyphs.begin(), glyphs.end(), glyph) != glyphs.end();
    }

    // The class of the glyph in a list of classes; 0 for glyphs that the list does not name.
    unsigned classOf(unsigned place, unsigned glyph) const {
        if (wordAt(place) == 1) {
            const unsigned first = wordAt(place + 2), count = wordAt(place + 4);
            return glyph >= first && glyph - first < count ? wordAt(place + 6 + 2 * (glyph - first)) : 0;
        }
        const unsigned count = wordAt(place + 2);
        for (unsigned range = place + 4; range < place + 4 + 6 * count; range += 6)
            if (wordAt(range) <= glyph && glyph <= wordAt(range + 2)) return wordAt(range + 4);
        return 0;
    }

    // The three parts of a rule: the glyphs before those that it changes, nearest first, these themselves,
    // and those behind. A rule that is not chained has only the second.
    enum Part { before, changed, behind };
    // Whether an element of a rule stands for the blank: a coverage, a class or a glyph.
    using IsBlank = std::function<bool(Part, unsigned element)>;

    // Whether the lookup leaves all advances as they are: it attaches marks, or shifts single glyphs.
    bool keepsAdvances(unsigned lookup) const {
        constexpr unsigned kAdvance = 0x4;
        const unsigned type = typeOf(lookup), count = wordAt(placeOf(lookup) + 4);
        if (type != 1) return type >= 4 && type <= 6;
        for (unsigned i = 0; i < count; ++i)
            if (wordAt(subtableOf(lookup, i) + 4) & kAdvance) return false;
        return true;
    }

    // The records tell which lookups a rule applies, each after the place where it does.
    bool keepAdvances(unsigned records, unsigned count) const {
        if (_isSubstitution) return false;
        for (unsigned i = 0; i < count; ++i)
            if (!keepsAdvances(wordAt(records + 4 * i + 2))) return false;
        return true;
    }

    // `unlisted` is 1 where the first of the changed glyphs is known already, so that the rule leaves it out.
    bool ruleEndsAtBlank(bool isChained, unsigned rule, unsigned unlisted, const IsBlank& isBlank) const {
        std::vector<bool> blanks;  // of all glyphs that the rule sees, in their order
        auto add = [&](Part part, unsigned list, unsigned count) {
            for (unsigned i = 0; i < count; ++i)
                blanks.push_back(isBlank(part, wordAt(list + 2 * (part == before ? count - 1 - i : i))));
        };
        unsigned records = 0, recordCount = 0;
        if (isChained) {
            for (Part part : {before, changed, behind}) {
                if (part == changed && unlisted) blanks.push_back(false);
                const unsigned count = wordAt(rule) - std::min(wordAt(rule), part == changed ? unlisted : 0);
                add(part, rule + 2, count);
                rule += 2 + 2 * count;
            }
            recordCount = wordAt(rule);
            records = rule + 2;
        } else {
            const unsigned count = wordAt(rule) - std::min(wordAt(rule), unlisted);
            if (unlisted) blanks.push_back(false);
            add(changed, rule + 4, count);
            recordCount = wordAt(rule + 2);
            records = rule + 4 + 2 * count;
        }
        if (blanks.size() < 3 || keepAdvances(records, recordCount)) return true;
        _hasWideRules |= std::find(blanks.begin(), blanks.end(), true) != blanks.end();
        return std::find(blanks.begin() + 1, blanks.end() - 1, true) == blanks.end() - 1;
    }

    bool hasBlank(Part part, unsigned list, unsigned count, const IsBlank& isBlank) const {
        for (unsigned i = 0; i < count; ++i)
            if (isBlank(part, wordAt(list + 2 * i))) return true;
        return false;
    }

    bool subtableEndsAtBlank(unsigned type, unsigned subtable, unsigned blank) const {
        constexpr unsigned kReverse = 8, kCursive = 3;
        const unsigned format = wordAt(subtable);
        const IsBlank isCovered = [&](Part, unsigned place) { return covers(subtable + place, blank); };
        const unsigned covered = subtable + wordAt(subtable + 2);
        if (!_isSubstitution && type == kCursive) return !covers(covered, blank);
        if (_isSubstitution && type == kReverse) {
            const unsigned count = wordAt(subtable + 4), behindList = subtable + 6 + 2 * count;
            return !covers(covered, blank) && !hasBlank(before, subtable + 6, count, isCovered) &&
                   !hasBlank(behind, behindList + 2, wordAt(behindList), isCovered);
        }
        const bool isChained = type == (_isSubstitution ? 6 : 8);
        if (format == 3) return ruleEndsAtBlank(isChained, subtable + 2, 0, isCovered);
        if (covers(covered, blank)) return false;
        const IsBlank isSame = [&](Part, unsigned glyph) { return glyph == blank; };
        if (format == 1) return rulesEndAtBlank(isChained, subtable, subtable + 4, isSame);
        // Three lists of classes, or one.
        unsigned classes[3] = {};
        for (Part part : {before, changed, behind})
            classes[part] = classOf(subtable + wordAt(subtable + 4 + (isChained ? 2 * part : 0)), blank);
        const IsBlank isClass = [&](Part part, unsigned cls) { return cls == classes[part]; };
        return rulesEndAtBlank(isChained, subtable, subtable + (isChained ? 10 : 6), isClass);
    }

    bool rulesEndAtBlank(bool isChained, unsigned subtable, unsigned sets, const IsBlank& isBlank) const {
        const unsigned setCount = wordAt(sets);
        for (unsigned i = 0; i < setCount; ++i) {
            const unsigned offset = wordAt(sets + 2 + 2 * i), set = subtable + offset;
            for (unsigned k = 0; offset && k < wordAt(set); ++k)
                if (!ruleEndsAtBlank(isChained, set + wordAt(set + 2 + 2 * k), 1, isBlank)) return false;
        }
        return true;
    }

    void addLigaturesOf(unsigned subtable, hb_set_t* glyphs) const {
        const std::vector<unsigned> firsts = coverage(subtable + wordAt(subtable + 2));
        for (unsigned i = 0; i < wordAt(subtable + 4) && i < firsts.size(); ++i) {
            const unsigned set = subtable + wordAt(subtable + 6 + 2 * i);
            for (unsigned k = 0; k < wordAt(set); ++k)
                addLigature(firsts[i], set + wordAt(set + 2 + 2 * k), glyphs);
        }
    }

    void addLigature(unsigned first, unsigned ligature, hb_set_t* glyphs) const {
        std::vector<unsigned> parts{first};
        for (unsigned i = 1; i < wordAt(ligature + 2); ++i) parts.push_back(wordAt(ligature + 2 + 2 * i));
        for (unsigned part : parts)
            if (isMark(part)) return;
        for (unsigned part : parts) hb_set_add(glyphs, part);
    }

    hb_face_t* _face;
    bool _isSubstitution;
    hb_blob_t* _blob;
    const unsigned char* _bytes = nullptr;
    unsigned _length = 0;
    unsigned _list = 0;
    mutable unsigned _reads = 0;
    mutable bool _hasWideRules = false;
};

}  // namespace

ContextualGlyphs::ContextualGlyphs(hb_face_t* face, hb_shape_plan_t* plan, std::uint32_t blank)
    : _glyphs(hb_set_create()),
      _leaveWordsAlone(!hb_aat_layout_has_substitution(face) && !hb_aat_layout_has_positioning(face)) {
    hb_set_t *lookups = hb_set_create(), *involved = hb_set_create();
    for (hb_tag_t table : {HB_OT_TAG_GSUB, HB_OT_TAG_GPOS}) {
        const LookupList list(face, table);
        hb_set_clear(lookups);
        hb_ot_shape_plan_collect_lookups(plan, table, lookups);
        for (hb_codepoint_t lookup = HB_SET_VALUE_INVALID; hb_set_next(lookups, &lookup);) {
            const Kind kind = list.kindOf(lookup);
            hb_set_clear(involved);
            if (kind == Kind::ligature) {
                list.addLigatures(lookup, involved);
                _leaveWordsAlone &= !hb_set_has(involved, blank);
            }
            if (kind == Kind::contextual) {
                hb_ot_layout_lookup_collect_glyphs(face, table, lookup, involved, involved, involved,
                                                   nullptr);
                _leaveWordsAlone &= list.endsAtBlank(lookup, blank);
            }
            _areListed &= !hb_set_has(involved, blank);
            hb_set_union(_glyphs, involved);
        }
        _leaveWordsAlone &= list.isSound();
        _areListed &= !list.hasWideRules();
    }
    hb_set_destroy(involved);
    hb_set_destroy(lookups);
}

ContextualGlyphs::~ContextualGlyphs() { hb_set_destroy(_glyphs); }

bool ContextualGlyphs::has(std::uint32_t glyph) const { return hb_set_has(_glyphs, glyph); }

}  // namespace pelvor
