// SPDX-License-Identifier: Apache-2.0
// What a layout manager knows: the blocks of its text, how far they fill the containers, and the glyphs of
// the lines that were looked at last.
#pragma once

#include "Runtime/WeakHandle.h"
#include "Text/Layout/ContainerRooms.h"
#include "Text/Layout/GlyphCache.h"

namespace pelvor {

/// A line, found by one of its units or by its place.
struct LinePlace {
    BlockPlace block;
    std::size_t line = 0;
    LongExtent top = 0;  ///< from the top of the first block
};

/// The units that one container holds.
struct ContainerFilling {
    NSUInteger start = 0, end = 0;
    LongExtent top = 0;  ///< the container's upper edge, from the top of the first block
};

class LayoutState {
  public:
    explicit LayoutState(NSLayoutManager* layoutManager) { tools.layoutManager = layoutManager; }

    // Text and containers

    void setStorage(NSTextStorage* storage);
    NSUInteger length() const;
    /// The text was edited; the list of blocks follows.
    void textChanged(NSRange newRange, NSInteger delta);
    void attributesChanged(NSRange range);
    /// The lines from the unit on have to be placed anew, and broken anew where their rooms may differ.
    void placeAgainFrom(NSUInteger unit);
    /// Containers came, went or changed, none before the one at the index. Whether lines have to be broken
    /// anew is found out here.
    void containersChanged(std::size_t first = 0);
    /// This container alone has another shape.
    void containerChanged(std::size_t index);
    /// A container came behind the others.
    void containerAppended();
    void containerRemoved(std::size_t index);
    void forgetEverything();

    /// The indexes of the containers whose text view is not that of the container before them.
    const std::vector<std::size_t>& textViewStarts();
    /// Containers came or went, or have another text view.
    void textViewsChanged() { _textViewStarts.clear(); }

    std::vector<Retained<NSTextContainer>> containers;
    LayoutTools tools;
    WeakHandle delegate;
    std::vector<NSRect> selectionRects;  // those that were asked for last
    float hyphenationFactor = 0;
    bool usesFontLeading = true;
    bool usesScreenFonts = false;
    bool ignoresAntialiasThreshold = false;

    // Laying out

    /// Sees to it that the unit's line is laid out and, where that depends on the text before it, placed.
    /// False if there is no container for it.
    bool ensure(NSUInteger unit);
    /// The same for all units of the range, as far as there are containers.
    void ensure(NSRange range);
    void ensureAll();
    /// Lays out all lines down to the height in the container.
    void ensureHeight(std::size_t container, LongExtent height);
    /// Lays out some unlaid text from the front; whether any is left.
    bool layOutSome(NSUInteger units);

    // Asking; nothing here lays out.

    NSUInteger firstUnlaid();
    /// Whether there is a single endless container, whose text can be laid out in any order.
    bool isFree() const;
    /// The containers that hold text, as far as it is placed.
    const std::vector<ContainerFilling>& fillings();
    /// The container of the unit among the fillings; their number if there is none.
    std::size_t containerOf(NSUInteger unit);
    std::size_t indexOf(NSTextContainer* container) const;
    /// The unit's line; {NSNotFound, 0} where it is not laid out.
    NSRange laidLineRange(NSUInteger unit);
    LongExtent estimatedHeight() { return _blocks.estimatedHeight(); }

    // Lines that are laid out

    LinePlace lineOf(NSUInteger unit);
    /// The line at the height from the top of the first block, among those that are laid out near there.
    LinePlace lineAtHeight(LongExtent height);
    bool next(LinePlace& place);
    /// Lays out the lines of the range, as far as there are containers, and calls the function with the place
    /// and the range of each.
    template <class Function>
    void eachLine(NSRange range, Function function) {
        if (range.length == 0) return;
        ensure(range);
        if (!ensure(range.location)) return;
        LinePlace place = lineOf(range.location);
        do {
            const NSRange lineRange = rangeOf(place);
            if (lineRange.location >= NSMaxRange(range)) return;
            if (containerOf(lineRange.location) >= containers.size() || !ensure(lineRange.location)) return;
            function(place, lineRange);
        } while (next(place));
    }
    const Line& at(const LinePlace& place) { return _blocks.at(place.block).lines[place.line]; }
    NSRange rangeOf(const LinePlace& place);
    Block& blockOf(const LinePlace& place) { return _blocks.at(place.block); }
    /// In the container.
    NSRect rectOf(const LinePlace& place);
    NSRect usedRectOf(const LinePlace& place);
    /// From the upper edge of the line's rectangle.
    float baselineOf(const LinePlace& place);
    /// Valid until other lines are asked about or the text changes.
    LineGlyphs& glyphsOf(const LinePlace& place);
    BlockList& blocks();

  private:
    // How far the text is placed, where that is done from the front.
    struct Frontier {
        BlockPlace block;
        std::size_t line = 0;
        std::size_t container = 0;
        LongExtent y = 0;
        bool isDone = false;       // nothing is left
        bool isExhausted = false;  // no container is left
        bool isTold = false;       // and the delegate knows
    };

    // Neighbouring blocks.
    struct BlockSpan {
        BlockPlace first, last;
        std::size_t count;
    };

    NSUInteger endOf(const BlockPlace& place) { return place.unit + _blocks.at(place).units; }
    BlockSpan blocksAround(NSRange range, NSInteger delta);
    void readAgain(const BlockSpan& span, NSRange range);
    void joinBehind(NSUInteger unit);
    static bool isEndless(NSTextContainer* container);
    bool isUniform() const;
    static bool hasRoom(NSTextContainer* container, const LineRoom& room);
    void placeAgainInContainer(std::size_t first);
    NSTextContainer* containerAround(NSUInteger unit);
    bool setLines(BlockPlace place, LineRooms& rooms, std::vector<Line>& lines);
    void layOut(BlockPlace place, LineRooms& rooms);
    void layOutFree(BlockPlace place);
    bool absorbNext(BlockPlace place);
    void moveEnd(BlockPlace place, std::uint32_t units);
    bool canAdvance() const;
    void advance();
    void layOutNext(BlockPlace place);
    void placeLines(Block& block);
    bool placeLine(const Line& line, NSUInteger unit, LongExtent top);
    bool overflows(const Line& line) const;
    void beginContainer(NSUInteger unit, LongExtent top);
    bool nextContainer();
    void tellOfContainers();
    void tellDelegate(NSTextContainer* container, bool isEnd);
    void retreat(NSUInteger unit);
    void forgetEmptyEnd(NSUInteger changedEnd);

    BlockList _blocks;
    bool _isScanned = false;
    mutable std::size_t _lastIndex = 0;  // of the container that was looked for last
    bool _isUniform = true;
    LineRoom _room;  // of all lines, where the rooms are uniform
    Frontier _frontier;
    std::vector<ContainerFilling> _fillings;
    std::size_t _toldContainers = 0;  // whose completion the delegate knows
    std::vector<ContainerFilling> _freeFilling;
    std::vector<std::size_t> _textViewStarts;  // empty until somebody asks

    GlyphCache _glyphs;
    MeasuredText _text;  // of the block that is laid out
};

}  // namespace pelvor
