// SPDX-License-Identifier: Apache-2.0
#include "PBUnichar32String.h"

#include <algorithm>
#include <limits>
#include <string>

#include "BaseLibrary.h"
#include "NSString-PelvorAdditions.h"
#include "Shared/ArgumentChecks.h"
#include "Shared/Codepoints.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBUnichar32String, baseLibrary) {
    methods.creator<"initWithOwnedCodepoints:count:", &PBUnichar32String::initWithOwnedCodepoints_count>();
    methods.creator<"initWithCodepoints:count:", &PBUnichar32String::initWithCodepoints_count>();
    methods.creator<"initWithString:", &PBUnichar32String::initWithString>();
    methods.instance<"codepointCount", &PBUnichar32String::codepointCount>();
    methods.instance<"codepointBuffer", &PBUnichar32String::codepointBuffer>();
    methods.instance<"getCodepoints:forCodepointsWithRange:",
                     &PBUnichar32String::getCodepoints_forCodepointsWithRange>();
    methods.instance<"_surrogateCountForCodepointsWithRange:",
                     &PBUnichar32String::_surrogateCountForCodepointsWithRange>();
    methods.instance<"unicharRangeForCodepointsWithRange:",
                     &PBUnichar32String::unicharRangeForCodepointsWithRange>();
    methods.instance<"_surrogateCountForUnicharsWithRange:isFirstUnicharLowSurrogate:",
                     &PBUnichar32String::_surrogateCountForUnicharsWithRange_isFirstUnicharLowSurrogate>();
    methods.instance<"codepointRangeForUnicharsWithRange:isFirstUnicharLowSurrogate:",
                     &PBUnichar32String::codepointRangeForUnicharsWithRange_isFirstUnicharLowSurrogate>();
    methods
        .instance<"substringForCodepointsWithRange:", &PBUnichar32String::substringForCodepointsWithRange>();
    methods.instance<"getCodepoints:range:", &PBUnichar32String::getCodepoints_range>();
    methods.instance<"countCodepointsInRange:", &PBUnichar32String::countCodepointsInRange>();
}

namespace {

std::uint32_t* allocateCodepoints(NSUInteger count) {
    return static_cast<std::uint32_t*>(std::malloc(std::max<std::size_t>(count, 1) * sizeof(std::uint32_t)));
}

}  // namespace

Retained<PBUnichar32String> PBUnichar32String::initWithOwnedCodepoints_count(std::uint32_t* codepoints,
                                                                             NSUInteger count, Class* cls) {
    requireMemory(codepoints, count, "initWithOwnedCodepoints:count:", "the code points");
    std::unique_ptr<std::uint32_t[], Free> owned(codepoints);
    auto string = make<PBUnichar32String>(cls);
    for (NSUInteger i = 0; i < count; ++i)
        if (isSupplementary(codepoints[i])) string->_surrogateOffsets.push_back(i);
    if (std::uint64_t{count} + string->_surrogateOffsets.size() > std::numeric_limits<NSUInteger>::max())
        return nullptr;
    string->_len = count;
    string->_surrogateCount = static_cast<NSUInteger>(string->_surrogateOffsets.size());
    string->_chars = std::move(owned);
    return string;
}

Retained<PBUnichar32String> PBUnichar32String::initWithCodepoints_count(const std::uint32_t* codepoints,
                                                                        NSUInteger count, Class* cls) {
    requireMemory(codepoints, count, "initWithCodepoints:count:", "the code points");
    std::uint32_t* copy = allocateCodepoints(count);
    if (!copy) return nullptr;
    std::copy_n(codepoints, count, copy);
    return initWithOwnedCodepoints_count(copy, count, cls);
}

Retained<PBUnichar32String> PBUnichar32String::initWithString(NSString* string, Class* cls) {
    requireArgument(string, "initWithString:", "the string");
    NSUInteger length = string->length();
    std::unique_ptr<std::uint32_t[], Free> codepoints(allocateCodepoints(length));
    if (!codepoints) return nullptr;
    NSUInteger count = pelvor::getCodepoints_range(string, codepoints.get(), {0, length});
    return initWithOwnedCodepoints_count(codepoints.release(), count, cls);
}

// The k-th pair begins at unit k + offset of k, which grows with k.
NSUInteger PBUnichar32String::pairsBeforeUnit(NSUInteger unit) const {
    NSUInteger first = 0, count = _surrogateCount;
    while (count > 0) {
        NSUInteger half = count / 2, middle = first + half;
        bool isBefore = middle + _surrogateOffsets[middle] < unit;
        first = isBefore ? middle + 1 : first;
        count = isBefore ? count - half - 1 : half;
    }
    return first;
}

