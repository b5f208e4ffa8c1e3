// SPDX-License-Identifier: Apache-2.0
// A line's glyphs and where its characters stand, made when somebody looks at the line.
#pragma once

#include "Text/Layout/Typesetter.h"

namespace pelvor {

/// Glyphs of one font that stand side by side.
struct LineRun {
    TextRun::Kind kind = TextRun::Kind::text;
    std::uint8_t level = 0;
    std::uint32_t start = 0, end = 0;  // units of the block
    const TextStyle* style = nullptr;
    Unretained<NSFont> font = nullptr;
    Extent left = 0, width = 0;
    std::size_t firstGlyph = 0, glyphCount = 0;
    bool isSign = false;  // a hyphen or an ellipsis, which no unit stands for
    NSRect frame{};       // of an attachment
};

/// What cannot be parted: a unit, or the units of a cluster.
struct GlyphPiece {
    std::uint32_t start = 0, end = 0;  // units of the block
    Extent left = 0, width = 0;
    bool isRightToLeft = false;
    NSGlyph glyph = 0;
};

/// Places are in 1/64 point from the left edge of the line's text, from left to right.
class LineGlyphs {
  public:
    LineGlyphs(LayoutTools& tools, const MeasuredText& text, const Line& line, std::uint32_t end);

    std::span<const LineRun> runs() const { return _runs; }
    /// Of a run, from left to right. Their units count from the line's first one.
    std::span<const PlacedGlyph> glyphsOf(const LineRun& run) const {
        return std::span(_glyphs).subspan(run.firstGlyph, run.glyphCount);
    }
    /// The text of the line.
    const std::u16string& units() const { return _units; }
    /// In the order of the text.
    std::span<const GlyphPiece> pieces() const { return _pieces; }
    const GlyphPiece& pieceAt(std::uint32_t unit) const;

    struct Caret {
        std::uint32_t unit = 0;
        Extent place = 0;  // where a caret before the character stands
    };
    /// Where carets can stand, in the order of the text: before each of the characters as users see them, and
    /// at last behind the line.
    const std::vector<Caret>& carets(Boundaries& boundaries);
    std::uint32_t start() const { return _start; }
    std::uint32_t end() const { return _end; }
    /// Behind what can be seen: before the line end or the blanks at the end.
    std::uint32_t textEnd() const { return _textEnd; }

  private:
    struct Hidden {
        std::uint32_t start, end;
    };

    Hidden hiddenPart(LayoutTools& tools, const MeasuredText& text, const Line& line) const;
    void addRuns(const MeasuredText& text, std::uint32_t start, std::uint32_t end, bool isTrailing);
    void addSign(const MeasuredText& text, std::uint32_t unit, const unichar* sign);
    void shapeText(const MeasuredText& text, const TextRun& source, LineRun& run);
    void spread(Extent extra, std::size_t runCount);
    void orderRuns(std::size_t first, std::size_t last);
    Extent placeRuns(std::size_t first, std::size_t last, Extent left);
    void findPieces();
    void addClusters(const LineRun& run);

    std::uint32_t _start, _end, _textEnd;
    bool _isRightToLeft;
    std::u16string _units;
    std::vector<std::shared_ptr<const TextStyle>> _styles;
    std::vector<LineRun> _runs;
    std::vector<PlacedGlyph> _glyphs;
    std::vector<GlyphPiece> _pieces;
    std::vector<Caret> _carets;
};

}  // namespace pelvor
