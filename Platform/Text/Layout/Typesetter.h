// SPDX-License-Identifier: Apache-2.0
// Breaks measured text into lines.
#pragma once

#include "Text/Layout/MeasuredText.h"

namespace pelvor {

class NSTextContainer;
class NSTextTab;

/// A place for a line or for a fragment of one.
struct LineRoom {
    Extent left = 0, width = 0;
    Extent padding = 0;  ///< to be left free at both ends

    friend bool operator==(const LineRoom&, const LineRoom&) = default;
};

/// Where lines find room, one below the other.
class LineRooms {
  public:
    virtual ~LineRooms() = default;

    /// The rooms beside each other that a line of this height has, from the left; at least one. What is left
    /// free above the line is written to `skip`.
    virtual std::span<const LineRoom> rooms(Extent height, Extent& skip) = 0;
    /// Moves down past what makes the rooms narrow; false if nothing does.
    virtual bool descend() { return false; }
    /// Takes the height, or moves on to a container where it is to be tried again and returns false.
    virtual bool take(const Line&) { return true; }
    /// Whether the line that was taken last is the first one of a further container.
    virtual bool startsContainer() { return false; }
    /// Goes back to where the first line was tried.
    virtual void restart() {}
    virtual NSTextContainer* container() = 0;
};

/// The simplest of them: all lines have the same room.
class EqualRooms final : public LineRooms {
  public:
    EqualRooms(NSTextContainer* container, LineRoom room) : _container(container), _room(room) {}
    std::span<const LineRoom> rooms(Extent, Extent& skip) override {
        skip = 0;
        return {&_room, 1};
    }
    NSTextContainer* container() override { return _container; }

  private:
    Unretained<NSTextContainer> _container;
    LineRoom _room;
};

/// What fits into a room.
struct Filling {
    std::uint32_t end = 0;  ///< the unit behind it; the start if nothing fits
    Extent width = 0;       ///< without the blanks at its end
    bool endsHard = false;
    bool endsContainer = false;
    bool isHyphenated = false;
    bool isCut = false;
    bool isComplete = false;  ///< what follows goes on in another line
};

class Typesetter {
  public:
    /// `endsParagraph` tells whether the text reaches the end of its paragraph, `beginsParagraph` whether it
    /// begins there.
    Typesetter(LayoutTools& tools, MeasuredText& text, bool beginsParagraph, bool endsParagraph);

    /// Breaks the text into lines until the next one begins at `limit` or beyond, or may go on behind the
    /// text. Returns where the next line begins: 0 if already the first one may go on.
    std::uint32_t setLines(LineRooms& rooms, std::uint32_t limit, std::vector<Line>& lines);

    /// Determines the widths of the tabs and attachments of a line.
    void measureSpecials(const Line& line, NSTextContainer* container);

    float hyphenationFactor = 0;
    bool usesFontLeading = true;

  private:
    struct PendingTab;
    struct Fill;
    struct Box {  // between a line's indents, from the leading edge of its room
        Extent start, end;
    };

    Box boxOf(const LineRoom& room, bool isFirst, bool isFirstFragment) const;
    Filling fill(std::uint32_t start, Box box, bool breaksAnywhere, const LineRoom& room,
                 NSTextContainer* container);
    Filling fillingUpTo(Fill& fill, std::uint32_t end, Extent textEnd);
    void noteBreak(Fill& fill, std::uint32_t unit, Extent pen, Extent textEnd) const;
    Filling breakAt(const Fill& fill, std::uint32_t overflow, Extent pen);
    Filling overflowAt(Fill& fill, std::uint32_t unit, Extent pen);
    bool hyphenate(std::uint32_t from, std::uint32_t overflow, Extent pen, Extent limit, Filling& filling);
    bool setLine(LineRooms& rooms, std::uint32_t& start, std::vector<Line>& lines);
    bool setFragments(std::span<const LineRoom> rooms, std::uint32_t start, bool forced,
                      NSTextContainer* container);
    void measureHeight(std::uint32_t start, std::uint32_t end, bool isFirst, bool isLast);
    void align(Line& line, const Filling& filling, Box box, const LineRoom& room) const;
    Extent attachmentWidth(std::uint32_t unit, const LineRoom& room, Extent pen, NSTextContainer* container);
    bool takeTab(Fill& fill, std::uint32_t unit, Extent pen);
    void settleTab(Fill& fill, Extent text);
    Extent advanced(Fill& fill, std::uint32_t unit, Extent pen);
    /// The stop and what kind it is of; false if there is none.
    bool findTab(Extent pen, Extent limit, PendingTab& pending) const;
    bool endsColumn(const PendingTab& pending, unichar unit) const;
    bool runsAgainst(std::uint32_t unit) const;

    LayoutTools& _tools;
    MeasuredText& _text;
    NSParagraphStyle* _style;
    bool _beginsParagraph, _endsParagraph;
    bool _asksForTabs;

    // The line at work
    struct Fragment {
        Line line;
        Filling filling;
    };
    std::vector<Fragment> _fragments;
    Line _height;
    std::size_t _run = 0;  // a run at or before the line
};

}  // namespace pelvor
