// SPDX-License-Identifier: Apache-2.0
// RunTree: the attributes of an attributed string; for Foundation's own sources.
#pragma once

#include <span>
#include <vector>

#include "Foundation/AttributedStrings/NSAttributeDictionary.h"
#include "Foundation/AttributedStrings/PieceTree.h"

namespace pelvor {

/// So many units with the same attributes.
struct AttributeStretch {
    NSUInteger length;
    Retained<NSAttributeDictionary> attributes;
};
using AttributeStretches = std::vector<AttributeStretch>;

/// Runs in the order of their starts, which are relative to the leaf. The leaf owns their dictionaries.
/// Neighbours have different dictionaries.
struct alignas(void*) RunLeaf : TreeNode {
    static constexpr unsigned kMost = 128, kUsual = kMost / 8 * 7, kThin = kMost / 4;
    static constexpr unsigned kShare = kMost / 16 * 5;  ///< what a thin leaf has once a neighbour gave to it

    /// An empty leaf.
    static RunLeaf* create(unsigned room);
    static void destroy(RunLeaf* leaf) noexcept;

    NSAttributeDictionary** attributes() { return reinterpret_cast<NSAttributeDictionary**>(this + 1); }
    std::uint32_t* starts() { return reinterpret_cast<std::uint32_t*>(attributes() + room); }
    NSUInteger endOf(unsigned run) { return run + 1u < count ? starts()[run + 1] : length; }
    /// The run that holds the place; the last one for the end.
    unsigned runAt(NSUInteger place);

    /// Appends a run and takes over a count of its dictionary.
    void append(NSUInteger runLength, NSAttributeDictionary* dictionary);
    /// Appends runs of another leaf, which loses them without releasing.
    void appendFrom(RunLeaf* other, unsigned first, unsigned end);

    RunLeaf* clone();
    bool isThin() const { return count < kThin; }
    RunLeaf* split(NSUInteger place);
    static void join(NodeRef<RunLeaf>& first, NodeRef<RunLeaf>& second);

    unsigned room;

  private:
    explicit RunLeaf(unsigned room) : TreeNode(0), room(room) {}
};

/// A run of attributes; the dictionary is borrowed.
struct PlacedRun {
    NSRange range;
    NSAttributeDictionary* attributes;
};

/// Which attributes hold where, without gap or overlap. Ranges and places are inside the text.
class RunTree {
  public:
    RunTree() = default;
    /// The tree takes the dictionaries over.
    explicit RunTree(std::span<AttributeStretch> stretches);

    NSUInteger length() const { return _tree.length(); }
    /// The run that holds the place. The tree is not empty.
    PlacedRun runAt(NSUInteger place) const;
    bool hasSameNodesAs(const RunTree& other) const { return _tree.hasSameNodesAs(other._tree); }
    RunTree slice(NSRange range) const { return RunTree(_tree.slice(range)); }

    /// Makes the run that holds the place longer.
    void stretch(NSUInteger place, NSUInteger added);
    /// The tree takes the dictionaries over.
    void replace(NSRange range, std::span<AttributeStretch> stretches);
    void replace(NSRange range, const RunTree& with);

  private:
    using Tree = PieceTree<RunLeaf>;
    explicit RunTree(Tree tree) : _tree(std::move(tree)) {}

    Tree _tree;
};

}  // namespace pelvor
