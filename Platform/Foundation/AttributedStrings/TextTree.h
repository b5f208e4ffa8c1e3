// SPDX-License-Identifier: Apache-2.0
// TextTree: the units of an attributed string; for Foundation's own sources.
#pragma once

#include <string_view>

#include "Foundation/AttributedStrings/PieceTree.h"
#include "Foundation/NSString.h"

namespace pelvor {

/// Units in one piece. They stand behind the leaf, with room for more, or are part of a string that the leaf
/// keeps; an edit gives such a leaf units of its own.
struct TextLeaf : TreeNode {
    static constexpr NSUInteger kMost = 2048, kUsual = kMost / 8 * 7, kThin = kMost / 4;
    static constexpr NSUInteger kShare =
        kMost / 16 * 5;  ///< what a thin leaf has once a neighbour gave to it

    /// A leaf of these units with room for so many at least.
    static TextLeaf* create(std::u16string_view units, NSUInteger room);
    /// A leaf of units of the string, which never changes.
    static TextLeaf* create(std::u16string_view units, NSString* string);
    static void destroy(TextLeaf* leaf) noexcept;

    const unichar* units() { return _units; }
    std::u16string_view view() { return {_units, length}; }

    TextLeaf* clone() { return _string ? create(view(), _string) : create(view(), room); }
    bool isThin() const { return length < kThin; }
    TextLeaf* split(NSUInteger place);
    static void join(NodeRef<TextLeaf>& first, NodeRef<TextLeaf>& second);
    /// Puts the units in place of a range of the leaf, which has no other owner. The leaf takes as many.
    static void replace(NodeRef<TextLeaf>& leaf, NSRange range, std::u16string_view units);

    NSUInteger room;  ///< 0 if the units are not the leaf's own

  private:
    explicit TextLeaf(NSUInteger room) : TreeNode(0), room(room) {}
    unichar* ownUnits() { return reinterpret_cast<unichar*>(this + 1); }

    const unichar* _units = ownUnits();
    Retained<NSString> _string;
};

/// UTF-16 units that can be changed anywhere in little time. Ranges and places are inside the text.
class TextTree {
  public:
    TextTree() = default;
    /// The text of the string. A long one is shared with its immutable copy.
    explicit TextTree(NSString* string);

    NSUInteger length() const { return _tree.length(); }
    unichar unitAt(NSUInteger index) const {
        auto [leaf, start] = _tree.find(index);
        return leaf->units()[index - start];
    }
    void copyUnits(unichar* buffer, NSRange range) const;
    /// All units if they stand in one piece, else null.
    const unichar* contiguousUnits() const;
    bool isEqual(const TextTree& other) const;
    TextTree slice(NSRange range) const { return TextTree(_tree.slice(range)); }

    /// The units must not be the tree's own, unless a copy of the tree keeps them.
    void replace(NSRange range, std::u16string_view units);
    void replace(NSRange range, const TextTree& with);

  private:
    using Tree = PieceTree<TextLeaf>;
    explicit TextTree(Tree tree) : _tree(std::move(tree)) {}

    Tree _tree;
};

}  // namespace pelvor
