// SPDX-License-Identifier: Apache-2.0
#include "Interface/Texts/ShownLines.h"

#include <algorithm>

namespace pelvor {
namespace {

bool isSelectedLike(const ShownLine& before, const ShownLine& now) {
    if (before.selected.length == 0 && now.selected.length == 0) return true;
    return before.selected == now.selected && before.isSelectedToEdge == now.isSelectedToEdge &&
           before.isActive == now.isActive;
}

bool looksLike(const ShownLine& before, const ShownLine& now) {
    return !before.isChanged && isSelectedLike(before, now) && before.range == now.range &&
           before.rect == now.rect && before.used == now.used && before.isRightToLeft == now.isRightToLeft;
}

}  // namespace

void ShownLines::invalidate(NSRange range, NSInteger delta) {
    const NSUInteger end = NSMaxRange(range) - static_cast<NSUInteger>(delta);  // before the edit
    for (ShownLine& line : _lines) {
        // A line that only touches the edit looks as before unless its range has become another one.
        if (NSMaxRange(line.range) <= range.location) continue;
        if (line.range.location >= end) {
            line.range.location += static_cast<NSUInteger>(delta);
            continue;
        }
        line.isChanged = true;
        line.range.location = std::min(line.range.location, range.location);
    }
}

void ShownLines::invalidateAll() {
    for (ShownLine& line : _lines) line.isChanged = true;
}

void ShownLines::update(std::vector<ShownLine> lines, const std::function<void(NSRect)>& damage) {
    auto before = _lines.begin();
    for (const ShownLine& now : lines) {
        for (; before != _lines.end() && before->range.location < now.range.location; ++before)
            damage(before->rect);
        if (before == _lines.end() || before->range.location > now.range.location) {
            damage(now.rect);
            continue;
        }
        if (!looksLike(*before, now)) {
            damage(before->rect);
            damage(now.rect);
        }
        ++before;
    }
    for (; before != _lines.end(); ++before) damage(before->rect);
    _lines = std::move(lines);
}

const ShownLine* ShownLines::firstIn(float top, float bottom) const {
    const auto line = std::find_if(_lines.begin(), _lines.end(),
                                   [&](const ShownLine& each) { return NSMaxY(each.rect) > top; });
    if (line == _lines.end() || line->isChanged || NSMinY(line->rect) >= bottom) return nullptr;
    return &*line;
}

}  // namespace pelvor
