// SPDX-License-Identifier: Apache-2.0
#include "NSString-PelvorAdditions.h"

#include <cstdlib>
#include <limits>
#include <memory>

#include "CodepointsPrivate.h"
#include "PBUnichar32String.h"
#include "Runtime/Registry.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSString>& methods) {
    using Additions = NSString_PelvorAdditions;
    methods.classLevel<"stringWithCodepoint:", &Additions::stringWithCodepoint>();
    methods.classLevel<"stringWithCodepoints:count:", &Additions::stringWithCodepoints_count>();
    methods.classLevel<"initWithCodepoints:count:", &Additions::initWithCodepoints_count>();
    methods.instance<"getCodepoints:range:", &getCodepoints_range>();
    methods.instance<"countCodepointsInRange:", &countCodepointsInRange>();
}

}  // namespace

constinit const Category NSString_PelvorAdditions_category =
    Category::of<NSString, defineAdditions>("PelvorAdditions");

NSString* NSString_PelvorAdditions::stringWithCodepoint(std::uint32_t codepoint) {
    return stringWithCodepoints_count(&codepoint, 1);
}

NSString* NSString_PelvorAdditions::stringWithCodepoints_count(const std::uint32_t* codepoints,
                                                               NSUInteger count) {
    return initWithCodepoints_count(codepoints, count).autorelease();
}

Retained<NSString> NSString_PelvorAdditions::initWithCodepoints_count(const std::uint32_t* codepoints,
                                                                      NSUInteger count) {
    std::unique_ptr<unichar, decltype(&std::free)> units(
        static_cast<unichar*>(std::malloc((std::size_t{count} * 2 + 1) * sizeof(unichar))), &std::free);
    if (!units) return nullptr;
    unichar* end = units.get();
    for (NSUInteger i = 0; i < count; ++i) end = writeCodepoint(codepoints[i], end);
    std::ptrdiff_t length = end - units.get();
    if (length > std::numeric_limits<NSUInteger>::max()) return nullptr;
    return NSString::initWithCharactersNoCopy_length_freeWhenDone(units.release(),
                                                                  static_cast<NSUInteger>(length), true);
}

NSUInteger getCodepoints_range(NSString* string, std::uint32_t* codepoints, NSRange range) {
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

NSUInteger countCodepointsInRange(NSString* string, NSRange range) {
    return getCodepoints_range(string, nullptr, range);
}

}  // namespace pelvor
