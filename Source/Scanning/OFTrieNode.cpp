// SPDX-License-Identifier: Apache-2.0
#include "Scanning/OFTrieNode.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "BaseLibrary.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSString.h"
#include "Runtime/NSException.h"
#include "Scanning/NSObject-OFDebugging.h"
#include "Scanning/Private/TrieIndex.h"
#include "Scanning/Private/TrieMemory.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(OFTrieNode, baseLibrary) {
    methods.creator<"init", &OFTrieNode::init>();
    methods.instance<"addChild:withCharacter:", &OFTrieNode::addChild_withCharacter>();
    methods.instance<"debugDictionary", &OFTrieNode::debugDictionary>();
}

Retained<OFTrieNode> OFTrieNode::init(Class* cls) { return make<OFTrieNode>(cls); }

// Long words make long chains of nodes. The children of nodes that end are therefore released one after the
// other, and not one inside the other.
OFTrieNode::~OFTrieNode() {
    thread_local std::vector<Object*>* pending = nullptr;
    std::vector<Object*> own;
    bool isOutermost = !pending;
    if (isOutermost) pending = &own;
    for (NSUInteger i = 0; i < _childCount; ++i)
        if (Object* child = childAtIndex(i)) pending->push_back(child);
    std::free(_children);
    if (!isOutermost) return;
    while (!own.empty()) {
        Object* child = own.back();
        own.pop_back();
        child->release();
    }
    pending = nullptr;
}

void OFTrieNode::grow() {
    NSUInteger capacity = _capacity ? _capacity * 2 : 1;
    auto* block = static_cast<char*>(allocateForTrie(capacity * (sizeof(Entry) + sizeof(unichar))));
    auto* children = reinterpret_cast<Entry*>(block);
    auto* characters = reinterpret_cast<unichar*>(block + capacity * sizeof(Entry));
    std::copy_n(_children, _childCount, children);
    std::copy_n(_characters, _childCount, characters);
    std::free(_children);
    _children = children;
    _characters = characters;
    _capacity = capacity;
}

void OFTrieNode::insertEntry(NSUInteger index, Entry entry, unichar character) {
    if (_childCount == _capacity) grow();
    std::copy_backward(_children + index, _children + _childCount, _children + _childCount + 1);
    std::copy_backward(_characters + index, _characters + _childCount, _characters + _childCount + 1);
    _children[index] = entry;
    _characters[index] = character;
    ++_childCount;
}

void OFTrieNode::addChild_withCharacter(id child, unichar character) {
    bool isNode = cast<OFTrieNode>(child);
    if (child && !isNode && !cast<OFTrieBucket>(child))
        throw NSException(NSInvalidArgumentException,
                          "addChild:withCharacter: the child is neither an OFTrieNode nor an OFTrieBucket");
    NSUInteger index = indexOfCharacter(character);
    bool isPresent = index < _childCount && _characters[index] == character;
    if (isPresent && childAtIndex(index) == child) return;
    if (_indexNumber) TrieIndex::noteEdit();
    if (!isPresent) insertEntry(index, {}, character);
    Object* previous = childAtIndex(index);
    if (child) child->retain();
    _children[index] = Entry(child, isNode);
    if (previous) previous->release();
}

NSMutableDictionary* OFTrieNode::debugDictionary() {
    NSMutableDictionary* dictionary = pelvor::debugDictionary(this);
    dictionary->removeObjectForKey(u"__self__"_ns);
    for (NSUInteger i = 0; i < _childCount; ++i) {
        NSString* key = NSString::stringWithFormat(u"%d. '%@'"_ns, i, NSString::of({_characters + i, 1}));
        if (Object* child = childAtIndex(i)) dictionary->setObject_forKey(child, key);
    }
    return dictionary;
}

}  // namespace pelvor
