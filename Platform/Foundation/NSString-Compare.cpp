// SPDX-License-Identifier: Apache-2.0
// Comparing strings.
#include <unicode/ucol.h>
#include <unicode/uloc.h>

#include <cstring>

#include "Foundation/Strings/CanonicalText.h"
#include "Foundation/Strings/NSInlineString.h"

namespace pelvor {

namespace {

NSComparisonResult compared(NSString* string, NSRange range, NSString* other, NSStringCompareOptions options,
                            const char* operation) {
    requireArgument(other, operation, "the other string");
    requireRange(range, string->length(), operation);
    StringUnits own(string, range), others(other);
    return compareText(own, others, options);
}

}  // namespace

NSComparisonResult NSString::compare(NSString* other) {
    return compared(this, {0, length()}, other, 0, "compare:");
}

NSComparisonResult NSString::compare_options(NSString* other, NSStringCompareOptions options) {
    return compared(this, {0, length()}, other, options, "compare:options:");
}

NSComparisonResult NSString::compare_options_range(NSString* other, NSStringCompareOptions options,
                                                   NSRange range) {
    return compared(this, range, other, options, "compare:options:range:");
}

NSComparisonResult NSString::caseInsensitiveCompare(NSString* other) {
    return compared(this, {0, length()}, other, NSCaseInsensitiveSearch, "caseInsensitiveCompare:");
}

bool NSString::hasPrefix(NSString* prefix) {
    requireArgument(prefix, "hasPrefix:", "the prefix");
    NSUInteger size = prefix->length();
    if (size == 0 || size > length()) return false;
    StringUnits start(this, {0, size}), wanted(prefix);
    return start.view() == wanted.view();
}

bool NSString::hasSuffix(NSString* suffix) {
    requireArgument(suffix, "hasSuffix:", "the suffix");
    NSUInteger size = suffix->length(), count = length();
    if (size == 0 || size > count) return false;
    StringUnits end(this, {count - size, size}), wanted(suffix);
    return end.view() == wanted.view();
}

namespace {

// A collator for the user's language; null if ICU has no collation rules at all. Without a language, ICU
// would order by code points; the order that all languages share serves people better. A collator may be used
// on any thread once it is set up.
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
                           NSStringCompareOptions options, const char* operation) {
    requireArgument(b, operation, "the other string");
    if (!collator) return a->compare_options(b, options);
    StringUnits x(a), y(b);
    return static_cast<NSComparisonResult>(ucol_strcoll(collator, x.data(), static_cast<int32_t>(x.size()),
                                                        y.data(), static_cast<int32_t>(y.size())));
}

}  // namespace

NSComparisonResult NSString::localizedCompare(NSString* other) {
    static const UCollator* const collator = makeCollator(UCOL_TERTIARY);
    return collate(collator, this, other, 0, "localizedCompare:");
}

NSComparisonResult NSString::localizedCaseInsensitiveCompare(NSString* other) {
    static const UCollator* const collator = makeCollator(UCOL_SECONDARY);
    return collate(collator, this, other, NSCaseInsensitiveSearch, "localizedCaseInsensitiveCompare:");
}

}  // namespace pelvor
