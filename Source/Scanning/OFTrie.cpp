// SPDX-License-Identifier: Apache-2.0
#include "Scanning/OFTrie.h"

#include "BaseLibrary.h"
#include "Foundation/NSMutableDictionary.h"
#include "Scanning/NSObject-OFDebugging.h"
#include "Scanning/OFTrieEnumerator.h"
#include "Scanning/Private/CaseForms.h"
#include "Scanning/Private/TrieIndex.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(OFTrie, baseLibrary) {
    methods.creator<"initCaseSensitive:", &OFTrie::initCaseSensitive>();
    methods.instance<"isCaseSensitive", &OFTrie::isCaseSensitive>();
    methods.instance<"headNode", &OFTrie::headNode>();
    methods.instance<"addBucket:forString:", &OFTrie::addBucket_forString>();
    methods.instance<"bucketForString:", &OFTrie::bucketForString>();
    methods.instance<"objectEnumerator", &OFTrie::objectEnumerator>();
    methods.instance<"debugDictionary", &OFTrie::debugDictionary>();
}

// The units of a string in both forms, zero-terminated; a case-sensitive one has but one.
struct OFTrie::Key {
    Key(NSString* string, bool isCaseSensitive) {
        std::u16string units = string->toUTF16();
        units.resize(std::char_traits<unichar>::length(units.c_str()));
        if (isCaseSensitive) {
            _forms.lower = std::move(units);
            lower = upper = _forms.lower.c_str();
        } else {
            _forms = foldedFormsOf(NSString::of(units));
            lower = _forms.lower.c_str();
            upper = _forms.upper.c_str();
        }
        length = _forms.lower.size();
    }

    // Hangs the child under both forms of the unit at the place.
    void hang(OFTrieNode* node, NSObject* child, std::size_t place) const {
        node->addChild_withCharacter(child, lower[place]);
        node->addChild_withCharacter(child, upper[place]);
    }
    // Hangs the bucket, which keeps the units after the place.
    void insert(OFTrieNode* node, OFTrieBucket* bucket, std::size_t place) const {
        hang(node, bucket, place);
        auto rest = static_cast<NSInteger>(length) - static_cast<NSInteger>(place) - 1;
        bucket->setRemainingLower_upper_length(lower + place + 1, upper + place + 1, rest);
    }

    const unichar* lower;
    const unichar* upper;
    std::size_t length;

  private:
    CaseForms _forms;
};

// Small tries that are read a few times need no index; after that, making it costs less than the reads before
// it.
constexpr std::size_t kReadsBeforeIndex = 64;

OFTrie::OFTrie() : _readsUntilIndex(kReadsBeforeIndex) {}

OFTrie::~OFTrie() = default;

const TrieIndex* OFTrie::index() {
    if (_index && _index->isCurrent()) return _index.get();
    if (_index) _readsUntilIndex = kReadsBeforeIndex + _index->nodeCount() / 4;
    _index.reset();
    if (_readsUntilIndex && --_readsUntilIndex) return nullptr;
    _index = std::make_unique<TrieIndex>(_head);
    return _index.get();
}

Retained<OFTrie> OFTrie::initCaseSensitive(bool isCaseSensitive, Class* cls) {
    auto self = make<OFTrie>(cls);
    self->_head = OFTrieNode::init();
    self->_caseSensitive = isCaseSensitive;
    return self;
}

void OFTrie::addBucket_forString(OFTrieBucket* bucket, NSString* string) {
    if (!bucket || !string) return;
    auto kept = Retained<OFTrieBucket>::retaining(bucket);
    Key key(string, _caseSensitive);
    OFTrieNode* node = _head;
    for (std::size_t place = 0;; ++place) {
        OFTrieNode::Child child = node->childForCharacter(key.lower[place]);
        bool isEnd = key.lower[place] == 0;
        if (child.bucket && !isEnd) return splitBucket(child.bucket, node, place, bucket, key);
        // If somebody has added a node under 0, the walk does not go into it.
        if (!child.node || isEnd) return key.insert(node, bucket, place);
        node = child.node;
    }
}

// The unit at the place leads to a bucket. Its string and the new one get a chain of nodes for what they
// have in common after that unit.
void OFTrie::splitBucket(OFTrieBucket* existing, OFTrieNode* node, std::size_t place, OFTrieBucket* bucket,
                         const Key& key) {
    auto kept = Retained<OFTrieBucket>::retaining(existing);
    const unichar *lower = existing->lowerCharacters(), *upper = existing->upperCharacters();
    std::size_t common = 0;
    while (lower[common] && lower[common] == key.lower[place + 1 + common]) ++common;
    std::size_t end = place + 1 + common;
    if (lower[common] == key.lower[end]) return key.insert(node, bucket, place);

    for (; place < end; ++place) {
        auto next = OFTrieNode::init();
        key.hang(node, next, place);
        node = next;
    }
    node->addChild_withCharacter(existing, lower[common]);
    node->addChild_withCharacter(existing, upper[common]);
    auto rest = static_cast<NSInteger>(std::char_traits<unichar>::length(lower + common)) - 1;
    existing->setRemainingLower_upper_length(lower + common + 1, upper + common + 1, rest);
    key.insert(node, bucket, end);
}

OFTrieBucket* OFTrie::bucketForString(NSString* string) {
    if (!string) return nullptr;
    StringUnits units(string);
    std::size_t length = std::min(units.view().find(u'\0'), std::size_t{units.size()});
    OFTrieNode* node = _head;
    for (std::size_t place = 0; place <= length; ++place) {
        auto child = node->childForCharacter(place < length ? units[static_cast<NSUInteger>(place)] : u'\0');
        if (!child) return nullptr;
        node = child.node;
        if (node) continue;
        const unichar *lower = child.bucket->lowerCharacters(), *upper = child.bucket->upperCharacters();
        for (++place; place < length && *lower; ++place, ++lower, ++upper) {
            unichar unit = units[static_cast<NSUInteger>(place)];
            if (unit != *lower && unit != *upper) return nullptr;
        }
        return place >= length && !*lower ? child.bucket : nullptr;
    }
    return nullptr;
}

OFTrieEnumerator* OFTrie::objectEnumerator() { return OFTrieEnumerator::initWithTrie(this).autorelease(); }

NSMutableDictionary* OFTrie::debugDictionary() {
    NSMutableDictionary* dictionary = pelvor::debugDictionary(this);
    dictionary->setObject_forKey(_head, u"head"_ns);
    return dictionary;
}

}  // namespace pelvor
