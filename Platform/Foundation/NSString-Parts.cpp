// SPDX-License-Identifier: Apache-2.0
// Strings made of other strings' parts.
#include <vector>

#include "Foundation/Collections/ConcreteArrays.h"
#include "Foundation/NSCharacterSet.h"
#include "Foundation/Strings/CanonicalText.h"
#include "Foundation/Strings/NSInlineString.h"
#include "Foundation/Strings/TextFinder.h"
#include "Foundation/UnitBuffer.h"

namespace pelvor {

NSArray* NSString::componentsSeparatedByString(NSString* separator) {
    requireArgument(separator, "componentsSeparatedByString:", "the separator");
    StringUnits units(this), mark(separator);
    std::u16string_view text = units;
    TextFinder finder(mark, 0);
    std::vector<Retained<NSString>> components;
    for (NSRange match = finder.find(text); match.location != NSNotFound; match = finder.find(text)) {
        components.push_back(NSInlineString::create(text.substr(0, match.location)));
        text.remove_prefix(NSMaxRange(match));
    }
    components.push_back(NSInlineString::create(text));
    return NSInlineArray::createAdopting(std::move(components)).autorelease();
}

NSString* NSString::stringByTrimmingCharactersInSet(NSCharacterSet* set) {
    requireArgument(set, "stringByTrimmingCharactersInSet:", "the set");
    StringUnits units(this);
    std::u16string_view text = units;
    auto isMember = [&](std::size_t index) { return set->longCharacterIsMember(codePointAt(text, index)); };
    std::size_t start = 0, end = text.size();
    while (start < end && isMember(start)) start += unitCount(codePointAt(text, start));
    while (end > start) {
        std::size_t last = end - (splitsPair(text, end - 1) ? 2 : 1);
        if (!isMember(last)) break;
        end = last;
    }
    return substringWithRange({static_cast<NSUInteger>(start), static_cast<NSUInteger>(end - start)});
}

NSString* NSString::stringByReplacingOccurrencesOfString_withString(NSString* target, NSString* replacement) {
    requireArgument(target, "stringByReplacingOccurrencesOfString:withString:", "the target");
    requireArgument(replacement, "stringByReplacingOccurrencesOfString:withString:", "the replacement");
    StringUnits units(this), wanted(target), put(replacement);
    std::u16string_view text = units;
    TextFinder finder(wanted, 0);
    NSRange match = finder.find(text);
    if (match.location == NSNotFound) return copy().autorelease();
    UnitBuffer result(text.size());
    for (; match.location != NSNotFound; match = finder.find(text)) {
        result.append(text.substr(0, match.location));
        result.append(put);
        text.remove_prefix(NSMaxRange(match));
    }
    result.append(text);
    return result.takeString();
}

NSString* NSString::stringByPaddingToLength_withString_startingAtIndex(NSUInteger newLength, NSString* pad,
                                                                       NSUInteger index) {
    NSUInteger count = length();
    if (newLength <= count) return substringToIndex(newLength);
    requireArgument(pad, "stringByPaddingToLength:withString:startingAtIndex:", "the padding");
    requireIndex(index, pad->length(), "stringByPaddingToLength:withString:startingAtIndex:");
    StringUnits padding(pad);
    auto padded = NSInlineString::create(newLength);
    getCharacters_range(padded->characters(), {0, count});
    for (NSUInteger i = count; i < newLength; ++i) {
        padded->characters()[i] = padding[index];
        if (++index == padding.size()) index = 0;
    }
    return std::move(padded).autorelease();
}

}  // namespace pelvor
