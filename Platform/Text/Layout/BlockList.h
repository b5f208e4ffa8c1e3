// SPDX-License-Identifier: Apache-2.0
// The blocks of a laid-out text, with sums by which positions and heights are found without laying out what
// is before.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "Foundation/NSRange.h"

namespace pelvor {

/// A length in 64ths of a point, in which sums are exact.
using Extent = std::int32_t;
using LongExtent = std::int64_t;

inline constexpr Extent kExtentsPerPoint = 64;
/// No line is wider, no advance greater: 16 million points, so that the sum of two such extents is one too.
inline constexpr Extent kGreatestExtent = 0x3FFFFFFF;

inline Extent extentOf(double points) {
    const double extent = points * kExtentsPerPoint;
    if (!(extent < kGreatestExtent)) return std::isnan(extent) ? 0 : kGreatestExtent;
    return extent < -kGreatestExtent ? -kGreatestExtent : static_cast<Extent>(std::lround(extent));
}
inline float pointsOf(LongExtent extent) {
    return static_cast<float>(static_cast<double>(extent) / kExtentsPerPoint);
}

/// A line, or a fragment of a line that exclusions split. Edges are a container's.
struct Line {
    std::uint32_t start = 0;    ///< the unit, from the block's first one
    Extent left = 0, room = 0;  ///< the fragment's left edge and width
    Extent textLeft = 0;        ///< where the text begins
    Extent textWidth = 0;       ///< without the blanks at its end; of a cut line the width that is shown
    Extent extra = 0;           ///< what justification adds to the text's width
    Extent skip = 0;            ///< left free above the line, for exclusions
    Extent height = 0;          ///< of the fragment, with spacing
    Extent spacingAbove = 0, spacingBelow = 0;  ///< parts of the height
    Extent baseline = 0;                        ///< from the fragment's top
    bool isFirst : 1 = false;                   ///< of its paragraph
    bool followsInLine : 1 = false;             ///< a further fragment of the line before
    bool endsHard : 1 = false;                  ///< by a line end or the paragraph's end
    bool endsContainer : 1 = false;             ///< by a form feed
    bool startsContainer : 1 = false;           ///< known where lines depend on their place
    bool isHyphenated : 1 = false;              ///< a hyphen is to be shown at its end
    bool isCut : 1 = false;                     ///< what does not fit is not shown
    bool isRightToLeft : 1 = false;

    Extent advance() const { return followsInLine ? 0 : skip + height; }
};

inline constexpr std::uint32_t kNoContainer = 0xFFFFFFFF;

/// A paragraph, or a piece of some thousand units of a longer one. A piece begins at a line's start once the
/// pieces before it are laid out.
struct Block {
    std::uint32_t units = 0;
    bool continues = false;   ///< the paragraph of the block before it
    bool isLaid = false;      ///< the lines are right
    bool keepsLines = false;  ///< or they are where the block begins as it did
    bool isRightToLeft = false;
    bool hasHeight = false;  ///< `height` was measured, perhaps before an edit
    LongExtent height = 0;
    // Where the block began when its lines depend on their place.
    std::uint32_t startContainer = kNoContainer;
    LongExtent startY = 0;
    Extent usedLeft = 0, usedRight = 0;
    std::vector<Line> lines;

    std::uint32_t endOfLine(std::size_t line) const {
        return line + 1 < lines.size() ? lines[line + 1].start : units;
    }
    /// The line that holds the unit of the block, the last one for the end.
    std::size_t lineAt(std::uint32_t unit) const {
        auto after =
            std::upper_bound(lines.begin(), lines.end(), unit,
                             [](std::uint32_t place, const Line& line) { return place < line.start; });
        return after == lines.begin() ? 0 : static_cast<std::size_t>(after - lines.begin()) - 1;
    }
};

struct BlockSums {
    std::uint64_t units = 0;
    LongExtent height = 0;  // of the blocks whose height was measured
    std::uint64_t measuredUnits = 0;
    std::uint32_t blocks = 0, measuredBlocks = 0, unlaidBlocks = 0, lines = 0;

    static BlockSums of(const Block& block) {
        const bool has = block.hasHeight;
        return {block.units,
                has ? block.height : 0,
                has ? block.units : 0u,
                1,
                has,
                !block.isLaid,
                static_cast<std::uint32_t>(block.lines.size())};
    }
    BlockSums& operator+=(const BlockSums& other);
    BlockSums& operator-=(const BlockSums& other);
};

/// Where a block is.
struct BlockPlace {
    std::size_t chunk = 0, index = 0;
    NSUInteger unit = 0;  ///< the block's first unit in the text

