// SPDX-License-Identifier: Apache-2.0
// OFTrieBucket: a leaf of a trie.
#pragma once

#include "Foundation/NSRange.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSMutableDictionary;

/// A leaf of an OFTrie. A host subclasses it for what a word stands for:
///
///     class PBKeyword : public OFTrieBucket {
///         PELVOR_CLASS(PBKeyword, OFTrieBucket);
///
///       public:
///         int token = 0;
///     };
///     …
///     auto chapter = make<PBKeyword>();
///     chapter->token = kChapterToken;
///     trie->addBucket_forString(chapter, u"Chapter"_ns);
///
/// A bucket keeps the remaining units of its string: the units behind the one that leads to the bucket. One
/// thread at a time.
class PELVOR_EXPORT OFTrieBucket : public NSObject {
    PELVOR_CLASS(OFTrieBucket, NSObject);

  public:
    // C++ only
    /// The remaining units in both forms, each ended by a zero; in a case-sensitive trie both are one array.
    const unichar* lowerCharacters() { return _lower; }
    const unichar* upperCharacters() { return _upper; }

    /// Copies `length` units of both forms. The two may be one array, and may lie inside the present ones. If
    /// one of them is null or the length is below 1, nothing remains.
    void setRemainingLower_upper_length(const unichar* lower, const unichar* upper, NSInteger length);

    /// The debug dictionary of every object, with "lowerCharacters" and, if the second array is separate,
    /// "upperCharacters" added. Borrowed.
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

}  // namespace pelvor
