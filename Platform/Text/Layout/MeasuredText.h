// SPDX-License-Identifier: Apache-2.0
// A stretch of text made ready for line breaking: its runs of one font and direction, its advances, its
// breaks.
#pragma once

#include <span>
#include <string_view>

#include "Text/Fonts/Shaping.h"
#include "Text/Layout/LineBreaks.h"
#include "Text/Layout/Paragraphs.h"
#include "Text/Layout/TextStyle.h"

namespace pelvor {

class NSTextStorage;

inline constexpr unichar kSoftHyphen = 0xAD;

/// Blanks that grow in justified lines.
constexpr bool isSpreadBlank(unichar unit) { return unit == ' ' || unit == 0xA0 || unit == 0x3000; }
/// What justified lines without blanks are spread at.
constexpr bool isIdeograph(unichar unit) {
    return (unit >= 0x2E80 && unit <= 0x9FFF) || (unit >= 0xF900 && unit <= 0xFAFF) ||
           (unit >= 0xFF00 && unit <= 0xFFEF);
}

/// Units that are set in one way.
struct TextRun {
    enum class Kind : std::uint8_t { text, tab, attachment, lineEnd };

    std::uint32_t start = 0, end = 0;
    Kind kind = Kind::text;
    std::uint8_t level = 0;  // of embedding: odd from right to left
    ScriptTag script = 0;
    const TextStyle* style = nullptr;
    Unretained<NSFont> font = nullptr;
    NSRect frame{};  // of an attachment, from the baseline, y upwards
};

/// What the layout of one layout manager uses again and again. One thread at a time.
struct LayoutTools {
    Unretained<NSLayoutManager> layoutManager = nullptr;
    Unretained<NSTextStorage> storage = nullptr;
    TextStyles styles;
    Boundaries boundaries;
};

class MeasuredText {
  public:
    enum Mark : std::uint8_t {
        kMayBreak = 1,  ///< a line may begin before the unit
        kBlank = 2,     ///< hangs over the end of a line
        kSpecial = 4,   ///< a tab, an attachment, a line end or a soft hyphen
        kText = 8,      ///< other than a blank
    };

    enum class Direction { unknown, leftToRight, rightToLeft };
    enum class Purpose { lines, glyphs };

    /// Reads units from the storage and measures them. They are part of one paragraph, whose direction may be
    /// known. For glyphs, breaks are not looked for, and only text is measured that has tabs or may be cut.
    void read(LayoutTools& tools, NSRange range, Direction direction, Purpose purpose = Purpose::lines);

    std::uint32_t size() const { return static_cast<std::uint32_t>(units.size()); }
    std::u16string_view text() const { return units; }
    NSParagraphStyle* paragraph() const { return _paragraphStyle->paragraph; }
    /// What shapes all of the run.
    ShapingRun shapingOf(const TextRun& run) const;
    /// Keeps a style alive that a run refers to.
    void keepStyle(const TextStyle* style, std::vector<std::shared_ptr<const TextStyle>>& styles) const;
    /// The run that holds the unit; of an empty text an empty run.
    std::size_t runAt(std::uint32_t unit) const;
    /// Behind the last unit of the line that does not hang over: before the line end or the blanks at the
    /// end.
    std::uint32_t shownEnd(std::uint32_t start, std::uint32_t end) const;
    /// Whether a justified line can grow wider: at blanks behind its last tab, or between ideographs.
    bool canSpread(std::uint32_t start, std::uint32_t end) const;

    NSRange range{};  // in the storage
    std::u16string units;
    std::vector<Extent> advances;  // of the cluster that begins at the unit, with the kern
    std::vector<std::uint8_t> marks;
    std::vector<TextRun> runs;
    bool isRightToLeft = false;
    bool hasSpecials = false;  // apart from the line end

  private:
    void markUnits();
    void findDirections(Direction known);
    void findStyles(LayoutTools& tools);
    void addTextRuns(LayoutTools& tools, std::uint32_t start, std::uint32_t end, const TextStyle& style);
    void addRun(TextRun run);
    std::uint32_t endOfText(std::uint32_t start, std::uint32_t end) const;
    std::uint32_t endOfShaping(LayoutTools& tools, std::uint32_t start, std::uint32_t end);
    void measure(const TextRun& run);

    std::vector<std::shared_ptr<const TextStyle>> _styles;
    const TextStyle* _paragraphStyle = nullptr;
    bool _measures = true;
    unichar _greatestUnit = 0;
    std::vector<std::uint8_t> _levels;  // empty where all text runs from left to right
};

}  // namespace pelvor
