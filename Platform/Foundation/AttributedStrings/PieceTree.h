// SPDX-License-Identifier: Apache-2.0
// PieceTree: a long sequence in leaves under a B+-tree whose copies share their nodes; for Foundation's own
// sources.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <utility>
#include <vector>

#include "Foundation/NSRange.h"

namespace pelvor {

/// What leaves and branches have in common. A node with more than one owner is never changed.
struct TreeNode {
    explicit TreeNode(unsigned height) : height(static_cast<std::uint16_t>(height)) {}
    std::atomic<std::uint32_t> owners{1};
    std::uint16_t height;     ///< 0: a leaf
    std::uint16_t count = 0;  ///< children of a branch, runs of a leaf of runs
    NSUInteger length = 0;    ///< how many places the node covers
};

template <class Leaf>
struct Branch;

/// An owned node, or null. Trees are made of nodes that own their children.
template <class Leaf>
class NodeRef {
  public:
    NodeRef() = default;
    /// Takes over a new node.
    explicit NodeRef(TreeNode* node) : _node(node) {}
    NodeRef(const NodeRef& other) : _node(other._node) {
        if (_node) _node->owners.fetch_add(1, std::memory_order_relaxed);
    }
    NodeRef(NodeRef&& other) noexcept : _node(std::exchange(other._node, nullptr)) {}
    NodeRef& operator=(NodeRef other) noexcept {
        std::swap(_node, other._node);
        return *this;
    }
    ~NodeRef() {
        if (_node && _node->owners.fetch_sub(1, std::memory_order_acq_rel) == 1) destroy();
    }

    TreeNode* operator->() const { return _node; }
    TreeNode* get() const { return _node; }
    explicit operator bool() const { return _node != nullptr; }
    Leaf* leaf() const { return static_cast<Leaf*>(_node); }
    Branch<Leaf>* branch() const { return static_cast<Branch<Leaf>*>(_node); }
    bool isLeaf() const { return _node->height == 0; }
    bool isThin() const { return isLeaf() ? leaf()->isThin() : _node->count < Branch<Leaf>::kThin; }

    /// Replaces a shared node by a copy, which may be changed.
    void makeOwn() {
        if (_node->owners.load(std::memory_order_acquire) != 1) [[unlikely]]
            *this = NodeRef(isLeaf() ? static_cast<TreeNode*>(leaf()->clone()) : new Branch<Leaf>(*branch()));
    }

  private:
    [[gnu::noinline]] void destroy() {
        if (isLeaf())
            Leaf::destroy(leaf());
        else
            delete branch();
    }

    TreeNode* _node = nullptr;
};

/// A node above others of one height. Starts are relative to the branch, so that an edit moves the starts
/// behind it in one branch a level.
template <class Leaf>
struct Branch : TreeNode {
    static constexpr unsigned kFan = 32, kThin = kFan / 4;

    explicit Branch(unsigned height) : TreeNode(height) {}
    Branch(const Branch& other) : TreeNode(other.height) {
        for (unsigned i = 0; i < other.count; ++i) append(other.children[i]);
    }

    void append(NodeRef<Leaf> child) {
        starts[count] = length;
        length += child->length;
        children[count++] = std::move(child);
    }
    /// The child that holds the place; the last one for the end.
    unsigned childAt(NSUInteger place) const {
        unsigned before = 0;
        for (unsigned i = 0; i < kFan; ++i) before += unsigned{i < count} & unsigned{starts[i] <= place};
        return before - 1;
    }
    /// A child became longer by `change`.
    void move(unsigned child, NSUInteger change) {
        for (unsigned i = 0; i < kFan; ++i) starts[i] += i > child ? change : 0;
        length += change;
    }

    NSUInteger starts[kFan] = {};
    NodeRef<Leaf> children[kFan];
};

/// A sequence of places in leaves. A copy of a tree takes no time and shares its nodes; a change to one of
/// the two copies the nodes on its path. A tree may be read on any thread, as its nodes never change once
/// shared.
///
/// `Leaf` is a TreeNode with `clone`, `destroy`, `isThin`, `split(place)`, which keeps the front and returns
/// the rest, and `join(first, second)`, which puts two neighbours into one if they are small, makes them
/// even if one is thin, and joins what meets at their border.
template <class Leaf>
class PieceTree {
  public:
    using Node = NodeRef<Leaf>;
    /// A leaf, and where it starts.
    struct Place {
        Leaf* leaf;
        NSUInteger start;
    };

