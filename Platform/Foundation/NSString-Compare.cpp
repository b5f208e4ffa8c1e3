// SPDX-License-Identifier: Apache-2.0
// Comparing strings.
#include <unicode/ucol.h>
#include <unicode/uloc.h>

#include <cstring>

#include "Foundation/Strings/CanonicalText.h"
#include "Foundation/Strings/NSInlineString.h"

namespace pelvor {

NSComparisonResult NSString::compare_options(NSString* other, NSStringCompareOptions options) {
    return compare_options_range(other, options, {0, length()});
}

NSComparisonResult NSString::compare_options_range(NSString* other, NSStringCompareOptions options,
                                                   NSRange range) {
    requireString(other, "compare:");
    return compareText(StringUnits(this, range), StringUnits(other), options);
}

NSComparisonResult NSString::caseInsensitiveCompare(NSString* other) {
    return compare_options(other, NSCaseInsensitiveSearch);
}

bool NSString::hasPrefix(NSString* prefix) {
    requireString(prefix, "hasPrefix:");
    NSUInteger size = prefix->length();
    if (size == 0 || size > length()) return false;
    return StringUnits(this, {0, size}).view() == StringUnits(prefix).view();
}

bool NSString::hasSuffix(NSString* suffix) {
    requireString(suffix, "hasSuffix:");
    NSUInteger size = suffix->length(), count = length();
    if (size == 0 || size > count) return false;
    return StringUnits(this, {count - size, size}).view() == StringUnits(suffix).view();
}

namespace {

// A collator of the user's language; none where there are no collation rules at all. Where no language is
// set ICU would order by code points: the order that all languages share serves people better. Collators are
// safe on any thread once set up.
UCollator* makeCollator(UCollationStrength strength) {
    UErrorCode error = U_ZERO_ERROR;
    const char* language = uloc_getDefault();
    UCollator* collator = ucol_open(std::strcmp(language, "en_US_POSIX") == 0 ? "" : language, &error);
    if (U_FAILURE(error)) return nullptr;
    ucol_setStrength(collator, strength);
    ucol_setAttribute(collator, UCOL_NORMALIZATION_MODE, UCOL_ON, &error);
    return collator;
}

NSComparisonResult collate(const UCollator* collator, NSString* a, NSString* b,
                           NSStringCompareOptions options) {
    requireString(b, "localizedCompare:");
    if (!collator) return a->compare_options(b, options);
    StringUnits x(a), y(b);
    return static_cast<NSComparisonResult>(ucol_strcoll(collator, x.data(), static_cast<int32_t>(x.size()),
                                                        y.data(), static_cast<int32_t>(y.size())));
}

}  // namespace

NSComparisonResult NSString::localizedCompare(NSString* other) {
    static const UCollator* const collator = makeCollator(UCOL_TERTIARY);
    return collate(collator, this, other, 0);
}

NSComparisonResult NSString::localizedCaseInsensitiveCompare(NSString* other) {
    static const UCollator* const collator = makeCollator(UCOL_SECONDARY);
    return collate(collator, this, other, NSCaseInsensitiveSearch);
}

}  // namespace pelvor
