// SPDX-License-Identifier: Apache-2.0
#include "Scanning/OFTrieEnumerator.h"

#include "BaseLibrary.h"
#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSNumber.h"
#include "Scanning/OFTrie.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(OFTrieEnumerator, baseLibrary) {
    methods.creator<"initWithTrie:", &OFTrieEnumerator::initWithTrie>();
}

Retained<OFTrieEnumerator> OFTrieEnumerator::initWithTrie(OFTrie* trie, Class* cls) {
    auto self = make<OFTrieEnumerator>(cls);
    self->_trieNodes = NSMutableArray::init();
    self->_positions = NSMutableArray::init();
    if (!trie) return self;
    self->_isCaseSensitive = trie->isCaseSensitive();
    self->_trieNodes->addObject(trie->headNode());
    self->_positions->addObject(NSNumber::numberWithUnsignedInt(0));
    return self;
}

id OFTrieEnumerator::nextObject() {
    static NSCharacterSet* const capitals = NSCharacterSet::uppercaseLetterCharacterSet();
    auto store = [this](NSUInteger position) {
        _positions->replaceObjectAtIndex_withObject(_positions->count() - 1,
                                                    NSNumber::numberWithUnsignedInt(position));
    };
    while (_trieNodes->count()) {
        auto* node = static_cast<OFTrieNode*>(_trieNodes->lastObject());
        NSUInteger place = static_cast<NSNumber*>(_positions->lastObject())->unsignedIntValue();
        while (place < node->childCount()) {
            auto child = node->childWithIndex(place);
            bool isDouble = !_isCaseSensitive && capitals->characterIsMember(node->characters()[place]);
            ++place;
            if (isDouble || !child) continue;
            store(place);
            if (child.bucket) return child.bucket;
            _trieNodes->addObject(child.node);
            _positions->addObject(NSNumber::numberWithUnsignedInt(0));
            node = child.node;
            place = 0;
        }
        _trieNodes->removeLastObject();
        _positions->removeLastObject();
    }
    return nullptr;
}

}  // namespace pelvor
