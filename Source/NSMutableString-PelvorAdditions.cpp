// SPDX-License-Identifier: Apache-2.0
#include "NSMutableString-PelvorAdditions.h"

#include <string>
#include <utility>

#include "Foundation/NSCharacterSet.h"
#include "Foundation/UnitBuffer.h"
#include "Private/UnitFinding.h"
#include "Runtime/NSException.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

using Units = std::u16string_view;

void defineAdditions(MethodTable<NSMutableString>& methods) {
    methods.instance<"appendCharacter:", &appendCharacter>();
    methods.instance<"replaceAllLineEndingsWithString:", &replaceAllLineEndingsWithString>();
    methods.instance<"removeCharactersInSet:", &removeCharactersInSet>();
    methods
        .instance<"replaceAllOccurrencesOfString:withString:", &replaceAllOccurrencesOfString_withString>();
    methods.instance<"replaceAllOccurrencesOfCharactersInSet:withString:",
                     &replaceAllOccurrencesOfCharactersInSet_withString>();
}

// Whether nobody but the string itself can tell one large change from many small ones.
bool isPlain(NSMutableString* string) {
    static Class* const plainClass = NSMutableString::init()->class_();
    return string->class_() == plainClass;
}

// Puts the replacement in place of all that `find(text, from)` finds.
template <class Find>
void rebuild(NSMutableString* string, Units replacement, const Find& find) {
    StringUnits units(string);
    Units text = units;
    UnitMatch match = find(text, 0);
    if (match.length == 0) return;
    std::u16string result;
    result.reserve(text.size() + text.size() / 8);
    std::size_t place = 0;
    for (; match.length > 0; match = find(text, place)) {
        result += text.substr(place, match.location - place);
        result += replacement;
        place = match.location + match.length;
    }
    result += text.substr(place);
    replaceTextAdopting(string, std::move(result));
}

template <class Find>
void changePlaceByPlace(NSMutableString* string, Units replacement, const Find& find) {
    const std::u16string text = string->toUTF16();
    auto shift = NSUInteger{0};  // modulo 2^32: texts may grow or shrink
    for (UnitMatch match = find(text, 0); match.length > 0;
         match = find(text, match.location + match.length)) {
        auto length = static_cast<NSUInteger>(match.length);
        string->replaceCharactersInRange_withUnits({static_cast<NSUInteger>(match.location) + shift, length},
                                                   replacement);
        shift += static_cast<NSUInteger>(replacement.size()) - length;
    }
}

template <class Find>
void replaceAll(NSMutableString* string, Units replacement, const Find& find) {
    if (isPlain(string))
        rebuild(string, replacement, find);
    else
        changePlaceByPlace(string, replacement, find);
}

// The same for units that are removed one by one, in a time that does not grow with their number.
void removePlainUnits(NSMutableString* string, const MemberFinder& finder) {
    StringUnits units(string);
    Units text = units;
    std::size_t place = finder.find(text, 0).location;
    if (place == text.size()) return;
    std::u16string result;
    result.reserve(text.size());
    result += text.substr(0, place);
    unichar others[2048];
    for (; place < text.size(); place += std::size(others)) {
        Units piece = text.substr(place, std::size(others));
        result.append(others, finder.copyOthers(piece, others));
    }
    replaceTextAdopting(string, std::move(result));
}

}  // namespace

constinit const Category NSMutableString_PelvorAdditions_category =
    Category::of<NSMutableString, defineAdditions>("PelvorAdditions");

void appendCharacter(NSMutableString* string, unichar character) {
    requireArgument(string, "appendCharacter:", "the string");
    string->appendCharacters_length(&character, 1);
}

void replaceAllLineEndingsWithString(NSMutableString* string, NSString* ending) {
    requireArgument(string, "replaceAllLineEndingsWithString:", "the string");
    requireArgument(ending, "replaceAllLineEndingsWithString:", "the line ending");
    const std::u16string wanted = ending->toUTF16();
    unichar lineFeed = wanted == u"\n" ? u'\r' : u'\n';  // the ones that are there may stay then
    replaceAll(string, wanted, [lineFeed](Units text, std::size_t from) -> UnitMatch {
        std::size_t place = from + findEither(text.substr(from), u'\r', lineFeed);
        return {place, place == text.size() ? 0u : text.substr(place, 2) == u"\r\n" ? 2u : 1u};
    });
}

void removeCharactersInSet(NSMutableString* string, NSCharacterSet* set) {
    requireArgument(string, "removeCharactersInSet:", "the string");
    requireArgument(set, "removeCharactersInSet:", "the set");
    MemberFinder finder(set);
    if (isPlain(string) && finder.hasPlainUnitsOnly()) return removePlainUnits(string, finder);
    replaceAll(string, {}, [&](Units text, std::size_t from) { return finder.find(text, from); });
}

bool replaceAllOccurrencesOfString_withString(NSMutableString* string, NSString* target,
                                              NSString* replacement) {
    constexpr char kOperation[] = "replaceAllOccurrencesOfString:withString:";
    requireArgument(string, kOperation, "the string");
    requireArgument(target, kOperation, "the target");
    requireArgument(replacement, kOperation, "the replacement");
    return string->replaceOccurrencesOfString_withString_options_range(target, replacement, NSLiteralSearch,
                                                                       {0, string->length()}) > 0;
}

void replaceAllOccurrencesOfCharactersInSet_withString(NSMutableString* string, NSCharacterSet* set,
                                                       NSString* replacement) {
    constexpr char kOperation[] = "replaceAllOccurrencesOfCharactersInSet:withString:";
    requireArgument(string, kOperation, "the string");
    requireArgument(set, kOperation, "the set");
    requireArgument(replacement, kOperation, "the replacement");
    MemberFinder finder(set);
    const std::u16string wanted = replacement->toUTF16();
    replaceAll(string, wanted, [&](Units text, std::size_t from) { return finder.find(text, from); });
}

}  // namespace pelvor
