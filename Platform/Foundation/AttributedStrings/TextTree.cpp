// SPDX-License-Identifier: Apache-2.0
#include "Foundation/AttributedStrings/TextTree.h"

#include <cstring>
#include <new>
#include <string>

namespace pelvor {

// MARK: Leaves

TextLeaf* TextLeaf::create(std::u16string_view units, NSUInteger room) {
    auto* leaf = ::new (::operator new(sizeof(TextLeaf) + room * sizeof(unichar))) TextLeaf(room);
    leaf->length = static_cast<NSUInteger>(units.size());
    std::memcpy(leaf->ownUnits(), units.data(), units.size() * sizeof(unichar));
    return leaf;
}

TextLeaf* TextLeaf::create(std::u16string_view units, NSString* string) {
    auto* leaf = ::new (::operator new(sizeof(TextLeaf))) TextLeaf(0);
    leaf->length = static_cast<NSUInteger>(units.size());
    leaf->_units = units.data();
    leaf->_string.set(string);
    return leaf;
}

void TextLeaf::destroy(TextLeaf* leaf) noexcept {
    leaf->~TextLeaf();
    ::operator delete(leaf);
}

TextLeaf* TextLeaf::split(NSUInteger place) {
    TextLeaf* rest = create(view().substr(place), kMost);
    length = place;
    return rest;
}

void TextLeaf::join(NodeRef<TextLeaf>& first, NodeRef<TextLeaf>& second) {
    std::size_t all = std::size_t{first->length} + second->length;
    bool isOne = all <= kMost / 4 * 3;
    if (!isOne && !first.isThin() && !second.isThin()) return;
    unichar units[2 * kMost];
    std::memcpy(units, first.leaf()->units(), first->length * sizeof(unichar));
    std::memcpy(units + first->length, second.leaf()->units(), second->length * sizeof(unichar));
    std::size_t front = isOne ? all : first.isThin() ? kShare : all - kShare;
    first = NodeRef<TextLeaf>(create({units, front}, kMost));
    second = isOne ? NodeRef<TextLeaf>() : NodeRef<TextLeaf>(create({units + front, all - front}, kMost));
}

void TextLeaf::replace(NodeRef<TextLeaf>& leaf, NSRange range, std::u16string_view units) {
    auto added = static_cast<NSUInteger>(units.size());
    NSUInteger length = leaf->length - range.length + added;
    if (length > leaf.leaf()->room)
        leaf = NodeRef<TextLeaf>(
            create(leaf.leaf()->view(), std::min(kMost, std::max(length, 2 * leaf->length))));
    unichar* place = leaf.leaf()->ownUnits() + range.location;
    std::memmove(place + added, place + range.length, (leaf->length - NSMaxRange(range)) * sizeof(unichar));
    std::memcpy(place, units.data(), added * sizeof(unichar));
    leaf->length = length;
}

// MARK: The text

namespace {

// Most leaves are never edited: without a string to keep, their units have just the room that they need.
std::vector<NodeRef<TextLeaf>> leavesOf(std::u16string_view units, NSString* string = nullptr) {
    const auto leafOf = [string](std::u16string_view piece) {
        return string ? TextLeaf::create(piece, string)
                      : TextLeaf::create(piece, static_cast<NSUInteger>(piece.size()));
    };
    std::vector<NodeRef<TextLeaf>> leaves;
    if (units.empty()) return leaves;
    if (units.size() <= TextLeaf::kMost) {
        leaves.emplace_back(leafOf(units));
        return leaves;
    }
    std::size_t count = (units.size() + TextLeaf::kUsual - 1) / TextLeaf::kUsual, start = 0;
    leaves.reserve(count);
    for (std::size_t i = 1; i <= count; ++i) {
        std::size_t end = units.size() * i / count;
        leaves.emplace_back(leafOf(units.substr(start, end - start)));
        start = end;
    }
    return leaves;
}

}  // namespace

TextTree::TextTree(NSString* string) {
    Retained<NSString> kept;
    if (string->length() > TextLeaf::kMost) kept = string->copy();
    const unichar* shared = kept ? kept->contiguousCharacters() : nullptr;
    if (shared) {
        _tree = Tree(leavesOf({shared, kept->length()}, kept));
        return;
    }
    StringUnits units(string);
    _tree = Tree(leavesOf(units));
}

const unichar* TextTree::contiguousUnits() const {
    static constexpr unichar kNothing = 0;
    if (length() == 0) return &kNothing;
    TextLeaf* leaf = _tree.onlyLeaf();
    return leaf ? leaf->units() : nullptr;
}

void TextTree::copyUnits(unichar* buffer, NSRange range) const {
    while (range.length > 0) {
        auto [leaf, start] = _tree.find(range.location);
        NSUInteger inLeaf = range.location - start, count = std::min(range.length, leaf->length - inLeaf);
        std::memcpy(buffer, leaf->units() + inLeaf, count * sizeof(unichar));
        buffer += count;
        range = {range.location + count, range.length - count};
    }
}

bool TextTree::isEqual(const TextTree& other) const {
    if (_tree.hasSameNodesAs(other._tree)) return true;
    if (length() != other.length()) return false;
    for (NSUInteger place = 0; place < length();) {
        auto [leaf, start] = _tree.find(place);
        auto [otherLeaf, otherStart] = other._tree.find(place);
        NSUInteger count = std::min(start + leaf->length, otherStart + otherLeaf->length) - place;
        if (std::memcmp(leaf->units() + (place - start), otherLeaf->units() + (place - otherStart),
                        count * sizeof(unichar)))
            return false;
        place += count;
    }
    return true;
}

void TextTree::replace(NSRange range, std::u16string_view units) {
    bool isOnly = _tree.onlyLeaf();
    bool isDone = _tree.editLeaf(range.location, [&](NodeRef<TextLeaf>& leaf, NSUInteger place) {
        if (range.length > leaf->length - place) return false;
        std::size_t length = leaf->length - range.length + units.size();
        if (length > TextLeaf::kMost || length == 0) return false;
        if (!isOnly && length < TextLeaf::kThin && length < leaf->length) return false;
        TextLeaf::replace(leaf, {place, range.length}, units);
        return true;
    });
    if (!isDone) _tree.replace(range, Tree(leavesOf(units)));
}

void TextTree::replace(NSRange range, const TextTree& with) {
    TextLeaf* leaf = with._tree.onlyLeaf();
    if (leaf)
        replace(range, leaf->view());
    else
        _tree.replace(range, with._tree);
}

}  // namespace pelvor
