// SPDX-License-Identifier: Apache-2.0
#include "Text/Layout/BlockList.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace pelvor {

BlockSums& BlockSums::operator+=(const BlockSums& other) {
    units += other.units;
    height += other.height;
    measuredUnits += other.measuredUnits;
    blocks += other.blocks;
    measuredBlocks += other.measuredBlocks;
    unlaidBlocks += other.unlaidBlocks;
    lines += other.lines;
    return *this;
}

BlockSums& BlockSums::operator-=(const BlockSums& other) {
    units -= other.units;
    height -= other.height;
    measuredUnits -= other.measuredUnits;
    blocks -= other.blocks;
    measuredBlocks -= other.measuredBlocks;
    unlaidBlocks -= other.unlaidBlocks;
    lines -= other.lines;
    return *this;
}

// What is not measured is estimated from what is: lines of the average height, the last line of each block
// half full.
LongExtent BlockList::heightOf(const BlockSums& sums) const {
    const std::uint32_t unmeasured = sums.blocks - sums.measuredBlocks;
    if (unmeasured == 0) return sums.height;
    const double lines =
        static_cast<double>(sums.units - sums.measuredUnits) / _averages.unitsInLine + 0.5 * unmeasured;
    return sums.height + static_cast<LongExtent>(lines * _averages.lineHeight);
}

// A block has changed. Each other average moves everything below a block that was never measured, and who
// shows the text would have to draw all of it again; so the averages stay until twice or half as much is
// measured.
void BlockList::noteBlock() {
    _knowsTop = false;
    const std::uint64_t measured = _sums.measuredUnits + _sums.measuredBlocks;
    if (_sums.lines == 0 || (measured < 2 * _averages.measured && 2 * measured > _averages.measured)) return;
    _averages = {measured, static_cast<double>(_sums.height) / _sums.lines};
    const double fullLines = _sums.lines - 0.5 * _sums.measuredBlocks;
    if (fullLines >= 2)
        _averages.unitsInLine = std::max(1.0, static_cast<double>(_sums.measuredUnits) / fullLines);
}

// As that of text that was read.
LongExtent BlockList::unreadHeight() const {
    BlockSums unread;
    unread.units = _unread;
    unread.blocks =
        static_cast<std::uint32_t>(unread.units * _sums.blocks / std::max<std::uint64_t>(_sums.units, 1));
    return heightOf(unread);
}

// MARK: Changing

void BlockList::recount(Chunk& chunk) {
    _remembered = {};
    _cursor = {};
    _sums -= chunk.sums;
    chunk.sums = {};
    for (const auto& block : chunk.blocks) chunk.sums += BlockSums::of(*block);
    _sums += chunk.sums;
    _knowsTop = false;
}

void BlockList::assign(NSUInteger units, Reader reader) {
    _chunks.clear();
    _sums = {};
    _averages = {};
    _remembered = {};
    _cursor = {};
    _knowsTop = false;
    _reader = std::move(reader);
    append(_reader({0, units}));
    _unread = units - readUnits();
}

// Finds more blocks; false if there are none.
bool BlockList::readMore() {
    if (_unread == 0) return false;
    const NSUInteger before = readUnits();
    append(_reader({before, _unread}));
    _unread -= readUnits() - before;
    return true;
}

void BlockList::append(Blocks blocks) {
    for (auto& block : blocks) {
        if (_chunks.empty() || _chunks.back().blocks.size() >= kChunkSize / 2) _chunks.emplace_back();
        const BlockSums sums = BlockSums::of(*block);
        _chunks.back().sums += sums;
        _sums += sums;
        _chunks.back().blocks.push_back(std::move(block));
    }
}

void BlockList::replace(BlockPlace first, std::size_t count, Blocks blocks) {
    std::size_t chunk = first.chunk;
    // The blocks that go: in the first chunk, in whole chunks behind it, at the front of the last one.
    Chunk& target = _chunks[chunk];
    const std::size_t here = std::min(count, target.blocks.size() - first.index);
    auto place = target.blocks.begin() + static_cast<std::ptrdiff_t>(first.index);
    place = target.blocks.erase(place, place + static_cast<std::ptrdiff_t>(here));
    target.blocks.insert(place, std::make_move_iterator(blocks.begin()),
                         std::make_move_iterator(blocks.end()));
    recount(target);
    for (std::size_t left = count - here; left > 0;) {
        Chunk& after = _chunks[chunk + 1];
        const std::size_t gone = std::min(left, after.blocks.size());
        after.blocks.erase(after.blocks.begin(), after.blocks.begin() + static_cast<std::ptrdiff_t>(gone));
        recount(after);
        if (after.blocks.empty()) _chunks.erase(_chunks.begin() + static_cast<std::ptrdiff_t>(chunk + 1));
        left -= gone;
    }
    rebalance(chunk);
}

