// SPDX-License-Identifier: Apache-2.0
// ContextualGlyphs: the glyphs whose form or place depends on more than the glyph beside them.
#pragma once

#include <cstdint>

struct hb_face_t;
struct hb_set_t;
struct hb_shape_plan_t;

namespace pelvor {

/// The glyphs that take part in ligatures of letters and in contextual rules when a face is shaped by a plan.
class ContextualGlyphs {
  public:
    ContextualGlyphs(hb_face_t* face, hb_shape_plan_t* plan, std::uint32_t blank);
    ContextualGlyphs(const ContextualGlyphs&) = delete;
    ~ContextualGlyphs();

    bool has(std::uint32_t glyph) const;
    /// Whether these are all such glyphs, and the blank is none of them: rules may be for any glyph, too.
    bool areListed() const { return _areListed; }
    /// Whether words do without what stands behind the blanks beside them.
    bool leaveWordsAlone() const { return _leaveWordsAlone; }

  private:
    hb_set_t* _glyphs;
    bool _areListed = true;
    bool _leaveWordsAlone = true;
};

}  // namespace pelvor