    friend bool operator==(const BlockPlace&, const BlockPlace&) = default;
};

/// All blocks of a text in their order, in chunks of up to 128 with sums: a look-up walks the chunks' sums,
/// by unit from the chunk that was looked for last and by height from the front, then the blocks of one
/// chunk. There is always at least one block; the last one may be empty.
///
/// Paragraphs are found when somebody gets to them: behind the blocks there may be text that was not read
/// yet. Whatever looks for a block there reads on.
class BlockList {
  public:
    using Blocks = std::vector<std::unique_ptr<Block>>;
    /// Returns the first blocks of what is left of the text, at least one.
    using Reader = std::function<Blocks(NSRange rest)>;

    BlockList() { _chunks.emplace_back().blocks.push_back(std::make_unique<Block>()); }

    /// Begins anew with a text of so many units, of which the reader tells the blocks.
    void assign(NSUInteger units, Reader reader);
    /// Puts other blocks in the place of `count` blocks.
    void replace(BlockPlace first, std::size_t count, Blocks blocks);

    NSUInteger units() const { return readUnits() + _unread; }
    /// Where the text begins that was not read yet.
    NSUInteger readUnits() const { return static_cast<NSUInteger>(_sums.units); }
    bool isAllRead() const { return _unread == 0; }
    /// The text that was not read yet became so much longer.
    void stretchUnread(NSInteger delta) { _unread += static_cast<NSUInteger>(delta); }

    Block& at(const BlockPlace& place) { return *_chunks[place.chunk].blocks[place.index]; }
    /// The block that holds the unit, the last one for units at or past the end.
    BlockPlace placeOfUnit(NSUInteger unit);
    /// The block at the height, the first or the last one beyond the ends; the height of its top is written.
    BlockPlace placeOfHeight(LongExtent height, LongExtent& top);
    BlockPlace first() const { return {}; }
    BlockPlace last();
    bool isLast(const BlockPlace& place) { return isLastRead(place) && !readMore(); }
    bool isLastRead(const BlockPlace& place) const {
        return place.chunk + 1 == _chunks.size() && place.index + 1 == _chunks[place.chunk].blocks.size();
    }
    bool isFirst(const BlockPlace& place) const { return place.chunk == 0 && place.index == 0; }
    /// The place is not the last one.
    BlockPlace next(BlockPlace place) const;
    BlockPlace previous(BlockPlace place) const;
    /// The first block that is not laid out, if there is one.
    bool firstUnlaid(BlockPlace& place);

    /// The top of the block; estimated as far as blocks above it were not measured.
    LongExtent topOf(const BlockPlace& place);
    const BlockSums& sums() const { return _sums; }
    LongExtent estimatedHeight() const { return heightOf(_sums) + unreadHeight(); }

    /// Changes the block, and the sums accordingly.
    template <class Change>
    void change(const BlockPlace& place, Change change) {
        Block& block = at(place);
        const BlockSums before = BlockSums::of(block);
        change(block);
        const BlockSums after = BlockSums::of(block);
        if (before.units != after.units) _remembered = {};
        (_chunks[place.chunk].sums -= before) += after;
        if (place.chunk < _cursor.chunk) (_cursor.before -= before) += after;
        (_sums -= before) += after;
        noteBlock();
    }
    /// Marks the blocks that share a unit with the range, and the one at its location, as not laid out. In a
    /// long paragraph that holds for the block before them too, whose last line may take in text, and the
    /// blocks behind them are in doubt. Returns where the change begins.
    NSUInteger forgetLines(NSRange range);
    void forgetAllLines();

    static constexpr std::size_t kChunkSize = 128;

  private:
    struct Chunk {
        Blocks blocks;
        BlockSums sums;
    };

    /// A chunk, and the sums of all chunks before it.
    struct Cursor {
        std::size_t chunk = 0;
        BlockSums before;
    };

    /// What unmeasured text is estimated by, and how much was measured when that was found out.
    struct Averages {
        std::uint64_t measured = 0;
        double lineHeight = 15 * kExtentsPerPoint;
        double unitsInLine = 80;
    };

    void noteBlock();
    void stepForward() { _cursor.before += _chunks[_cursor.chunk++].sums; }
    void stepBack() { _cursor.before -= _chunks[--_cursor.chunk].sums; }
    LongExtent heightOf(const BlockSums& sums) const;
    LongExtent heightOf(const Block& block) const { return heightOf(BlockSums::of(block)); }
    LongExtent unreadHeight() const;
    bool readMore();
    void append(Blocks blocks);
    void recount(Chunk& chunk);
    void rebalance(std::size_t chunk);

    std::vector<Chunk> _chunks;
    BlockSums _sums;
    Averages _averages;
    Reader _reader;
    NSUInteger _unread = 0;  // units behind the blocks
    Cursor _cursor;          // at the chunk that was looked for last
    // The block that was looked for last, and its top if that was asked for.
    BlockPlace _remembered;
    LongExtent _rememberedTop = 0;
    bool _knowsTop = false;
};

}  // namespace pelvor
