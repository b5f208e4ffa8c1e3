// SPDX-License-Identifier: Apache-2.0
#include "Scanning/OFTrieBucket.h"

#include <cstring>

#include "BaseLibrary.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSString.h"
#include "Scanning/NSObject-OFDebugging.h"
#include "Scanning/Private/TrieIndex.h"
#include "Scanning/Private/TrieMemory.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(OFTrieBucket, baseLibrary) {
    methods.instance<"setRemainingLower:upper:length:", &OFTrieBucket::setRemainingLower_upper_length>();
    methods.instance<"debugDictionary", &OFTrieBucket::debugDictionary>();
}

unichar OFTrieBucket::emptyCharacters[1] = {0};

OFTrieBucket::~OFTrieBucket() {
    if (_lower != emptyCharacters) std::free(_lower);
}

void OFTrieBucket::setRemainingLower_upper_length(const unichar* lower, const unichar* upper,
                                                  NSInteger length) {
    if (_isIndexed) TrieIndex::noteEdit();
    unichar* previous = _lower;
    if (lower && upper && length >= 1) {
        auto count = static_cast<std::size_t>(length);
        std::size_t forms = lower == upper ? 1 : 2;
        auto* block = static_cast<unichar*>(allocateForTrie(forms * (count + 1) * sizeof(unichar)));
        std::memcpy(block, lower, count * sizeof(unichar));
        block[count] = 0;
        _lower = _upper = block;
        if (forms == 2) {
            _upper = block + count + 1;
            std::memcpy(_upper, upper, count * sizeof(unichar));
            _upper[count] = 0;
        }
    } else {
        _lower = _upper = emptyCharacters;
    }
    // The old units are freed only now, since the new ones may have been copied from them.
    if (previous != emptyCharacters) std::free(previous);
}

NSMutableDictionary* OFTrieBucket::debugDictionary() {
    std::u16string_view lower = _lower;
    NSMutableDictionary* dictionary = pelvor::debugDictionary(this);
    dictionary->setObject_forKey(NSString::of(lower), u"lowerCharacters"_ns);
    if (_upper != _lower)
        dictionary->setObject_forKey(NSString::of({_upper, lower.size()}), u"upperCharacters"_ns);
    return dictionary;
}

}  // namespace pelvor
