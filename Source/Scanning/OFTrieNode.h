// SPDX-License-Identifier: Apache-2.0
// OFTrieNode: a branch of an OFTrie.
#pragma once

#include "Scanning/OFTrieBucket.h"

namespace pelvor {

class NSMutableDictionary;

/// A branch of an OFTrie. It has children in ascending order of the units that lead to them. A child is a
/// node or a bucket; the bucket under U+0000 is that of the string that ends at this node. One thread at a
/// time.
class PELVOR_EXPORT OFTrieNode : public NSObject {
    PELVOR_CLASS(OFTrieNode, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<OFTrieNode> init(Class* cls = classObject());

    // C++ only
    NSUInteger childCount() { return _childCount; }
    const unichar* characters() { return _characters; }
    /// A node, a bucket or null; borrowed. The index is below `childCount()`.
    Object* childAtIndex(NSUInteger index) { return _children[index].object(); }

    /// Retains the child, and puts it in the place of the child that the unit has, if any. Raises
    /// NSInvalidArgumentException for an object that is neither a node nor a bucket.
    void addChild_withCharacter(id child, unichar character);

    /// For each child an entry such as "0. 'a'": the child's index and the unit that leads to the child.
    /// Borrowed.
    NSMutableDictionary* debugDictionary();

    // C++ only
    /// What a unit leads to. At most one of the two is not null.
    struct Child {
        Unretained<OFTrieNode> node = nullptr;
        Unretained<OFTrieBucket> bucket = nullptr;
        explicit operator bool() const { return node || bucket; }
    };
    Child childForCharacter(unichar character) {
        NSUInteger index = indexOfCharacter(character);
        if (index >= _childCount || _characters[index] != character) return {};
        return _children[index].child();
    }
    Child childWithIndex(NSUInteger index) { return _children[index].child(); }
    /// The bucket of the string that ends at this node, or null.
    OFTrieBucket* endMarker() {
        return _childCount && _characters[0] == 0 ? _children[0].child().bucket : nullptr;
    }

  protected:
    OFTrieNode() = default;
    ~OFTrieNode();

  private:
    friend class TrieIndex;

    // An address whose lowest bit says that it is a node's.
    class Entry {
      public:
        Entry() = default;
        Entry(Object* object, bool isNode) : _bits(reinterpret_cast<std::uintptr_t>(object) | isNode) {}
        Object* object() const { return reinterpret_cast<Object*>(_bits & ~std::uintptr_t{1}); }
        Child child() const {
            if (_bits & 1) return {static_cast<OFTrieNode*>(object()), nullptr};
            return {nullptr, static_cast<OFTrieBucket*>(object())};
        }

      private:
        std::uintptr_t _bits = 0;
    };

    // Where the unit is, or where it would be inserted.
    NSUInteger indexOfCharacter(unichar character) {
        NSUInteger first = 0, count = _childCount;
        while (count > 4) {
            NSUInteger half = count / 2;
            first = _characters[first + half] < character ? first + half : first;
            count -= half;
        }
        while (first < _childCount && _characters[first] < character) ++first;
        return first;
    }
    void insertEntry(NSUInteger index, Entry entry, unichar character);
    void grow();

    NSUInteger _childCount = 0;
    NSUInteger _capacity = 0;
    Entry* _children = nullptr;  // one block holds the children, then the units
    unichar* _characters = nullptr;
    // Where the index with this number has the node; the number is 0 as long as no index has it.
    std::uint32_t _indexNumber = 0;
    std::uint32_t _indexPlace = 0;
};

}  // namespace pelvor
