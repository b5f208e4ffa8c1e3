// SPDX-License-Identifier: Apache-2.0
#include "Foundation/LocalizedNumbers.h"

#include <unicode/uloc.h>
#include <unicode/unum.h>

#include <string>

#include "Foundation/NSArray.h"
#include "Foundation/UserLanguages.h"

namespace pelvor {
namespace {

NSString* decimalSeparator() {
    const std::string language = static_cast<NSString*>(userLanguages()->objectAtIndex(0))->toUTF8();
    char locale[ULOC_FULLNAME_CAPACITY] = "";
    UErrorCode error = U_ZERO_ERROR;
    uloc_forLanguageTag(language.c_str(), locale, sizeof locale, nullptr, &error);
    // The separator for the digits that formats of strings write.
    uloc_setKeywordValue("numbers", "latn", locale, sizeof locale, &error);
    UNumberFormat* format = unum_open(UNUM_DECIMAL, nullptr, 0, locale, nullptr, &error);
    UChar symbol[8];
    const int32_t length =
        unum_getSymbol(format, UNUM_DECIMAL_SEPARATOR_SYMBOL, symbol, std::size(symbol), &error);
    unum_close(format);
    if (U_FAILURE(error)) return u"."_ns;
    return NSString::stringWithCharacters_length(symbol, static_cast<NSUInteger>(length));
}

}  // namespace

NSString* localizedNumber(NSString* number) {
    NSArray* parts = number->componentsSeparatedByString(u"."_ns);
    return parts->count() > 1 ? parts->componentsJoinedByString(decimalSeparator()) : number;
}

NSString* plainNumber(NSString* written) {
    return written->componentsSeparatedByString(u","_ns)->componentsJoinedByString(u"."_ns);
}

}  // namespace pelvor