    PieceTree() = default;
    explicit PieceTree(Node root) : _root(std::move(root)) {}
    /// A tree of the leaves, of which none is empty.
    explicit PieceTree(std::vector<Node> leaves) {
        while (leaves.size() > 1) leaves = parentsOf(std::move(leaves));
        if (!leaves.empty()) _root = std::move(leaves.front());
    }
    PieceTree(const PieceTree& other) : _root(other._root) {}
    PieceTree(PieceTree&& other) noexcept : _root(std::move(other._root)) { ++other._version; }
    PieceTree& operator=(PieceTree other) noexcept {
        std::swap(_root, other._root);
        ++_version;
        return *this;
    }

    NSUInteger length() const { return _root ? _root->length : 0; }
    bool hasSameNodesAs(const PieceTree& other) const { return _root.get() == other._root.get(); }
    /// The only leaf of a tree that has one; null if it has none or more.
    Leaf* onlyLeaf() const { return _root && _root.isLeaf() ? _root.leaf() : nullptr; }

    /// The leaf that holds the place. The thread remembers the leaf for its next look-up. The tree is not
    /// empty.
    Place find(NSUInteger place) const {
        if (_root.isLeaf()) return {_root.leaf(), 0};
        Remembered& last = remembered;
        if (last.tree != this || last.version != _version ||
            place - last.place.start >= last.place.leaf->length)
            last = {this, _version, descend(place)};
        return last.place;
    }

    PieceTree slice(NSRange range) const {
        Node front = split(_root, NSMaxRange(range)).first;
        return PieceTree(withoutIdleRoots(split(std::move(front), range.location).second));
    }

    void replace(NSRange range, PieceTree with) {
        ++_version;
        Halves front = split(std::move(_root), NSMaxRange(range));
        Halves halves = split(std::move(front.first), range.location);
        _root = joinTrees(joinTrees(std::move(halves.first), std::move(with._root)), std::move(front.second));
    }

    /// Offers the leaf at the place, which may be changed, with the place in it, to `edit(Node&, place)`;
    /// returns what that returns: whether it changed the leaf.
    template <class Edit>
    bool editLeaf(NSUInteger place, Edit edit) {
        if (!_root) return false;
        ++_version;
        struct Step {
            Branch<Leaf>* branch;
            unsigned child;
        } path[kGreatestHeight];
        unsigned height = 0;
        Node* node = &_root;
        for (node->makeOwn(); !node->isLeaf(); node->makeOwn()) {
            Branch<Leaf>* branch = node->branch();
            unsigned child = branch->childAt(place);
            place -= branch->starts[child];
            path[height++] = {branch, child};
            node = &branch->children[child];
        }
        NSUInteger length = (*node)->length;
        if (!edit(*node, place)) return false;
        if (NSUInteger change = (*node)->length - length)
            while (height > 0) {
                --height;
                path[height].branch->move(path[height].child, change);
            }
        return true;
    }

  private:
    using Halves = std::pair<Node, Node>;
    static constexpr unsigned kGreatestHeight = 16;

    struct Remembered {
        const PieceTree* tree;
        std::uint64_t version;
        Place place;
    };
    static constinit inline thread_local Remembered remembered{};

    // No two trees have the same version at any time, not even one after the other at the same address.
    static std::uint64_t newVersion() {
        static constinit std::atomic<std::uint64_t> last{0};
        return last.fetch_add(std::uint64_t{1} << 32, std::memory_order_relaxed);
    }

    Place descend(NSUInteger place) const {
        NSUInteger start = 0;
        const Node* node = &_root;
        while (!node->isLeaf()) {
            const Branch<Leaf>* branch = node->branch();
            unsigned child = branch->childAt(place - start);
            start += branch->starts[child];
            node = &branch->children[child];
        }
        return {node->leaf(), start};
    }