NSUInteger PBUnichar32String::pairsBeforeCodepoint(NSUInteger codepoint) const {
    auto place = std::lower_bound(_surrogateOffsets.begin(), _surrogateOffsets.end(), codepoint);
    return static_cast<NSUInteger>(place - _surrogateOffsets.begin());
}

void PBUnichar32String::getCodepoints_forCodepointsWithRange(std::uint32_t* codepoints, NSRange range) {
    requireRange(range, _len, "getCodepoints:forCodepointsWithRange:");
    requireMemory(codepoints, range.length, "getCodepoints:forCodepointsWithRange:", "the buffer");
    std::copy_n(_chars.get() + range.location, range.length, codepoints);
}

NSUInteger PBUnichar32String::_surrogateCountForCodepointsWithRange(NSRange range) {
    requireRange(range, _len, "_surrogateCountForCodepointsWithRange:");
    return pairsBeforeCodepoint(NSMaxRange(range)) - pairsBeforeCodepoint(range.location);
}

NSRange PBUnichar32String::unicharRangeForCodepointsWithRange(NSRange range) {
    requireRange(range, _len, "unicharRangeForCodepointsWithRange:");
    NSUInteger inside = _surrogateCountForCodepointsWithRange(range);
    return {range.location + pairsBeforeCodepoint(range.location), range.length + inside};
}

NSUInteger PBUnichar32String::_surrogateCountForUnicharsWithRange_isFirstUnicharLowSurrogate(
    NSRange range, bool* isFirstLow) {
    requireRange(range, length(), "_surrogateCountForUnicharsWithRange:isFirstUnicharLowSurrogate:");
    NSUInteger before = pairsBeforeUnit(range.location);
    if (isFirstLow)
        *isFirstLow = before < _surrogateCount && before + _surrogateOffsets[before] == range.location;
    return pairsBeforeUnit(NSMaxRange(range)) - before;
}

NSRange PBUnichar32String::codepointRangeForUnicharsWithRange_isFirstUnicharLowSurrogate(NSRange range,
                                                                                         bool* isFirstLow) {
    requireRange(range, length(), "codepointRangeForUnicharsWithRange:isFirstUnicharLowSurrogate:");
    NSUInteger before = pairsBeforeUnit(range.location);
    if (isFirstLow) *isFirstLow = false;
    return {range.location - before, range.length - (pairsBeforeUnit(NSMaxRange(range)) - before)};
}

NSString* PBUnichar32String::substringForCodepointsWithRange(NSRange range) {
    requireRange(range, _len, "substringForCodepointsWithRange:");
    return NSString_PelvorAdditions::stringWithCodepoints_count(_chars.get() + range.location, range.length);
}

unichar PBUnichar32String::characterAtIndex(NSUInteger index) {
    requireIndex(index, length(), "characterAtIndex:");
    std::uint32_t codepoint = _chars[codepointOfUnit(index)];
    return isSupplementary(codepoint) ? highHalfOf(codepoint) : static_cast<unichar>(codepoint);
}

void PBUnichar32String::getCharacters_range(unichar* buffer, NSRange range) {
    requireRange(range, length(), "getCharacters:range:");
    requireMemory(buffer, range.length, "getCharacters:range:", "the buffer");
    const std::uint32_t* next = _chars.get() + codepointOfUnit(range.location);
    for (unichar* end = buffer + range.length; buffer < end; ++next) {
        if (end - buffer >= 2 || !isSupplementary(*next))
            buffer = writeCodepoint(*next, buffer);
        else
            *buffer++ = highHalfOf(*next);
    }
}

NSUInteger PBUnichar32String::getCodepoints_range(std::uint32_t* codepoints, NSRange range) {
    requireRange(range, length(), "getCodepoints:range:");
    NSRange found = codepointRangeForUnicharsWithRange_isFirstUnicharLowSurrogate(range, nullptr);
    if (codepoints) getCodepoints_forCodepointsWithRange(codepoints, found);
    return found.length;
}

NSUInteger PBUnichar32String::countCodepointsInRange(NSRange range) {
    requireRange(range, length(), "countCodepointsInRange:");
    return getCodepoints_range(nullptr, range);
}

Retained<Object> PBUnichar32String::copyWithZone(void*) { return Retained<Object>::retaining(this); }

}  // namespace pelvor
