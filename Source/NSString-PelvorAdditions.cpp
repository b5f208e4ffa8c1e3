// SPDX-License-Identifier: Apache-2.0
#include "NSString-PelvorAdditions.h"

#include <cstdlib>
#include <limits>
#include <memory>

#include "Foundation/NSArray.h"
#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSData.h"
#include "Foundation/NSMutableSet.h"
#include "Foundation/NSMutableString.h"
#include "NSMutableString-PelvorAdditions.h"
#include "PBUnichar32String.h"
#include "Runtime/NSException.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"
#include "Shared/Codepoints.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSString>& methods) {
    using Additions = NSString_PelvorAdditions;
    methods.classLevel<"stringWithCodepoint:", &Additions::stringWithCodepoint>();
    methods.classLevel<"stringWithCodepoints:count:", &Additions::stringWithCodepoints_count>();
    methods.classLevel<"initWithCodepoints:count:", &Additions::initWithCodepoints_count>();
    methods.classLevel<"stringWithData:encoding:", &Additions::stringWithData_encoding>();
    methods.classLevel<"stringWithCharacter:", &Additions::stringWithCharacter>();

    methods.instance<"wordRangeForRange:includePreviousWord:", &wordRangeForRange_includePreviousWord>();
    methods.instance<"rangeOfTrimmedWordForRange:", &rangeOfTrimmedWordForRange>();
    methods.instance<"locationOfCharacterFromSet:options:location:",
                     &locationOfCharacterFromSet_options_location>();
    methods.instance<"nonwhitespaceRangeForRange:", &nonwhitespaceRangeForRange>();
    methods.instance<"paragraphRangeForRange:", &paragraphRangeForRange>();
    methods.instance<"paragraphContentRangeForRange:", &paragraphContentRangeForRange>();
    methods.instance<"getParagraphStart:end:contentsEnd:forRange:",
                     &getParagraphStart_end_contentsEnd_forRange>();
    methods.instance<"rangeOfComposedCharactersForRange:", &rangeOfComposedCharactersForRange>();
    methods.instance<"rangeOfCharacterAtIndex:", &rangeOfCharacterAtIndex>();
    methods.instance<"containsString:", &containsString>();

    methods.instance<"stringByMatchingCase:", &stringByMatchingCase>();
    methods.instance<"toggledcaseString", &toggledcaseString>();
    methods.instance<"stringByPrettyTruncationToLength:", &stringByPrettyTruncationToLength>();
    methods.instance<"stringByHardWrappingToLineLength:", &stringByHardWrappingToLineLength>();
    methods.instance<"stringByRemovingSurroundingWhitespace", &stringByRemovingSurroundingWhitespace>();
    methods.instance<"stringByReplacingAllOccurrencesOfString:withString:",
                     &stringByReplacingAllOccurrencesOfString_withString>();
    methods.instance<"stringByReplacingAllOccurrencesOfCharactersInSet:withString:",
                     &stringByReplacingAllOccurrencesOfCharactersInSet_withString>();
    methods.instance<"stringByLossyConversionToEncoding:", &stringByLossyConversionToEncoding>();
    methods.instance<"setWithComponentsSeparatedByString:", &setWithComponentsSeparatedByString>();
    methods.instance<"characterBuffer", &characterBuffer>();

    methods.instance<"intValueAtIndex:effectiveRange:", &intValueAtIndex_effectiveRange>();
    methods.instance<"hexIntValueAtIndex:effectiveRange:", &hexIntValueAtIndex_effectiveRange>();
    methods.instance<"hexIntValue", &hexIntValue>();

    methods.instance<"getCodepoints:range:", &getCodepoints_range>();
    methods.instance<"countCodepointsInRange:", &countCodepointsInRange>();
}

// A class operation of a mutable class returns a mutable string.
Retained<NSString> ofClass(Retained<NSString> string, Class* cls, const char* operation) {
    requireArgument(cls, operation, "the class");
    if (string && cls->isSubclassOfClass(NSMutableString::classObject())) return string->mutableCopy();
    return string;
}

// Counts the code points of the range, and copies them unless `codepoints` is null.
NSUInteger readCodepoints(NSString* string, std::uint32_t* codepoints, NSRange range, const char* operation) {
    requireArgument(string, operation, "the string");
    requireRange(range, string->length(), operation);
    if (auto* wide = cast<PBUnichar32String>(string)) return wide->getCodepoints_range(codepoints, range);
    StringUnits units(string, range);
    NSUInteger count = 0;
    for (NSUInteger i = 0; i < units.size(); ++i, ++count) {
        bool isPair = isHighSurrogate(units[i]) && i + 1 < units.size();
        if (codepoints) codepoints[count] = isPair ? codepointOfPair(units[i], units[i + 1]) : units[i];
        i += isPair;
    }
    return count;
}

}  // namespace

constinit const Category NSString_PelvorAdditions_category =
    Category::of<NSString, defineAdditions>("PelvorAdditions");

NSString* NSString_PelvorAdditions::stringWithCodepoint(std::uint32_t codepoint) {
    return stringWithCodepoints_count(&codepoint, 1);
}

