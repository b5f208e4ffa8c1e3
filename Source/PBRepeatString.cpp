// SPDX-License-Identifier: Apache-2.0
#include "PBRepeatString.h"

#include <algorithm>
#include <limits>

#include "BaseLibrary.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBRepeatString, baseLibrary) {
    methods.creator<"initWithString:length:", &PBRepeatString::initWithString_length>();
    methods.creator<"initWithString:repeatCount:", &PBRepeatString::initWithString_repeatCount>();
}

Retained<PBRepeatString> PBRepeatString::initWithString_length(NSString* string, NSUInteger length,
                                                               Class* cls) {
    requireArgument(string, "initWithString:length:", "the string");
    auto repeated = make<PBRepeatString>(cls);
    repeated->_source = string->toUTF16();
    repeated->_srcLen = static_cast<NSUInteger>(repeated->_source.size());
    repeated->_len = length;
    return repeated;
}

Retained<PBRepeatString> PBRepeatString::initWithString_repeatCount(NSString* string, NSUInteger repeatCount,
                                                                    Class* cls) {
    requireArgument(string, "initWithString:repeatCount:", "the string");
    std::uint64_t length = std::uint64_t{string->length()} * repeatCount;
    if (length > std::numeric_limits<NSUInteger>::max()) return nullptr;
    return initWithString_length(string, static_cast<NSUInteger>(length), cls);
}

unichar PBRepeatString::characterAtIndex(NSUInteger index) {
    if (_srcLen == 0) return 0;
    return _source[index > _len ? 0 : index % _srcLen];
}

void PBRepeatString::getCharacters_range(unichar* buffer, NSRange range) {
    NSUInteger start = std::min(range.location, _len), count = std::min(range.length, _len - start);
    requireMemory(buffer, count, "getCharacters:range:", "the buffer");
    if (_srcLen <= 1) {
        std::fill_n(buffer, count, _srcLen ? _source.front() : u'\0');
        return;
    }
    NSUInteger place = start % _srcLen;
    for (NSUInteger i = 0; i < count; ++i) {
        buffer[i] = _source[place];
        if (++place == _srcLen) place = 0;
    }
}

}  // namespace pelvor
