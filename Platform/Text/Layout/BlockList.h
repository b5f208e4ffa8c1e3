// SPDX-License-Identifier: Apache-2.0
// The blocks of a laid-out text, with sums by which positions and heights are found without laying out what
// is before.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
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
/// then the blocks of one chunk. There is always at least one block; the last one may be empty.
class BlockList {
  public:
    using Blocks = std::vector<std::unique_ptr<Block>>;

    BlockList() { assign({}); }

    void assign(Blocks blocks);
    /// Puts other blocks in the place of `count` blocks.
    void replace(BlockPlace first, std::size_t count, Blocks blocks);

    Block& at(const BlockPlace& place) { return *_chunks[place.chunk].blocks[place.index]; }
    /// The block that holds the unit, the last one for units at or past the end.
    BlockPlace placeOfUnit(NSUInteger unit);
    /// The block at the height, the first or the last one beyond the ends; the height of its top is written.
    BlockPlace placeOfHeight(LongExtent height, LongExtent& top);
    BlockPlace first() const { return {}; }
    BlockPlace last();
    bool isLast(const BlockPlace& place) const {
        return place.chunk + 1 == _chunks.size() && place.index + 1 == _chunks[place.chunk].blocks.size();
    }
    bool isFirst(const BlockPlace& place) const { return place.chunk == 0 && place.index == 0; }
    BlockPlace next(BlockPlace place) const;
    BlockPlace previous(BlockPlace place) const;
    /// The first block that is not laid out, if there is one.
    bool firstUnlaid(BlockPlace& place) const;

    /// The top of the block; estimated as far as blocks above it were not measured.
    LongExtent topOf(const BlockPlace& place);
    const BlockSums& sums() const { return _sums; }
    LongExtent estimatedHeight() const { return heightOf(_sums); }

    /// Changes the block, and the sums accordingly.
    template <class Change>
    void change(const BlockPlace& place, Change change) {
        Block& block = at(place);
        const BlockSums before = BlockSums::of(block);
        change(block);
        const BlockSums after = BlockSums::of(block);
        _knowsTop = false;
        if (before.units != after.units) _remembered = {};
        (_chunks[place.chunk].sums -= before) += after;
        (_sums -= before) += after;
    }
    /// Marks the blocks that share a unit with the range, and the one at its location, as not laid out. In a
    /// long paragraph that holds for the block before them too, whose last line may take in text, and the
    /// blocks behind them are in doubt. Returns where the change begins.
    NSUInteger forgetLines(NSRange range);
    void forgetAllLines();

  private:
    struct Chunk {
        Blocks blocks;
        BlockSums sums;
    };
    static constexpr std::size_t kChunkSize = 128;

    LongExtent heightOf(const BlockSums& sums) const;
    LongExtent heightOf(const Block& block) const { return heightOf(BlockSums::of(block)); }
    void recount(Chunk& chunk);
    void rebalance(std::size_t chunk);

    std::vector<Chunk> _chunks;
    BlockSums _sums;
    // The block that was looked for last, and its top if that was asked for.
    BlockPlace _remembered;
    LongExtent _rememberedTop = 0;
    bool _knowsTop = false;
};

}  // namespace pelvor
