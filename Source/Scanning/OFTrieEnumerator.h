// SPDX-License-Identifier: Apache-2.0
// OFTrieEnumerator: a walk over the buckets of a trie.
#pragma once

#include "Foundation/NSEnumerator.h"
#include "Foundation/NSMutableArray.h"

namespace pelvor {

class OFTrie;

/// A walk over the buckets of a trie, which must not be changed meanwhile:
///
///     for (id bucket : trie->objectEnumerator()) NSLog(u"%@"_ns, bucket);
///
class PELVOR_EXPORT OFTrieEnumerator : public NSEnumerator {
    PELVOR_CLASS(OFTrieEnumerator, NSEnumerator);
    PELVOR_CREATORS(initWithTrie);

  public:
    static Retained<OFTrieEnumerator> initWithTrie(OFTrie* trie, Class* cls = classObject());
    /// The next bucket, or null at the end. In a trie that is not case-sensitive, the enumerator passes over
    /// whatever an upper-case letter leads to, since the lower-case form of the letter leads there, too.
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
