// SPDX-License-Identifier: Apache-2.0
// OFTrieEnumerator: a walk over the buckets of a trie.
#pragma once

#include "Foundation/NSEnumerator.h"
#include "Foundation/NSMutableArray.h"

namespace pelvor {

class OFTrie;

/// A walk over a trie's buckets. The trie must not be changed meanwhile.
class PELVOR_EXPORT OFTrieEnumerator : public NSEnumerator {
    PELVOR_CLASS(OFTrieEnumerator, NSEnumerator);
    PELVOR_CREATORS(initWithTrie);

  public:
    static Retained<OFTrieEnumerator> initWithTrie(OFTrie* trie, Class* cls = classObject());
    /// The next bucket, or null at the end. In a trie that does not tell the cases apart the enumerator
    /// passes over what an upper-case letter leads to, since the letter's lower-case form leads there too.
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
