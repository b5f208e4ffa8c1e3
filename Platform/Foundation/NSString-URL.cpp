// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSString-URL.h"

#include "Foundation/NSData.h"
#include "Foundation/URLs/URLText.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

NSString* stringByAddingPercentEscapesUsingEncoding(NSString* string, NSStringEncoding encoding) {
    requireArgument(string, "stringByAddingPercentEscapesUsingEncoding:", "the string");
    NSData* data = string->dataUsingEncoding(encoding);
    if (!data) return nullptr;
    return NSString::ofUTF8(
        withEscapes({static_cast<const char*>(data->bytes()), data->length()}, kPlainInURL));
}

NSString* stringByReplacingPercentEscapesUsingEncoding(NSString* string, NSStringEncoding encoding) {
    requireArgument(string, "stringByReplacingPercentEscapesUsingEncoding:", "the string");
    if (string->smallestEncoding() != NSASCIIStringEncoding) return nullptr;
    auto bytes = withoutEscapes(string->toUTF8());
    if (!bytes) return nullptr;
    return NSString::initWithBytes_length_encoding(bytes->data(), static_cast<NSUInteger>(bytes->size()),
                                                   encoding)
        .autorelease();
}

namespace {

void defineMethods(MethodTable<NSString>& methods) {
    methods
        .instance<"stringByAddingPercentEscapesUsingEncoding:", &stringByAddingPercentEscapesUsingEncoding>();
    methods.instance<"stringByReplacingPercentEscapesUsingEncoding:",
                     &stringByReplacingPercentEscapesUsingEncoding>();
}

}  // namespace

constinit const Category NSString_URL_category = Category::of<NSString, defineMethods>("URL");

}  // namespace pelvor
