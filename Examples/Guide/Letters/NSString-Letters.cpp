// SPDX-License-Identifier: Apache-2.0
#include "NSString-Letters.h"

namespace letters {
namespace {

void defineLetters(MethodTable<NSString>& methods) {
    methods.instance<"countOfCharactersFromSet:", &countOfCharactersFromSet>();
}

}  // namespace

constinit const Category NSString_Letters_category = Category::of<NSString, defineLetters>("Letters");

NSUInteger countOfCharactersFromSet(NSString* string, NSCharacterSet* set) {
    NSUInteger count = 0;
    for (NSUInteger i = 0; i < string->length(); ++i)
        count += set->characterIsMember(string->characterAtIndex(i));
    return count;
}

}  // namespace letters
