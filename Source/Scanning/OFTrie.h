// SPDX-License-Identifier: Apache-2.0
// OFTrie: finds the words that begin at a place in a text, unit by unit.
#pragma once

#include <memory>

#include "Foundation/NSString.h"
#include "Scanning/OFTrieNode.h"

namespace pelvor {

class OFTrieEnumerator;
class TrieIndex;

/// Maps strings to buckets, which callers subclass for what they want to find:
///
///     auto trie = OFTrie::initCaseSensitive(false);
///     trie->addBucket_forString(chapter, u"Chapter"_ns);
///     trie->addBucket_forString(section, u"Section"_ns);
///     auto scanner = OFStringScanner::initWithString(u"CHAPTER 1"_ns);
///     OFTrieBucket* found = scanner->readLongestTrieElement(trie);  // chapter
///
/// The trie retains its buckets. A trie that is not case-sensitive holds both forms of every unit, so that a
/// look-up has nothing to convert. A string ends at its first U+0000. One thread at a time.
class PELVOR_EXPORT OFTrie : public NSObject {
    PELVOR_CLASS(OFTrie, NSObject);
    PELVOR_CREATORS(initCaseSensitive);

  public:
    static Retained<OFTrie> initCaseSensitive(bool isCaseSensitive, Class* cls = classObject());

    bool isCaseSensitive() { return _caseSensitive; }
    /// The node at which every walk begins; borrowed.
    OFTrieNode* headNode() { return _head; }

    /// Stores the bucket under the string, in place of the bucket that is there already. Does nothing if
    /// either is null.
    void addBucket_forString(OFTrieBucket* bucket, NSString* string);
    /// The bucket that is stored under exactly this string, or null; borrowed. In a trie that is not
    /// case-sensitive, each unit may be in upper or lower case.
    OFTrieBucket* bucketForString(NSString* string);
    /// An enumerator of the buckets in ascending order of their strings in lower case, compared unit by unit.
    /// Borrowed.
    OFTrieEnumerator* objectEnumerator();

    /// The debug dictionary of every object, with the head under "head" added. Borrowed.
    NSMutableDictionary* debugDictionary();

    // C++ only
    /// For the scanner: an index of the words, which the trie makes once it has been read often enough since
    /// it was changed; null before. Valid until the next change.
    const TrieIndex* index();

  protected:
    OFTrie();
    ~OFTrie();

  private:
    struct Key;
    void splitBucket(OFTrieBucket* existing, OFTrieNode* node, std::size_t place, OFTrieBucket* bucket,
                     const Key& key);

    Retained<OFTrieNode> _head;
    std::unique_ptr<TrieIndex> _index;
    std::size_t _readsUntilIndex;
    bool _caseSensitive = true;
};

}  // namespace pelvor
