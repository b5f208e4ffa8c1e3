// SPDX-License-Identifier: Apache-2.0
#include "NSMutableString-PelvorAdditions.h"

#include <limits>

#include "Foundation/NSCharacterSet.h"
#include "Runtime/NSException.h"
#include "Runtime/Registry.h"
#include "UnitBufferPrivate.h"
#include "UnitFindingPrivate.h"

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

void requireText(NSString* string, const char* operation) {
    if (!string)
        raiseException(NSInvalidArgumentException, u"%s none where a string is needed"_ns, operation);
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
    UnitBuffer result(text.size());
    std::size_t place = 0;
    for (; match.length > 0; match = find(text, place)) {
        result.append(text.substr(place, match.location - place));
        result.append(replacement);
        place = match.location + match.length;
    }
    result.append(text.substr(place));
    if (result.view().size() > std::numeric_limits<NSUInteger>::max())
        throw NSException(NSMallocException, "the text would be too long");
    string->replaceCharactersInRange_withUnits({0, units.size()}, result.view());
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

}  // namespace

constinit const Category NSMutableString_PelvorAdditions_category =
    Category::of<NSMutableString, defineAdditions>("PelvorAdditions");

void appendCharacter(NSMutableString* string, unichar character) {
    string->appendCharacters_length(&character, 1);
}

void replaceAllLineEndingsWithString(NSMutableString* string, NSString* ending) {
    requireText(ending, "replaceAllLineEndingsWithString:");
    const std::u16string wanted = ending->toUTF16();
    unichar lineFeed = wanted == u"\n" ? u'\r' : u'\n';  // those that are there may stay then
    replaceAll(string, wanted, [lineFeed](Units text, std::size_t from) -> UnitMatch {
        const unichar *begin = text.data(), *end = begin + text.size();
        const unichar* found = findEither(begin + from, end, u'\r', lineFeed);
        bool isPair = end - found > 1 && found[0] == u'\r' && found[1] == u'\n';
        return {static_cast<std::size_t>(found - begin), found == end ? 0u : isPair ? 2u : 1u};
    });
}

void removeCharactersInSet(NSMutableString* string, NSCharacterSet* set) {
    MemberFinder finder(set);
    replaceAll(string, {}, [&](Units text, std::size_t from) { return finder.find(text, from); });
}

bool replaceAllOccurrencesOfString_withString(NSMutableString* string, NSString* target,
                                              NSString* replacement) {
    return string->replaceOccurrencesOfString_withString_options_range(target, replacement, NSLiteralSearch,
                                                                       {0, string->length()}) > 0;
}

void replaceAllOccurrencesOfCharactersInSet_withString(NSMutableString* string, NSCharacterSet* set,
                                                       NSString* replacement) {
    requireText(replacement, "replaceAllOccurrencesOfCharactersInSet:withString:");
    MemberFinder finder(set);
    const std::u16string wanted = replacement->toUTF16();
    replaceAll(string, wanted, [&](Units text, std::size_t from) { return finder.find(text, from); });
}

}  // namespace pelvor
