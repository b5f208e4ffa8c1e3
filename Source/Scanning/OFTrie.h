// SPDX-License-Identifier: Apache-2.0
// OFTrie: finds the words that begin at a place in a text, unit by unit.
#pragma once

#include <memory>

#include "Foundation/NSEnumerator.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSString.h"
#include "Scanning/OFTrieNode.h"

namespace pelvor {

class OFTrieEnumerator;
class TrieIndex;

/// Maps strings to buckets, which it retains:
///
///     auto trie = OFTrie::initCaseSensitive(false);
///     trie->addBucket_forString(bucket, u"Chapter"_ns);
///     scanner->readLongestTrieElement(trie);
///
/// A trie that does not tell the cases apart holds both forms of every unit, so that looking up folds
/// nothing. A string is taken up to its first U+0000. One thread at a time.
class PELVOR_EXPORT OFTrie : public NSObject {
    PELVOR_CLASS(OFTrie, NSObject);
    PELVOR_CREATORS(initCaseSensitive);

  public:
    static Retained<OFTrie> initCaseSensitive(bool isCaseSensitive, Class* cls = classObject());

    bool isCaseSensitive() { return _caseSensitive; }
    /// Where every walk begins; borrowed.
    OFTrieNode* headNode() { return _head; }

    /// Stores the bucket, in place of one that the string has already. Nothing happens without either.
    void addBucket_forString(OFTrieBucket* bucket, NSString* string);
    /// The bucket of exactly this string, each unit in either form if the trie does not tell cases apart; or
    /// none. Borrowed.
    OFTrieBucket* bucketForString(NSString* string);
    /// The buckets in ascending order of their strings, units compared in lower case. Borrowed.
    OFTrieEnumerator* objectEnumerator();

    /// The root's dictionary with the head under "head". Borrowed.
    NSMutableDictionary* debugDictionary();

    // C++ only
    /// For the scanner: the words packed together, which a trie makes once it has been read often enough
    /// since it was changed; none until then. Valid until the next change.
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

/// A walk over a trie's buckets. The trie must not be changed meanwhile.
class PELVOR_EXPORT OFTrieEnumerator : public NSEnumerator {
    PELVOR_CLASS(OFTrieEnumerator, NSEnumerator);
    PELVOR_CREATORS(initWithTrie);

  public:
    static Retained<OFTrieEnumerator> initWithTrie(OFTrie* trie, Class* cls = classObject());
    /// The next bucket; none at the end. In a trie that does not tell cases apart, what an upper-case letter
    /// leads to is passed over, for its lower-case form leads there too.
    id nextObject() override;

  protected:
    OFTrieEnumerator() = default;
    ~OFTrieEnumerator() = default;

  private:
    Retained<NSMutableArray> _trieNodes;
    Retained<NSMutableArray> _positions;
    bool _isCaseSensitive = true;
};

}  // namespace pelvor