void BlockList::rebalance(std::size_t index) {
    if (_chunks[index].blocks.empty() && _chunks.size() > 1) {
        _chunks.erase(_chunks.begin() + static_cast<std::ptrdiff_t>(index));
        return;
    }
    if (_chunks[index].blocks.size() < kChunkSize / 4 && index + 1 < _chunks.size()) {
        Chunk& next = _chunks[index + 1];
        auto& blocks = _chunks[index].blocks;
        std::move(next.blocks.begin(), next.blocks.end(), std::back_inserter(blocks));
        next.blocks.clear();
        recount(next);
        _chunks.erase(_chunks.begin() + static_cast<std::ptrdiff_t>(index + 1));
        recount(_chunks[index]);
    }
    if (_chunks[index].blocks.size() <= kChunkSize) return;
    Blocks blocks = std::move(_chunks[index].blocks);
    _chunks[index].blocks.clear();
    recount(_chunks[index]);
    std::vector<Chunk> parts;
    for (std::size_t start = 0; start < blocks.size(); start += kChunkSize / 2) {
        auto from = blocks.begin() + static_cast<std::ptrdiff_t>(start);
        auto to =
            blocks.begin() + static_cast<std::ptrdiff_t>(std::min(start + kChunkSize / 2, blocks.size()));
        parts.push_back({Blocks(std::make_move_iterator(from), std::make_move_iterator(to)), {}});
        recount(parts.back());
    }
    _chunks[index] = std::move(parts.front());
    _chunks.insert(_chunks.begin() + static_cast<std::ptrdiff_t>(index + 1),
                   std::make_move_iterator(parts.begin() + 1), std::make_move_iterator(parts.end()));
}

NSUInteger BlockList::forgetLines(NSRange range) {
    BlockPlace place = placeOfUnit(range.location);
    if (at(place).continues) place = previous(place);
    const NSUInteger start = place.unit;
    for (bool isTouched = true;; place = next(place)) {
        if (!isTouched && !at(place).continues) break;
        change(place, [&](Block& block) {
            block.keepsLines = !isTouched && (block.isLaid || block.keepsLines);
            block.isLaid = false;
        });
        if (isLastRead(place)) break;
        isTouched = place.unit + at(place).units < std::max(NSMaxRange(range), range.location + 1);
    }
    return start;
}

void BlockList::forgetAllLines() {
    for (Chunk& chunk : _chunks) {
        for (auto& block : chunk.blocks) block->isLaid = block->keepsLines = false;
        recount(chunk);
    }
    _averages.measured = 0;
}

// MARK: Looking up

BlockPlace BlockList::placeOfUnit(NSUInteger unit) {
    if (unit - _remembered.unit < at(_remembered).units) return _remembered;
    while (unit >= readUnits() && readMore()) {
    }
    while (_cursor.chunk > 0 && unit < _cursor.before.units) stepBack();
    while (_cursor.chunk + 1 < _chunks.size() &&
           unit - _cursor.before.units >= _chunks[_cursor.chunk].sums.units)
        stepForward();
    BlockPlace place{_cursor.chunk, 0, static_cast<NSUInteger>(_cursor.before.units)};
    const Blocks& blocks = _chunks[place.chunk].blocks;
    while (place.index + 1 < blocks.size() && unit - place.unit >= blocks[place.index]->units)
        place.unit += blocks[place.index++]->units;
    _remembered = place;
    _knowsTop = false;
    return place;
}

BlockPlace BlockList::placeOfHeight(LongExtent height, LongExtent& top) {
    while (height >= heightOf(_sums) && readMore()) {
    }
    BlockPlace place;
    top = 0;
    for (LongExtent extent; place.chunk + 1 < _chunks.size(); ++place.chunk) {
        extent = heightOf(_chunks[place.chunk].sums);
        if (height < top + extent) break;
        top += extent;
        place.unit += static_cast<NSUInteger>(_chunks[place.chunk].sums.units);
    }
    const Blocks& blocks = _chunks[place.chunk].blocks;
    for (LongExtent extent; place.index + 1 < blocks.size(); ++place.index) {
        extent = heightOf(*blocks[place.index]);
        if (height < top + extent) break;
        top += extent;
        place.unit += blocks[place.index]->units;
    }
    return place;
}

LongExtent BlockList::topOf(const BlockPlace& place) {
    const bool isRemembered = place == _remembered;
    if (isRemembered && _knowsTop) return _rememberedTop;
    while (_cursor.chunk > place.chunk) stepBack();
    while (_cursor.chunk < place.chunk) stepForward();
    BlockSums before = _cursor.before;
    for (std::size_t index = 0; index < place.index; ++index)
        before += BlockSums::of(*_chunks[place.chunk].blocks[index]);
    const LongExtent top = heightOf(before);
    if (isRemembered) {
        _rememberedTop = top;
        _knowsTop = true;
    }
    return top;
}

BlockPlace BlockList::last() {
    while (readMore()) {
    }
    const Chunk& chunk = _chunks.back();
    return {_chunks.size() - 1, chunk.blocks.size() - 1,
            static_cast<NSUInteger>(_sums.units) - chunk.blocks.back()->units};
}

BlockPlace BlockList::next(BlockPlace place) const {
    const Blocks& blocks = _chunks[place.chunk].blocks;
    place.unit += blocks[place.index]->units;
    if (++place.index == blocks.size()) {
        ++place.chunk;
        place.index = 0;
    }
    return place;
}

BlockPlace BlockList::previous(BlockPlace place) const {
    if (place.index == 0) place.index = _chunks[--place.chunk].blocks.size();
    --place.index;
    place.unit -= _chunks[place.chunk].blocks[place.index]->units;
    return place;
}

bool BlockList::firstUnlaid(BlockPlace& place) {
    place = {};
    while (_sums.unlaidBlocks == 0)
        if (!readMore()) return false;
    while (_chunks[place.chunk].sums.unlaidBlocks == 0)
        place.unit += static_cast<NSUInteger>(_chunks[place.chunk++].sums.units);
    while (_chunks[place.chunk].blocks[place.index]->isLaid)
        place.unit += _chunks[place.chunk].blocks[place.index++]->units;
    return true;
}

}  // namespace pelvor
