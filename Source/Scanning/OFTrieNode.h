// SPDX-License-Identifier: Apache-2.0
// OFTrieNode and OFTrieBucket: the branches and leaves of an OFTrie.
#pragma once

#include "Foundation/NSRange.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSMutableDictionary;

/// A leaf, which callers subclass or fill with what they want to find. It keeps the units of its element that
/// come after the one that leads to it. One thread at a time.
class PELVOR_EXPORT OFTrieBucket : public NSObject {
    PELVOR_CLASS(OFTrieBucket, NSObject);

  public:
    // C++ only
    /// The remaining units, zero-terminated, in both forms; one and the same array in a case-sensitive trie.
    const unichar* lowerCharacters() { return _lower; }
    const unichar* upperCharacters() { return _upper; }

    /// Copies `length` units of both forms, which may be one array or lie inside the present ones. Without
    /// one of them, or with a length below 1, nothing remains.
    void setRemainingLower_upper_length(const unichar* lower, const unichar* upper, NSInteger length);

    /// The root's dictionary with "lowerCharacters" and, when it is separate, "upperCharacters". Borrowed.
    NSMutableDictionary* debugDictionary();

  protected:
    OFTrieBucket() = default;
    ~OFTrieBucket();

  private:
    friend class TrieIndex;
    static unichar emptyCharacters[1];

    unichar* _lower = emptyCharacters;  // one block holds both
    unichar* _upper = emptyCharacters;
    bool _isIndexed = false;
};

/// A branch: children, nodes or buckets, by the unit that leads to each, in ascending order. A bucket under 0
/// is the element that ends here. One thread at a time.
class PELVOR_EXPORT OFTrieNode : public NSObject {
    PELVOR_CLASS(OFTrieNode, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<OFTrieNode> init(Class* cls = classObject());

    // C++ only
    NSUInteger childCount() { return _childCount; }
    const unichar* characters() { return _characters; }
    /// Each may be a node, a bucket or none.
    Object* childAtIndex(NSUInteger index) { return _children[index].object(); }

    /// Puts the child, which is retained, in place of the one that the unit had. Raises
    /// NSInvalidArgumentException for a child that is neither a node nor a bucket.
    void addChild_withCharacter(id child, unichar character);

    /// The root's dictionary with an entry "0. 'a'" for each child instead of the node's own. Borrowed.
    NSMutableDictionary* debugDictionary();

    // C++ only
    /// What a unit leads to: at most one of them.
    struct Child {
        OFTrieNode* node = nullptr;
        OFTrieBucket* bucket = nullptr;
        explicit operator bool() const { return node || bucket; }
    };
    Child childForCharacter(unichar character) {
        NSUInteger index = indexOfCharacter(character);
        if (index >= _childCount || _characters[index] != character) return {};
        return _children[index].child();
    }
    Child childWithIndex(NSUInteger index) { return _children[index].child(); }
    /// The bucket of the element that ends here, or none.
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
    // Where the index with this number has the node; 0 for none.
    std::uint32_t _indexNumber = 0;
    std::uint32_t _indexPlace = 0;
};

}  // namespace pelvor
