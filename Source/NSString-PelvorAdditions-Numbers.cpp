// SPDX-License-Identifier: Apache-2.0
// Numbers at an index of a string.
#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSScanner.h"
#include "NSString-PelvorAdditions.h"
#include "Private/UnitReader.h"
#include "Shared/ArgumentChecks.h"
#include "Shared/Codepoints.h"

namespace pelvor {
namespace {

bool mayBeInNumber(unichar unit) {
    unichar lower = unit | 0x20;
    return (unit >= u'0' && unit <= u'9') || (lower >= u'a' && lower <= u'f') || lower == u'x' ||
           unit == u'+' || unit == u'-';
}

// What a number at the index, with white space before it, can reach over: a scanner copies no more of the
// text.
NSString* numberText(NSString* string, NSUInteger index, const char* operation) {
    UnitReader units(string);
    requireRange({index, 0}, units.size(), operation);
    NSCharacterSet* space = NSCharacterSet::whitespaceAndNewlineCharacterSet();
    NSUInteger end = index;
    while (end < units.size() && space->characterIsMember(units[end])) ++end;
    while (end < units.size() && mayBeInNumber(units[end])) ++end;
    return string->substringWithRange({index, end - index});
}

// The number that `scan` reads at the index; its value as it was if there is no number.
template <class Scan>
std::int32_t valueAtIndex(NSString* string, NSUInteger index, NSRange* effectiveRange, const char* operation,
                          Scan scan) {
    auto scanner = NSScanner::initWithString(numberText(string, index, operation));
    bool isThere = scan(scanner.get());
    if (effectiveRange) *effectiveRange = {index, isThere ? scanner->scanLocation() : 0};
    return scan.value;
}

struct ScanDecimal {
    bool operator()(NSScanner* scanner) { return scanner->scanInt(&value); }
    int value = 0;
};

struct ScanHexadecimal {
    bool operator()(NSScanner* scanner) {
        unsigned number = 0;
        if (!scanner->scanHexInt(&number)) return false;
        value = static_cast<std::int32_t>(number);
        return true;
    }
    std::int32_t value = 0x3F;
};

}  // namespace

std::int32_t intValueAtIndex_effectiveRange(NSString* string, NSUInteger index, NSRange* effectiveRange) {
    requireArgument(string, "intValueAtIndex:effectiveRange:", "the string");
    return valueAtIndex(string, index, effectiveRange, "intValueAtIndex:effectiveRange:", ScanDecimal());
}

std::int32_t hexIntValueAtIndex_effectiveRange(NSString* string, NSUInteger index, NSRange* effectiveRange) {
    requireArgument(string, "hexIntValueAtIndex:effectiveRange:", "the string");
    return valueAtIndex(string, index, effectiveRange,
                        "hexIntValueAtIndex:effectiveRange:", ScanHexadecimal());
}

std::int32_t hexIntValue(NSString* string) {
    requireArgument(string, "hexIntValue", "the string");
    return hexIntValueAtIndex_effectiveRange(string, 0, nullptr);
}

}  // namespace pelvor