    static std::vector<Node> parentsOf(std::vector<Node> nodes) {
        constexpr std::size_t kUsual = Branch<Leaf>::kFan * 7 / 8;
        std::vector<Node> parents((nodes.size() + kUsual - 1) / kUsual);
        std::size_t next = 0;
        for (std::size_t i = 0; i < parents.size(); ++i) {
            auto* parent = new Branch<Leaf>(nodes[next]->height + 1u);
            parents[i] = Node(parent);
            std::size_t end = nodes.size() * (i + 1) / parents.size();
            while (next < end) parent->append(std::move(nodes[next++]));
        }
        return parents;
    }

    // Cuts in two; a half without places is null.
    static Halves split(Node node, NSUInteger place) {
        if (!node || place == 0) return {Node(), std::move(node)};
        if (place >= node->length) return {std::move(node), Node()};
        node.makeOwn();
        if (node.isLeaf()) {
            Node rest(node.leaf()->split(place));
            return {std::move(node), std::move(rest)};
        }
        Branch<Leaf>* front = node.branch();
        auto* back = new Branch<Leaf>(node->height);
        Node rest(back);
        unsigned cut = front->childAt(place), count = front->count;
        Halves halves = split(std::move(front->children[cut]), place - front->starts[cut]);
        if (halves.second) back->append(std::move(halves.second));
        for (unsigned i = cut + 1; i < count; ++i) back->append(std::move(front->children[i]));
        front->count = static_cast<std::uint16_t>(cut);
        front->length = front->starts[cut];
        if (halves.first) front->append(std::move(halves.first));
        return {std::move(node), std::move(rest)};
    }

    // The children of a branch that is being put together.
    struct Children {
        void add(Node node) { nodes[count++] = std::move(node); }
        // Those of a node of that height, or the lower node itself.
        void addFrom(Node node, unsigned height) {
            if (node->height < height) return add(std::move(node));
            bool isShared = node->owners.load(std::memory_order_acquire) > 1;
            for (unsigned i = 0; i < node->count; ++i) {
                Node& child = node.branch()->children[i];
                add(isShared ? Node(child) : std::move(child));
            }
        }
        // Joins the nodes at the place and before it; returns whether one is left.
        bool joinAt(unsigned place) {
            Halves halves = join(std::move(nodes[place - 1]), std::move(nodes[place]));
            nodes[place - 1] = std::move(halves.first);
            nodes[place] = std::move(halves.second);
            if (nodes[place]) return false;
            std::move(nodes + place + 1, nodes + count, nodes + place);
            --count;
            return true;
        }
        Node take(unsigned first, unsigned end, unsigned height) {
            auto* branch = new Branch<Leaf>(height);
            for (unsigned i = first; i < end; ++i) branch->append(std::move(nodes[i]));
            return Node(branch);
        }
        Node nodes[2 * Branch<Leaf>::kFan];
        unsigned count = 0;
    };

    // Joins neighbours, of which neither is null, to one node of the greater height, or to two.
    static Halves join(Node first, Node second) {
        unsigned height = std::max(first->height, second->height);
        if (height == 0) {
            Leaf::join(first, second);
            return {std::move(first), std::move(second)};
        }
        Children children;
        children.addFrom(std::move(first), height);
        unsigned seam = children.count;
        children.addFrom(std::move(second), height);
        if (children.joinAt(seam) && children.count > 1 && children.nodes[seam - 1].isThin())
            children.joinAt(std::max(seam - 1, 1u));
        if (children.count <= Branch<Leaf>::kFan) return {children.take(0, children.count, height), Node()};
        unsigned half = children.count / 2;
        return {children.take(0, half, height), children.take(half, children.count, height)};
    }

    static Node joinTrees(Node first, Node second) {
        if (!first || !second) return withoutIdleRoots(first ? std::move(first) : std::move(second));
        Halves halves = join(std::move(first), std::move(second));
        if (!halves.second) return withoutIdleRoots(std::move(halves.first));
        auto* root = new Branch<Leaf>(halves.first->height + 1u);
        root->append(std::move(halves.first));
        root->append(std::move(halves.second));
        return Node(root);
    }

    static Node withoutIdleRoots(Node root) {
        while (root && !root.isLeaf() && root->count == 1) root = Node(root.branch()->children[0]);
        return root;
    }

    Node _root;
    std::uint64_t _version = newVersion();
};

}  // namespace pelvor
