// SPDX-License-Identifier: Apache-2.0
// OFTrieBucket: a leaf of a trie.
#pragma once

#include "Foundation/NSRange.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSMutableDictionary;

/// A leaf of an OFTrie. Callers subclass it for what they want to find. A bucket keeps the units of its
/// string that come after the unit that leads to the bucket. One thread at a time.
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

    /// The debug dictionary of any object with "lowerCharacters" and, where that array is separate,
    /// "upperCharacters". Borrowed.
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
