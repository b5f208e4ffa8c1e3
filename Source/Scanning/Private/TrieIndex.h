// SPDX-License-Identifier: Apache-2.0
// TrieIndex: the nodes of a trie packed together, in the order in which a walk meets them.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <vector>

#include "Scanning/OFCharacterSet.h"
#include "Scanning/OFTrieNode.h"

namespace pelvor {

/// Finds the longest element at a place of a text, as a walk over the nodes does, but reads few cache lines.
/// An index is made for a trie as it is, and is of no use once a node or a bucket in the trie has been
/// changed. One thread at a time.
class TrieIndex {
  public:
    explicit TrieIndex(OFTrieNode* head);

    /// Whether nothing that is in an index has been changed since this one was made.
    bool isCurrent() const { return _edits == edits.load(std::memory_order_relaxed); }
    std::size_t nodeCount() const { return _nodeCount; }

    struct Found {
        Unretained<OFTrieBucket> bucket = nullptr;
        std::size_t length = 0;
    };
    /// Puts the longest element at `place` into `found`, which is empty. If delimiters are given, only an
    /// element that is followed by a delimiter or a 0 counts. Returns false if the units up to `end` are not
    /// enough to tell.
    bool findLongest(const unichar* place, const unichar* end, OFCharacterSet* delimiters,
                     Found& found) const;

    /// Told by nodes and buckets that are in an index when they change.
    static void noteEdit() { edits.fetch_add(1, std::memory_order_relaxed); }

  private:
    using Cell = std::uint16_t;
    // A child that has no record yet, and the link that is to lead to it. A twin is a link to the same child.
    struct Pending {
        OFTrieNode::Child child;
        std::size_t link;
        std::size_t twin;
    };

    void findFirstLinks();
    void place(const Pending& pending);
    void addTail(OFTrieBucket* bucket);
    void addRun(OFTrieNode* node);
    void addBranch(OFTrieNode* node, OFTrieBucket* element);
    void addHeader(unsigned flags, std::size_t count, OFTrieBucket* element);
    void addUnits(const unichar* lower, const unichar* upper, std::size_t count);

    static std::atomic<std::uint64_t> edits;

    std::vector<Cell> _cells;
    std::array<std::uint32_t, 128> _firstLinks;
    bool _hasFirstLinks = false;
    std::vector<Pending> _pending;
    std::size_t _nodeCount = 0;
    std::uint32_t _number;
    std::uint64_t _edits;
};

}  // namespace pelvor
