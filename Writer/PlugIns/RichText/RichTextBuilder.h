// SPDX-License-Identifier: Apache-2.0
// RichTextBuilder: takes a text as it is read, with the numbers of its formats.
#pragma once

#include <cstdint>
#include <vector>

#include "Foundation/UnitBuffer.h"

namespace pelvor {

/// The format of a character is known when the character comes; that of a paragraph is the one at its end.
class RichTextBuilder {
  public:
    struct Run {
        std::size_t start;
        std::uint32_t character, paragraph;  // numbers of formats
    };

    explicit RichTextBuilder(std::size_t expected) : _units(expected) {}

    /// The buffer for characters of that format.
    UnitBuffer& unitsOfFormat(std::uint32_t format) {
        if (_hasOpen) [[unlikely]]
            appendOpen();
        if (_runs.empty() || _runs.back().character != format || _isParagraphStart) startRun(format);
        return _units;
    }
    /// Ends a cell of a table: a tab parts it from the next cell, if there is one.
    void endCell() {
        ++_openCells;
        _hasOpen = true;
    }
    /// Ends a row of a table: no tab follows the last cell.
    void endRow() {
        if (_openCells > 0) --_openCells;
    }
    /// Whether a form feed comes before the next character.
    void setOpenBreak(bool isOpen) { _hasOpen = _hasOpenBreak = isOpen; }
    /// Gives the characters since the last paragraph's end the paragraph format of that number.
    void endParagraph(std::uint32_t format);
    /// Appends another text, all of whose paragraphs have ended.
    void append(const RichTextBuilder& other);

    bool isAtParagraphStart() const { return _isParagraphStart && !_hasOpen; }
    bool endsWithLineFeed() const { return length() == 0 || _units.view().back() == u'\n'; }
    std::size_t length() const { return _units.view().size(); }
    const std::vector<Run>& runs() const { return _runs; }
    /// The text; the builder is not to be used again.
    NSString* takeString() { return _units.takeString(); }

  private:
    void startRun(std::uint32_t format);
    void appendOpen();

    UnitBuffer _units;
    std::vector<Run> _runs;
    std::size_t _paragraphRun = 0;  // the first run whose paragraph has not ended
    std::size_t _openCells = 0;
    bool _hasOpenBreak = false;
    bool _hasOpen = false;  // there are open cells or breaks
    bool _isParagraphStart = true;
};

}  // namespace pelvor
