// SPDX-License-Identifier: Apache-2.0
#include "Text/Fonts/ContextualGlyphs.h"

#include <hb-aat.h>
#include <hb-ot.h>

#include <vector>

namespace pelvor {
namespace {

enum class Kind { freeOfContext, ligature, contextual };

// The list of lookups in one of a font's layout tables. What lies outside the table reads as 0.
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
        unsigned type = wordAt(placeOf(lookup));
        if (isExtended(lookup)) type = wordAt(placeOf(lookup) + wordAt(placeOf(lookup) + 6) + 2);
        if (_isSubstitution)  // one for one, one for several, a choice of one
            return type >= 1 && type <= 3 ? Kind::freeOfContext : type == 4 ? Kind::ligature : Kind::contextual;
        // One glyph, a pair; and marks, which stand in no pair of letters.
        const bool isFree = type == 1 || type == 2 || (type >= 4 && type <= 6);
        return isFree ? Kind::freeOfContext : Kind::contextual;
    }

    // Adds the glyphs of the ligatures that no mark takes part in. False if the table is too large to be right.
    bool addLigatures(unsigned lookup, hb_set_t* glyphs) const {
        unsigned steps = 0;
        const unsigned place = placeOf(lookup), count = wordAt(place + 4);
        for (unsigned i = 0; i < count; ++i) {
            unsigned subtable = place + wordAt(place + 6 + 2 * i);
            if (isExtended(lookup)) subtable += wordAt(subtable + 4) << 16 | wordAt(subtable + 6);
            if (!addLigaturesOf(subtable, glyphs, steps)) return false;
        }
        return true;
    }

  private:
    static constexpr unsigned kMostSteps = 1'000'000;

    unsigned wordAt(unsigned place) const {
        return place + 2 <= _length ? static_cast<unsigned>(_bytes[place] << 8 | _bytes[place + 1]) : 0;
    }
    unsigned placeOf(unsigned lookup) const { return _list + wordAt(_list + 2 + 2 * lookup); }
    bool isExtended(unsigned lookup) const { return wordAt(placeOf(lookup)) == (_isSubstitution ? 7 : 9); }
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
            for (unsigned glyph = wordAt(range); glyph <= last && glyphs.size() < 0x10000; ++glyph)
                glyphs.push_back(glyph);
        }
        return glyphs;
    }

    bool addLigaturesOf(unsigned subtable, hb_set_t* glyphs, unsigned& steps) const {
        const std::vector<unsigned> firsts = coverage(subtable + wordAt(subtable + 2));
        for (unsigned i = 0; i < wordAt(subtable + 4) && i < firsts.size(); ++i) {
            const unsigned set = subtable + wordAt(subtable + 6 + 2 * i);
            for (unsigned k = 0; k < wordAt(set); ++k) {
                const unsigned ligature = set + wordAt(set + 2 + 2 * k);
                if ((steps += 1 + wordAt(ligature + 2)) > kMostSteps) return false;
                addLigature(firsts[i], ligature, glyphs);
            }
        }
        return true;
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
};

}  // namespace

ContextualGlyphs::ContextualGlyphs(hb_face_t* face, hb_shape_plan_t* plan) : _glyphs(hb_set_create()) {
    _areUnknown = hb_aat_layout_has_substitution(face) || hb_aat_layout_has_positioning(face);
    hb_set_t* lookups = hb_set_create();
    for (hb_tag_t table : {HB_OT_TAG_GSUB, HB_OT_TAG_GPOS}) {
        const LookupList list(face, table);
        hb_set_clear(lookups);
        hb_ot_shape_plan_collect_lookups(plan, table, lookups);
        for (hb_codepoint_t lookup = HB_SET_VALUE_INVALID; hb_set_next(lookups, &lookup);) {
            const Kind kind = list.kindOf(lookup);
            if (kind == Kind::ligature)
                _areUnknown |= !list.addLigatures(lookup, _glyphs);
            else if (kind == Kind::contextual)
                hb_ot_layout_lookup_collect_glyphs(face, table, lookup, _glyphs, _glyphs, _glyphs, nullptr);
        }
    }
    hb_set_destroy(lookups);
}

ContextualGlyphs::~ContextualGlyphs() { hb_set_destroy(_glyphs); }

bool ContextualGlyphs::has(std::uint32_t glyph) const { return hb_set_has(_glyphs, glyph); }

}  // namespace pelvor
