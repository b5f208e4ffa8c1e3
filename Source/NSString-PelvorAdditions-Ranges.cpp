// SPDX-License-Identifier: Apache-2.0
// Paragraphs, composed characters and white space around a place in a text.
#include <algorithm>

#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSValue.h"
#include "NSCharacterSet-PelvorAdditions.h"
#include "NSString-PelvorAdditions.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"
#include "Shared/ArgumentChecks.h"
#include "Shared/Codepoints.h"

namespace pelvor {
namespace {

constexpr NSStringCompareOptions kForwards = NSLiteralSearch,
                                 kBackwards = NSLiteralSearch | NSBackwardsSearch;

NSCharacterSet* nonwhitespace() {
    static NSCharacterSet* const set =
        immutableCopy(NSCharacterSet_PelvorAdditions::allWhitespaceCharacterSet()->invertedSet()).leak();
    return set;
}

}  // namespace

NSUInteger locationOfCharacterFromSet_options_location(NSString* string, NSCharacterSet* set,
                                                       NSStringCompareOptions options, NSUInteger location) {
    requireArgument(string, "locationOfCharacterFromSet:options:location:", "the string");
    requireArgument(set, "locationOfCharacterFromSet:options:location:", "the set");
    NSUInteger count = string->length();
    bool isBackwards = options & NSBackwardsSearch;
    NSUInteger place = std::min(location, count);
    NSRange range = isBackwards ? NSRange{0, place + (place < count)} : NSRange{place, count - place};
    NSRange found = string->rangeOfCharacterFromSet_options_range(set, options, range);
    if (found.location == NSNotFound) return NSNotFound;
    return isBackwards ? NSMaxRange(found) - 1 : found.location;
}

NSRange nonwhitespaceRangeForRange(NSString* string, NSRange range) {
    requireArgument(string, "nonwhitespaceRangeForRange:", "the string");
    requireRange(range, string->length(), "nonwhitespaceRangeForRange:");
    NSRange first = string->rangeOfCharacterFromSet_options_range(nonwhitespace(), kForwards, range);
    if (first.location == NSNotFound) return {range.location, 0};
    NSRange last = string->rangeOfCharacterFromSet_options_range(nonwhitespace(), kBackwards, range);
    return {first.location, NSMaxRange(last) - first.location};
}

// MARK: Paragraphs

void getParagraphStart_end_contentsEnd_forRange(NSString* string, NSUInteger* start, NSUInteger* end,
                                                NSUInteger* contentsEnd, NSRange range) {
    requireArgument(string, "getParagraphStart:end:contentsEnd:forRange:", "the string");
    NSUInteger count = string->length();
    if (!isRangeInside(range, count))
        raiseException(NSRangeException, u"range: %@ must be in range: %@"_ns, NSValue::valueWithRange(range),
                       NSValue::valueWithRange({0, count}));
    NSCharacterSet* breaks = NSCharacterSet_PelvorAdditions::paragraphBreakCharacterSet();
    if (start) {
        NSRange before =
            string->rangeOfCharacterFromSet_options_range(breaks, kBackwards, {0, range.location});
        *start = before.location == NSNotFound ? 0 : NSMaxRange(before);
    }
    if (!end && !contentsEnd) return;
    NSUInteger place = NSMaxRange(range) - (range.length ? 1 : 0);
    NSRange after = string->rangeOfCharacterFromSet_options_range(breaks, kForwards, {place, count - place});
    if (contentsEnd) *contentsEnd = after.location;
    if (!end) return;
    *end = after.location == NSNotFound ? count : NSMaxRange(after);
    if (*end < count && string->characterAtIndex(*end) == u'\n' &&
        string->characterAtIndex(*end - 1) == u'\r')
        ++*end;
}

NSRange paragraphRangeForRange(NSString* string, NSRange range) {
    requireArgument(string, "paragraphRangeForRange:", "the string");
    NSUInteger start, end;
    getParagraphStart_end_contentsEnd_forRange(string, &start, &end, nullptr, range);
    return {start, end - start};
}

NSRange paragraphContentRangeForRange(NSString* string, NSRange range) {
    requireArgument(string, "paragraphContentRangeForRange:", "the string");
    NSUInteger start, end;
    getParagraphStart_end_contentsEnd_forRange(string, &start, nullptr, &end, range);
    if (end == NSNotFound) end = string->length();
    return {start, end - start};
}

// MARK: Characters

namespace {

// By message, so that strings that compose characters in their own way are called.
NSRange composedSequence(NSString* string, NSUInteger index) {
    return send<NSRange>(string, "rangeOfComposedCharacterSequenceAtIndex:"_sel, index);
}

}  // namespace

NSRange PBRangeOfComposedCharacterSequenceAtIndex(NSString* string, NSUInteger index) {
    requireArgument(string, "PBRangeOfComposedCharacterSequenceAtIndex", "the string");
    NSUInteger count = string->length();
    if (index >= count) return {count, 0};
    NSRange range = composedSequence(string, index);
    if (range.length <= 1) return range;
    for (NSUInteger probe = NSMaxRange(range); probe < count; probe = NSMaxRange(range)) {
        NSRange next = composedSequence(string, probe);
        if (next.location >= probe || NSMaxRange(next) <= probe) break;
        range.length = NSMaxRange(next) - range.location;
    }
    return range;
}

NSRange rangeOfComposedCharactersForRange(NSString* string, NSRange range) {
    requireArgument(string, "rangeOfComposedCharactersForRange:", "the string");
    if (range.length == 0) return range;
    requireRange(range, string->length(), "rangeOfComposedCharactersForRange:");
    NSUInteger start = PBRangeOfComposedCharacterSequenceAtIndex(string, range.location).location;
    NSRange last = PBRangeOfComposedCharacterSequenceAtIndex(string, NSMaxRange(range) - 1);
    return {start, NSMaxRange(last) - start};
}

NSRange rangeOfCharacterAtIndex(NSString* string, NSUInteger index) {
    requireArgument(string, "rangeOfCharacterAtIndex:", "the string");
    NSUInteger count = string->length();
    if (index >= count) return {count, 0};
    unichar unit = string->characterAtIndex(index);
    bool isLow = isLowSurrogate(unit);
    if (!isLow && !isHighSurrogate(unit)) return {index, 1};
    if (isLow) return index > 0 ? NSRange{index - 1, 2} : NSRange{index, 1};
    return {index, index + 1 < count ? 2u : 1u};
}

}  // namespace pelvor