NSString* NSString_PelvorAdditions::stringWithCodepoints_count(const std::uint32_t* codepoints,
                                                               NSUInteger count) {
    requireMemory(codepoints, count, "stringWithCodepoints:count:", "the code points");
    return initWithCodepoints_count(codepoints, count).autorelease();
}

Retained<NSString> NSString_PelvorAdditions::initWithCodepoints_count(const std::uint32_t* codepoints,
                                                                      NSUInteger count, Class* cls) {
    requireMemory(codepoints, count, "initWithCodepoints:count:", "the code points");
    std::unique_ptr<unichar, decltype(&std::free)> units(
        static_cast<unichar*>(std::malloc((std::size_t{count} * 2 + 1) * sizeof(unichar))), &std::free);
    if (!units) return nullptr;
    unichar* end = units.get();
    for (NSUInteger i = 0; i < count; ++i) end = writeCodepoint(codepoints[i], end);
    std::ptrdiff_t length = end - units.get();
    if (length > std::numeric_limits<NSUInteger>::max()) return nullptr;
    return ofClass(NSString::initWithCharactersNoCopy_length_freeWhenDone(
                       units.release(), static_cast<NSUInteger>(length), true),
                   cls, "initWithCodepoints:count:");
}

NSString* NSString_PelvorAdditions::stringWithData_encoding(NSData* data, NSStringEncoding encoding,
                                                            Class* cls) {
    requireArgument(data, "stringWithData:encoding:", "the data");
    return ofClass(NSString::initWithData_encoding(data, encoding), cls, "stringWithData:encoding:")
        .autorelease();
}

NSString* NSString_PelvorAdditions::stringWithCharacter(unichar character, Class* cls) {
    return ofClass(NSString::initWithCharacters_length(&character, 1), cls, "stringWithCharacter:")
        .autorelease();
}

NSUInteger getCodepoints_range(NSString* string, std::uint32_t* codepoints, NSRange range) {
    return readCodepoints(string, codepoints, range, "getCodepoints:range:");
}

NSUInteger countCodepointsInRange(NSString* string, NSRange range) {
    return readCodepoints(string, nullptr, range, "countCodepointsInRange:");
}

bool containsString(NSString* string, NSString* other) {
    requireArgument(string, "containsString:", "the string");
    return !other || other->length() == 0 || string->rangeOfString(other).location != NSNotFound;
}

NSString* stringByReplacingAllOccurrencesOfString_withString(NSString* string, NSString* target,
                                                             NSString* replacement) {
    constexpr char kOperation[] = "stringByReplacingAllOccurrencesOfString:withString:";
    requireArgument(string, kOperation, "the string");
    requireArgument(target, kOperation, "the target");
    requireArgument(replacement, kOperation, "the replacement");
    if (string->rangeOfString(target).location == NSNotFound) return string;
    return string->stringByReplacingOccurrencesOfString_withString(target, replacement);
}

NSString* stringByReplacingAllOccurrencesOfCharactersInSet_withString(NSString* string, NSCharacterSet* set,
                                                                      NSString* replacement) {
    constexpr char kOperation[] = "stringByReplacingAllOccurrencesOfCharactersInSet:withString:";
    requireArgument(string, kOperation, "the string");
    requireArgument(set, kOperation, "the set");
    requireArgument(replacement, kOperation, "the replacement");
    if (string->rangeOfCharacterFromSet_options(set, NSLiteralSearch).location == NSNotFound) return string;
    auto changed = string->mutableCopy();
    replaceAllOccurrencesOfCharactersInSet_withString(changed, set, replacement);
    return std::move(changed).autorelease();
}

NSString* stringByLossyConversionToEncoding(NSString* string, NSStringEncoding encoding) {
    requireArgument(string, "stringByLossyConversionToEncoding:", "the string");
    NSData* data = string->dataUsingEncoding_allowLossyConversion(encoding, true);
    return data ? NSString::initWithData_encoding(data, encoding).autorelease() : nullptr;
}

NSSet* setWithComponentsSeparatedByString(NSString* string, NSString* separator) {
    requireArgument(string, "setWithComponentsSeparatedByString:", "the string");
    if (!separator || separator->length() == 0) return NSSet::setWithObject(string);
    NSArray* components = string->componentsSeparatedByString(separator);
    auto* set = NSMutableSet::setWithArray(components);
    auto* last = cast<NSString>(components->lastObject());
    NSUInteger count = components->count();
    if (last->length() > 0 || components->indexOfObject(last) + 1 < count) return set;
    set->removeObject(last);
    return set;
}

unichar* characterBuffer(NSString* string) {
    requireArgument(string, "characterBuffer", "the string");
    NSUInteger count = string->length();
    if (count == 0) return nullptr;
    auto* units = static_cast<unichar*>(std::malloc(std::size_t{count} * sizeof(unichar)));
    if (!units) throw NSException(NSMallocException, "characterBuffer: no memory for the text");
    NSString::initWithCharactersNoCopy_length_freeWhenDone(units, count, true).autorelease();
    string->getCharacters(units);
    return units;
}

}  // namespace pelvor
